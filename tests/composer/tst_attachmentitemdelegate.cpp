// The attachment tile: its size, its colours, and the remove button that must name its own row.
#include "HostTestMain.h"

#include "CAttachmentItemDelegate.h"
#include "CAttachmentsModel.h"
#include "CVantrelApp.h"

#include <QListView>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QToolButton>

class TestAttachmentItemDelegate : public QObject
{
    Q_OBJECT

    QTemporaryDir folder;
    // The composer's list as the main screen sets it up: tiles left to right, a remove button on every row.
    CAttachmentsModel model;
    QListView view;
    CAttachmentItemDelegate delegate;

    QToolButton* removeButton(int row) const
    {
        return qobject_cast<QToolButton*>(view.indexWidget(model.index(row, 0)));
    }

private slots:
    void initTestCase()
    {
        view.setItemDelegate(&delegate);
        view.setModel(&model);
        view.setFlow(QListView::LeftToRight);
        view.setWrapping(true);
        view.setSpacing(4);
        model.setView(&view);
        connect(&model, &QAbstractItemModel::rowsInserted, &view,
                [this](const QModelIndex&, int first, int last) {
                    for (int row = first; row <= last; ++row)
                        view.openPersistentEditor(model.index(row, 0));
                });
        connect(&delegate, &CAttachmentItemDelegate::removeAttachmentRequest, &model,
                &CAttachmentsModel::remove);
        view.resize(560, 120);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
    }

    void cleanup() { model.clear(); }

    void sizesATileAfterItsName()
    {
        model.addFiles({folder.filePath("a.txt"), folder.filePath(QString(200, 'x') + ".txt")});
        QStyleOptionViewItem option;
        option.font = QFont("Sans", 10);
        const QFontMetrics metrics(option.font);
        QCOMPARE(delegate.sizeHint(option, model.index(0, 0)),
                 QSize(metrics.horizontalAdvance("a.txt") + 44, qMax(metrics.height(), 20) + 4));
        QCOMPARE(delegate.sizeHint(option, model.index(1, 0)).width(), 320);
    }

    void paintsAnInvalidNameInTheWarningColour()
    {
        model.addFiles({folder.filePath("report.pdf"), folder.filePath("50%=half.txt")});
        QTest::qWait(20);
        const QImage image = view.viewport()->grab().toImage();
        const QColor warning = CVantrelApp::GetColor(CAttachmentItemDelegate::kInvalidNameColor);
        const QColor frame = CVantrelApp::GetColor(CAttachmentItemDelegate::kFrameColor);
        for (int row = 0; row < 2; ++row) {
            const QRect tile = view.visualRect(model.index(row, 0));
            QCOMPARE(image.pixel(tile.right() - 3, tile.top() + 3) == warning.rgb(), row == 1);
            QCOMPARE(image.pixel(tile.center().x(), tile.top()), frame.rgb());
        }
    }

    void removeButtonNamesItsRowEvenAfterRowsAboveGo()
    {
        model.addFiles(
            {folder.filePath("one.txt"), folder.filePath("two.txt"), folder.filePath("three.txt")});
        // A 20 pixel square at the tile's left edge, vertically centred.
        const QRect tile = view.visualRect(model.index(1, 0));
        QCOMPARE(removeButton(1)->geometry(),
                 QRect(tile.left() + 2, tile.top() + (tile.height() - 20) / 2, 20, 20));
        QCOMPARE(removeButton(1)->toolTip(), "Click to remove this attachment");

        QPointer<QToolButton> third = removeButton(2);
        removeButton(0)->click();
        QVERIFY(third);
        third->click();
        QCOMPARE(model.attachments().size(), 1);
        QCOMPARE(model.attachments().at(0).path, folder.filePath("two.txt"));

        // A button that outlives its row asks for nothing.
        std::unique_ptr<QWidget> orphan(delegate.createEditor(nullptr, {}, model.index(0, 0)));
        QSignalSpy requests(&delegate, &CAttachmentItemDelegate::removeAttachmentRequest);
        model.clear();
        qobject_cast<QToolButton*>(orphan.get())->click();
        QCOMPARE(requests.count(), 0);
    }
};

HOST_TEST_MAIN(TestAttachmentItemDelegate)
#include "tst_attachmentitemdelegate.moc"
