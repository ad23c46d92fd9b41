// Renders the communication list the way the host shows it and compares a sheet of every row state with the
// stored rendering in data/ (within a small tolerance for font rasterisation). Renderings are also written
// to the folder named by NEWSREADER_PNG_DIR, if set, for people to look at. With
// NEWSREADER_UPDATE_RENDERINGS set the stored rendering is rewritten instead of compared.
#include "HostTestMain.h"

#include "CCommunicationObjectModel.h"
#include "CNewsReaderPlugin.h"
#include "CPluginItemDelegate.h"
#include "HostColors.h"
#include "ListTestSupport.h"
#include "QtHelpersImages.h"

#include <QDir>
#include <QPainter>
#include <QStandardItemModel>
#include <QTreeView>

using listTest::conversation;
using listTest::newsEntry;
using Model = CCommunicationObjectModel;

namespace {

const QString kStoredSheet = QStringLiteral(NEWSREADER_TEST_DATA_DIR "/list-row-states.png");
// A pixel counts as different when a channel differs by more than this; the sheet may differ in this
// share of its pixels (anti-aliasing of glyphs across font builds).
constexpr int kChannelTolerance = 24;
constexpr double kDifferentShare = 0.01;
constexpr int kSheetWidth = 320;

struct RowState
{
    QString label;
    bool folder = false;
    bool expanded = false;
    bool read = false;
    bool important = false;
    bool pinned = false;
    QStyle::State state = QStyle::State_Enabled;
};

QList<RowState> rowStates()
{
    const QStyle::State plain = QStyle::State_Enabled;
    return {
        {QStringLiteral("Important messages"), true, true, false, false, false, plain},
        {QStringLiteral("Offers (collapsed, hovered)"), true, false, false, false, false,
         plain | QStyle::State_MouseOver},
        {QStringLiteral("Unread important news"), false, false, false, true, false, plain},
        {QStringLiteral("Unread offer with a title too long to fit"), false, false, false, false, false,
         plain},
        {QStringLiteral("Read offer"), false, false, true, false, false, plain},
        {QStringLiteral("Read offer, selected"), false, false, true, false, false,
         plain | QStyle::State_Selected},
        {QStringLiteral("Read offer, hovered"), false, false, true, false, false,
         plain | QStyle::State_MouseOver},
        {QStringLiteral("Pinned offer (faded)"), false, false, false, false, true, plain},
        {QStringLiteral("Unread offer with focus"), false, false, false, false, false,
         plain | QStyle::State_HasFocus},
    };
}

QImage renderStateSheet()
{
    QStandardItemModel model;
    for (const RowState& row : rowStates()) {
        auto* item = new QStandardItem(row.label);
        item->setData(row.folder, Model::IsFolderRole);
        item->setData(row.expanded, Model::ExpandedRole);
        item->setData(int(row.read), Model::ReadRole);
        item->setData(int(row.important), Model::ImportantRole);
        item->setData(int(row.pinned), Model::FlagBit1Role);
        if (!row.folder) {
            item->setData(QStringLiteral("12.06.2024"), Model::DateTextRole);
            const QString icon = row.important ? (row.read ? "ico-attention-read" : "ico-attention-unread")
                                               : (row.read ? "ico-offers-read" : "ico-offers-unread");
            item->setData(qtHelpers::images::icon(icon), Qt::DecorationRole);
        }
        model.appendRow(item);
    }

    CPluginItemDelegate delegate;
    QStyleOptionViewItem option;
    option.font = QFont(QStringLiteral("DejaVu Sans"));
    int height = 0;
    for (int row = 0; row < model.rowCount(); ++row)
        height += delegate.sizeHint(option, model.index(row, 0)).height();

    QImage sheet(kSheetWidth, height, QImage::Format_ARGB32_Premultiplied);
    sheet.fill(QColor(QStringLiteral("#f4f5f7")));
    QPainter painter(&sheet);
    int top = 0;
    const QList<RowState> states = rowStates();
    for (int row = 0; row < model.rowCount(); ++row) {
        const QModelIndex index = model.index(row, 0);
        option.rect = QRect(QPoint(0, top), delegate.sizeHint(option, index));
        option.state = states.at(row).state;
        delegate.paint(&painter, option, index);
        if (CPluginItemDelegate::canHide(index)) {
            // Where the view puts the hide button.
            std::unique_ptr<QWidget> editor(delegate.createEditor(nullptr, option, index));
            delegate.updateEditorGeometry(editor.get(), option, index);
            editor->resize(editor->geometry().size());
            editor->render(&painter, editor->geometry().topLeft(), QRegion(), QWidget::DrawChildren);
        }
        top += option.rect.height();
    }
    return sheet;
}

double differentShare(const QImage& a, const QImage& b)
{
    const QImage left = a.convertToFormat(QImage::Format_ARGB32);
    const QImage right = b.convertToFormat(QImage::Format_ARGB32);
    qint64 different = 0;
    for (int y = 0; y < left.height(); ++y) {
        for (int x = 0; x < left.width(); ++x) {
            const QRgb p = left.pixel(x, y);
            const QRgb q = right.pixel(x, y);
            if (qAbs(qRed(p) - qRed(q)) > kChannelTolerance ||
                qAbs(qGreen(p) - qGreen(q)) > kChannelTolerance ||
                qAbs(qBlue(p) - qBlue(q)) > kChannelTolerance)
                ++different;
        }
    }
    return double(different) / double(left.width() * left.height());
}

void keepForPeople(const QImage& image, const QString& name)
{
    const QString folder = qEnvironmentVariable("NEWSREADER_PNG_DIR");
    if (folder.isEmpty())
        return;
    QDir().mkpath(folder);
    image.save(QDir(folder).filePath(name));
}

} // namespace

