// How the list delegates paint and size rows. CPluginItemDelegate: a sheet of every row state is compared
// with the stored rendering in data/ (within a small tolerance for font rasterisation; with
// NEWSREADER_UPDATE_RENDERINGS set it is rewritten instead), fixed sizes and the hide button.
// CNewsItemDelegate: created by its registered name, sized by its title, painting icon, title and the faded
// second line.
#include "HostTestMain.h"

#include "CCommunicationObjectModel.h"
#include "CNewsItemDelegate.h"
#include "CPluginItemDelegate.h"
#include "QtHelpersImages.h"

#include <QPainter>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QToolButton>

using Model = CCommunicationObjectModel;

namespace {

constexpr int kRowWidth = 320;
constexpr int kEntryHeight = 58;
const QString kStoredSheet = QStringLiteral(NEWSREADER_TEST_DATA_DIR "/list-row-states.png");

QStandardItem* entryItem(const QString& title, bool read = false, bool important = false, bool pinned = false,
                         const QString& icon = {})
{
    auto* item = new QStandardItem(title);
    QPixmap black(CPluginItemDelegate::kIconSize, CPluginItemDelegate::kIconSize);
    black.fill(Qt::black);
    item->setData(icon.isEmpty() ? QIcon(black) : qtHelpers::images::icon(icon), Qt::DecorationRole);
    item->setData("12.06.2024", Model::DateTextRole);
    item->setData(int(read), Model::ReadRole);
    item->setData(int(important), Model::ImportantRole);
    item->setData(int(pinned), Model::FlagBit1Role);
    return item;
}

QStandardItem* folderItem(const QString& name, bool expanded)
{
    auto* item = new QStandardItem(name);
    item->setData(true, Model::IsFolderRole);
    item->setData(expanded, Model::ExpandedRole);
    return item;
}

QStyleOptionViewItem rowOption(int height, int state = QStyle::State_Enabled)
{
    QStyleOptionViewItem option;
    option.rect = QRect(0, 0, kRowWidth, height);
    option.state = QStyle::State(state);
    option.font = QFont("DejaVu Sans");
    return option;
}

// Every row state the list shows, one below the other, with the hide buttons where the view puts them.
QImage renderStateSheet()
{
    const int plain = QStyle::State_Enabled;
    const int hovered = plain | QStyle::State_MouseOver;
    QStandardItemModel model;
    const QList<std::pair<QStandardItem*, int>> rows{
        {folderItem("Important messages", true), plain},
        {folderItem("Offers (collapsed, hovered)", false), hovered},
        {entryItem("Unread important news", false, true, false, "ico-attention-unread"), plain},
        {entryItem("Unread offer with a title too long to fit", false, false, false, "ico-offers-unread"),
         plain},
        {entryItem("Read offer", true, false, false, "ico-offers-read"), plain},
        {entryItem("Read offer, selected", true, false, false, "ico-offers-read"),
         plain | QStyle::State_Selected},
        {entryItem("Read offer, hovered", true, false, false, "ico-offers-read"), hovered},
        {entryItem("Pinned offer (faded)", false, false, true, "ico-offers-unread"), plain},
        {entryItem("Unread offer with focus", false, false, false, "ico-offers-unread"),
         plain | QStyle::State_HasFocus}};
    CPluginItemDelegate delegate;
    QStyleOptionViewItem option = rowOption(0);
    int height = 0;
    for (const auto& row : rows) {
        model.appendRow(row.first);
        height += delegate.sizeHint(option, row.first->index()).height();
    }
    QImage sheet(kRowWidth, height, QImage::Format_ARGB32_Premultiplied);
    sheet.fill(QColor("#f4f5f7"));
    QPainter painter(&sheet);
    for (int row = 0, top = 0; row < model.rowCount(); ++row, top += option.rect.height()) {
        const QModelIndex index = model.index(row, 0);
        option.rect = QRect(QPoint(0, top), delegate.sizeHint(option, index));
        option.state = QStyle::State(rows.at(row).second);
        delegate.paint(&painter, option, index);
        if (std::unique_ptr<QWidget> editor{delegate.createEditor(nullptr, option, index)}) {
            delegate.updateEditorGeometry(editor.get(), option, index);
            editor->resize(editor->geometry().size());
            editor->render(&painter, editor->geometry().topLeft(), QRegion(), QWidget::DrawChildren);
        }
    }
    return sheet;
}

// The share of pixels of which a channel differs by more than anti-aliasing of glyphs across font builds
// does.
double differentShare(const QImage& a, const QImage& b)
{
    const QImage left = a.convertToFormat(QImage::Format_ARGB32);
    const QImage right = b.convertToFormat(QImage::Format_ARGB32);
    qint64 different = 0;
    for (int y = 0; y < left.height(); ++y) {
        for (int x = 0; x < left.width(); ++x) {
            const QRgb p = left.pixel(x, y), q = right.pixel(x, y);
            different += qAbs(qRed(p) - qRed(q)) > 24 || qAbs(qGreen(p) - qGreen(q)) > 24 ||
                         qAbs(qBlue(p) - qBlue(q)) > 24;
        }
    }
    return double(different) / double(left.width() * left.height());
}

// The columns and rows of `image` that hold anything but white.
QRect inkIn(const QImage& image, const QRect& area)
{
    QRect ink;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            if (image.pixel(x, y) != qRgb(255, 255, 255))
                ink |= QRect(x, y, 1, 1);
        }
    }
    return ink;
}

} // namespace

