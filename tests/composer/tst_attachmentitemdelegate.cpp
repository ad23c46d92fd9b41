// The attachment tile: its size, its colours, and the remove button that must name its own row.
#include "HostTestMain.h"

#include "CAttachmentItemDelegate.h"
#include "CAttachmentsModel.h"
#include "CVantrelApp.h"

#include <QDir>
#include <QListView>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QToolButton>

namespace {

// The composer's list as the main screen sets it up: tiles left to right, a remove button on every row.
struct AttachmentList
{
    CAttachmentsModel model;
    QListView view;
    CAttachmentItemDelegate delegate;

    AttachmentList()
    {
        view.setItemDelegate(&delegate);
        view.setModel(&model);
        view.setFlow(QListView::LeftToRight);
        view.setWrapping(true);
        view.setSpacing(4);
        model.setView(&view);
        QObject::connect(&model, &QAbstractItemModel::rowsInserted, &view,
                         [this](const QModelIndex&, int first, int last) {
                             for (int row = first; row <= last; ++row)
                                 view.openPersistentEditor(model.index(row, 0));
                         });
        QObject::connect(&delegate, &CAttachmentItemDelegate::removeAttachmentRequest, &model,
                         &CAttachmentsModel::remove);
        view.resize(560, 120);
    }

    ~AttachmentList() { view.setModel(nullptr); }

    QToolButton* removeButton(int row) const
    {
        return qobject_cast<QToolButton*>(view.indexWidget(model.index(row, 0)));
    }
};

} // namespace

class TestAttachmentItemDelegate : public QObject
{
    Q_OBJECT

    QTemporaryDir folder;

    QString path(const QString& name) const { return QDir(folder.path()).filePath(name); }

private slots:
    void sizesATileAfterItsName_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("capped");
        QTest::newRow("short") << "a.txt" << false;
        QTest::newRow("long") << QString(200, QLatin1Char('x')) + ".txt" << true;
    }

    void sizesATileAfterItsName()
    {
        QFETCH(QString, name);
        QFETCH(bool, capped);
        CAttachmentsModel model;
        model.addFiles({path(name)});
        CAttachmentItemDelegate delegate;
        QStyleOptionViewItem option;
        option.font = QFont(QStringLiteral("Sans"), 10);
        const QFontMetrics metrics(option.font);
        const QSize size = delegate.sizeHint(option, model.index(0, 0));
        QCOMPARE(size.width(), capped ? 320 : metrics.horizontalAdvance(name) + 44);
        QCOMPARE(size.height(), qMax(metrics.height(), 20) + 4);
    }

    void removeButtonNamesItsRowEvenAfterRowsAboveGo()
    {
        AttachmentList list;
        list.model.addFiles({path("one.txt"), path("two.txt"), path("three.txt"), path("four.txt")});
        list.view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&list.view));
        for (int row = 0; row < 4; ++row) {
            QToolButton* button = list.removeButton(row);
            QVERIFY(button);
            QCOMPARE(button->toolTip(), QStringLiteral("Click to remove this attachment"));
            QVERIFY(!button->icon().isNull());
            const auto index = button->property("AttachmentToRemoveIndex").value<QPersistentModelIndex>();
            QCOMPARE(QModelIndex(index), list.model.index(row, 0));
            // A 20 pixel square at the tile's left edge, vertically centred.
            const QRect tile = list.view.visualRect(list.model.index(row, 0));
            QCOMPARE(button->geometry(),
                     QRect(tile.left() + 2, tile.top() + (tile.height() - 20) / 2, 20, 20));
        }

        QPointer<QToolButton> third = list.removeButton(2);
        QSignalSpy requests(&list.delegate, &CAttachmentItemDelegate::removeAttachmentRequest);
        list.removeButton(0)->click();
        list.removeButton(0)->click();
        QVERIFY(third);
        third->click();
        QCOMPARE(requests.count(), 3);
        QCOMPARE(requests.last().at(0).toModelIndex().row(), 0);
        QCOMPARE(list.model.attachments().size(), 1);
        QCOMPARE(list.model.attachments().at(0).path, path("four.txt"));
    }

    void aButtonWhoseRowIsGoneAsksNothing()
    {
        AttachmentList list;
        list.model.addFiles({path("one.txt")});
        // The view would drop the button with its row; keep one that outlives it.
        auto* orphan =
            qobject_cast<QToolButton*>(list.delegate.createEditor(nullptr, {}, list.model.index(0, 0)));
        std::unique_ptr<QToolButton> guard(orphan);
        QSignalSpy requests(&list.delegate, &CAttachmentItemDelegate::removeAttachmentRequest);
        list.model.clear();
        orphan->click();
        QCOMPARE(requests.count(), 0);
    }

    void paintsAnInvalidNameInTheWarningColour()
    {
        AttachmentList list;
        list.model.addFiles({path("report.pdf"), path("50%=half.txt")});
        list.view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&list.view));
        const QImage image = list.view.viewport()->grab().toImage();

        const QColor warning = CVantrelApp::GetColor(CAttachmentItemDelegate::kInvalidNameColor);
        const QColor frame = CVantrelApp::GetColor(CAttachmentItemDelegate::kFrameColor);
        for (int row = 0; row < 2; ++row) {
            const QRect tile = list.view.visualRect(list.model.index(row, 0));
            const QRgb insideNearRight = image.pixel(tile.right() - 3, tile.top() + 3);
            QCOMPARE(insideNearRight == warning.rgb(), row == 1);
            QCOMPARE(image.pixel(tile.center().x(), tile.top()), frame.rgb());
        }

        const QString folder = qEnvironmentVariable("NEWSREADER_PNG_DIR");
        if (!folder.isEmpty())
            QVERIFY(list.view.grab().save(QDir(folder).filePath(QStringLiteral("attachment-list.png"))));
    }
};

HOST_TEST_MAIN(TestAttachmentItemDelegate)
#include "tst_attachmentitemdelegate.moc"