class TestListRendering : public QObject
{
    Q_OBJECT

private slots:
    void rowStatesMatchTheStoredRendering()
    {
        const QImage sheet = renderStateSheet();
        keepForPeople(sheet, QStringLiteral("list-row-states.png"));
        if (qEnvironmentVariableIsSet("NEWSREADER_UPDATE_RENDERINGS")) {
            QVERIFY(sheet.save(kStoredSheet));
            QSKIP("Stored rendering rewritten");
        }
        const QImage stored(kStoredSheet);
        QVERIFY2(!stored.isNull(), qPrintable(kStoredSheet));
        QCOMPARE(sheet.size(), stored.size());
        const double share = differentShare(sheet, stored);
        QVERIFY2(share < kDifferentShare, qPrintable(QStringLiteral("%1 of the pixels differ").arg(share)));
    }

    void treeShowsFoldersAndEntriesAtTheirHeights()
    {
        HostControl::clearServer();
        QVERIFY(listTest::loadScenario(
            {newsEntry(QStringLiteral("n-important"), QStringLiteral("important"),
                       QStringLiteral("Scheduled maintenance"), true),
             newsEntry(QStringLiteral("n-security"), QStringLiteral("important"),
                       QStringLiteral("Security update 5.2.1")),
             newsEntry(QStringLiteral("n-offer"), QStringLiteral("offer"),
                       QStringLiteral("Spring offer: two years for one")),
             newsEntry(QStringLiteral("n-pinned"), QStringLiteral("offer"), QStringLiteral("Loyalty bonus"),
                       true, {{QStringLiteral("pinned"), true}}),
             newsEntry(QStringLiteral("n-old"), QStringLiteral("offer"), QStringLiteral("Winter offer"), true,
                       {{QStringLiteral("expires"), QStringLiteral("-2d")}})},
            {conversation(QStringLiteral("c-printer"), QStringLiteral("Scanner blocks my printer driver"))}));

        CNewsReaderPlugin plugin;
        Model* model = static_cast<Model*>(plugin.getPluginModel().get());
        QTreeView tree;
        tree.setModel(model);
        tree.setItemDelegate(plugin.getPluginItemDelegate());
        tree.setHeaderHidden(true);
        tree.setRootIsDecorated(false);
        tree.setIndentation(0);
        tree.resize(340, 520);
        connect(&plugin, &CAbstractKolPlugin::listItemExpandRequest, &tree, &QTreeView::expand);
        connect(&plugin, &CAbstractKolPlugin::listItemEditorRequest, &tree,
                [&tree](const QModelIndex& index) {
                    if (index.flags() & Qt::ItemIsEditable)
                        tree.openPersistentEditor(index);
                });
        connect(&plugin, &CAbstractKolPlugin::listItemSelectionRequest, &tree,
                [&tree](const QModelIndex& index, QItemSelectionModel::SelectionFlags flags) {
                    tree.selectionModel()->setCurrentIndex(index, flags);
                });
        tree.show();
        QVERIFY(QTest::qWaitForWindowExposed(&tree));
        plugin.restoreSelection();

        const QModelIndex important = model->indexForKey(QStringLiteral("folder-0"));
        const QModelIndex offers = model->indexForKey(QStringLiteral("folder-1"));
        QVERIFY(tree.isExpanded(important));
        QVERIFY(tree.isExpanded(offers));
        QVERIFY(!tree.isExpanded(model->indexForKey(QStringLiteral("folder-3"))));
        QCOMPARE(tree.visualRect(important).height(), 41);
        QCOMPARE(tree.visualRect(model->indexForKey(QStringLiteral("n-offer"))).height(), 58);
        QCOMPARE(tree.currentIndex(), model->index(0, 0, important));
        // Only the plain offer has a hide button: pinned and important entries do not.
        QVERIFY(tree.indexWidget(model->indexForKey(QStringLiteral("n-offer"))));
        QVERIFY(!tree.indexWidget(model->indexForKey(QStringLiteral("n-pinned"))));
        QVERIFY(!tree.indexWidget(model->indexForKey(QStringLiteral("n-security"))));

        const QImage shot = tree.grab().toImage();
        keepForPeople(shot, QStringLiteral("list-tree.png"));
        // The selected row carries the selection colour at its edge.
        const QRect selected = tree.visualRect(tree.currentIndex());
        const QPoint probe = tree.viewport()->mapTo(&tree, selected.topLeft() + QPoint(4, 4));
        QCOMPARE(shot.pixelColor(probe).rgb(), getPaletteColor(clrListSelection).rgb());
    }
};

HOST_TEST_MAIN(TestListRendering)
#include "tst_listrendering.moc"