class TestListDelegates : public QObject
{
    Q_OBJECT

private slots:
    void rowStatesMatchTheStoredRendering()
    {
        const QImage sheet = renderStateSheet();
        if (qEnvironmentVariableIsSet("NEWSREADER_UPDATE_RENDERINGS")) {
            QVERIFY(sheet.save(kStoredSheet));
            QSKIP("Stored rendering rewritten");
        }
        const QImage stored(kStoredSheet);
        QCOMPARE(sheet.size(), stored.size());
        const double share = differentShare(sheet, stored);
        QVERIFY2(share < 0.01, qPrintable(QStringLiteral("%1 of the pixels differ").arg(share)));
    }

    void hideButtonSitsAtTheRightAndNamesItsRow()
    {
        QStandardItemModel model;
        model.appendRow(entryItem("First"));
        model.appendRow(entryItem("Second"));
        model.appendRow(entryItem("Important", false, true));
        CPluginItemDelegate delegate;
        QSignalSpy requests(&delegate, &CPluginItemDelegate::hideMessageRequest);
        QWidget parent;
        QStyleOptionViewItem option = rowOption(kEntryHeight);
        const auto button = [&](int row) {
            return qobject_cast<QToolButton*>(delegate.createEditor(&parent, option, model.index(row, 0)));
        };
        QToolButton* first = button(0);
        QToolButton* second = button(1);
        QVERIFY(first && second && !button(2));
        QCOMPARE(first->toolTip(), "Click to hide this message");
        QCOMPARE(first->focusPolicy(), Qt::NoFocus);
        option.rect.moveTop(100);
        delegate.updateEditorGeometry(first, option, model.index(0, 0));
        QCOMPARE(first->geometry(), QRect(284, 117, 24, 24));

        // After the rows move, a button still names its own entry; a vanished row asks for nothing.
        model.insertRow(0, entryItem("New"));
        first->click();
        QCOMPARE(requests.size(), 1);
        QCOMPARE(requests.last().first().value<QModelIndex>().data().toString(), "First");
        model.removeRow(2);
        second->click();
        QCOMPARE(requests.size(), 1);
    }

    void sizeAndLayoutFollowTheIconAndTheSecondLine_data()
    {
        QTest::addColumn<bool>("withIcon");
        QTest::addColumn<QVariant>("secondLine");
        QTest::addColumn<int>("extraWidth");
        QTest::addColumn<int>("titleLeft");
        QTest::newRow("icon") << true << QVariant(1) << 66 << 54;
        QTest::newRow("no icon, no second line") << false << QVariant() << 24 << 12;
    }

    void sizeAndLayoutFollowTheIconAndTheSecondLine()
    {
        QFETCH(bool, withIcon);
        QFETCH(QVariant, secondLine);
        QFETCH(int, extraWidth);
        QFETCH(int, titleLeft);
        const QMetaType type = QMetaType::fromName("CNewsItemDelegate");
        std::unique_ptr<CNewsItemDelegate> delegate(static_cast<CNewsItemDelegate*>(type.create()));
        QVERIFY(delegate);
        QStandardItemModel model;
        auto* item = new QStandardItem("Spring offer");
        QPixmap icon(32, 32);
        icon.fill(Qt::darkGreen);
        item->setData(withIcon ? QIcon(icon) : QIcon(), Qt::DecorationRole);
        item->setData(secondLine, Qt::UserRole + 5);
        model.appendRow(item);
        QStyleOptionViewItem option;
        option.rect = QRect(0, 0, 320, 64);
        option.font = QFont("DejaVu Sans");
        option.font.setBold(true);
        // Measured at 11 points and regular weight, whatever the view's font.
        QFont measured(option.font);
        measured.setPointSize(11);
        measured.setWeight(QFont::Normal);
        const int advance = QFontMetrics(measured).horizontalAdvance("Spring offer");
        QCOMPARE(delegate->sizeHint(option, item->index()), QSize(advance + extraWidth, 64));

        QImage row(option.rect.size(), QImage::Format_RGB32);
        row.fill(Qt::white);
        {
            QPainter painter(&row);
            delegate->paint(&painter, option, item->index());
        }
        // The icon at the left, centred; the title above the middle; the second line below it.
        QCOMPARE(row.pixelColor(12, 16) == QColor(Qt::darkGreen), withIcon);
        QCOMPARE(row.pixelColor(12, 15) == QColor(Qt::darkGreen), false);
        const QRect title = inkIn(row, QRect(titleLeft - 4, 0, 200, 32));
        QVERIFY(qAbs(title.left() - titleLeft) <= 2);
        QCOMPARE(inkIn(row, QRect(titleLeft - 4, 33, 200, 31)).isValid(), secondLine.isValid());
    }
};

HOST_TEST_MAIN(TestListDelegates)
#include "tst_listdelegates.moc"
