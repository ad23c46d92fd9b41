// CNewsItemDelegate: created by its registered name, sized by its title, painting icon, title and the faded
// second line.
#include "HostTestMain.h"

#include "CNewsItemDelegate.h"

#include <QPainter>
#include <QStandardItemModel>

namespace {

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

class TestNewsItemDelegate : public QObject
{
    Q_OBJECT

private slots:
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

HOST_TEST_MAIN(TestNewsItemDelegate)
#include "tst_cnewsitemdelegate.moc"
