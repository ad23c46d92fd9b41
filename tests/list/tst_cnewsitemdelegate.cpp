// CNewsItemDelegate: created by its registered name, sized by its title, painting icon, title and the
// faded second line.
#include "HostTestMain.h"

#include "CNewsItemDelegate.h"
#include "ListTestSupport.h"

#include <QMetaType>
#include <QPainter>
#include <QStandardItemModel>

using listTest::PaintRecord;
using listTest::RecordingPaintDevice;

namespace {

constexpr int kSecondLineRole = Qt::UserRole + 5;

QIcon squareIcon()
{
    QPixmap pixmap(32, 32);
    pixmap.fill(Qt::darkGreen);
    return QIcon(pixmap);
}

QStyleOptionViewItem rowOption()
{
    QStyleOptionViewItem option;
    option.rect = QRect(0, 0, 320, 64);
    option.state = QStyle::State_Enabled;
    option.font = QFont(QStringLiteral("DejaVu Sans"));
    return option;
}

} // namespace

class TestNewsItemDelegate : public QObject
{
    Q_OBJECT

private slots:
    void isCreatableByItsRegisteredName()
    {
        const QMetaType type = QMetaType::fromName("CNewsItemDelegate");
        QVERIFY(type.isValid());
        void* created = type.create();
        QVERIFY(created);
        auto* delegate = static_cast<CNewsItemDelegate*>(created);
        QCOMPARE(delegate->metaObject()->className(), "CNewsItemDelegate");
        QCOMPARE(delegate->parent(), nullptr);
        QVERIFY(qobject_cast<QStyledItemDelegate*>(delegate));
        type.destroy(created);
    }

    void widthFollowsTheTitleAndTheIcon_data()
    {
        QTest::addColumn<bool>("withIcon");
        QTest::addColumn<int>("extra");
        QTest::newRow("icon") << true << 66;
        QTest::newRow("no icon") << false << 24;
    }

    void widthFollowsTheTitleAndTheIcon()
    {
        QFETCH(bool, withIcon);
        QFETCH(int, extra);
        QStandardItemModel model;
        auto* item = new QStandardItem(QStringLiteral("Spring offer"));
        if (withIcon)
            item->setData(squareIcon(), Qt::DecorationRole);
        model.appendRow(item);
        CNewsItemDelegate delegate;
        QStyleOptionViewItem option = rowOption();
        option.font.setBold(true);
        option.font.setItalic(true);
        QFont measured(option.font);
        measured.setPointSize(11);
        measured.setWeight(QFont::Normal);
        measured.setItalic(false);
        const int advance = QFontMetrics(measured).horizontalAdvance(QStringLiteral("Spring offer"));
        QCOMPARE(delegate.sizeHint(option, model.index(0, 0)), QSize(advance + extra, 64));
    }

    void titleIndentFollowsTheIcon_data()
    {
        QTest::addColumn<bool>("withIcon");
        QTest::addColumn<int>("titleLeft");
        QTest::newRow("icon") << true << 54;
        QTest::newRow("no icon") << false << 12;
    }

    void titleIndentFollowsTheIcon()
    {
        QFETCH(bool, withIcon);
        QFETCH(int, titleLeft);
        QStandardItemModel model;
        auto* item = new QStandardItem(QStringLiteral("Spring offer"));
        if (withIcon)
            item->setData(squareIcon(), Qt::DecorationRole);
        item->setData(1, kSecondLineRole);
        model.appendRow(item);
        CNewsItemDelegate delegate;
        RecordingPaintDevice device(QSize(320, 64));
        {
            QPainter painter(&device);
            delegate.paint(&painter, rowOption(), model.index(0, 0));
        }
        const QList<PaintRecord> texts = device.ofKind(PaintRecord::Text);
        QCOMPARE(texts.size(), 2);
        QCOMPARE(texts.at(0).text, QStringLiteral("Spring offer"));
        QCOMPARE(qRound(texts.at(0).origin.x()), titleLeft);
        QCOMPARE(texts.at(0).font.weight(), QFont::DemiBold);
        QCOMPARE(texts.at(0).font.pointSize(), 11);
        QVERIFY(texts.at(0).rect.bottom() <= 32.5);
        // The second line shows the role's integer as text, faded, below the title.
        QCOMPARE(texts.at(1).text, QStringLiteral("1"));
        QCOMPARE(texts.at(1).font.pointSize(), 9);
        QVERIFY(qAbs(texts.at(1).color.alphaF() - 0.6) < 0.01);
        QVERIFY(texts.at(1).rect.top() >= texts.at(0).rect.bottom());
        if (withIcon) {
            const QList<PaintRecord> pixmaps = device.ofKind(PaintRecord::Pixmap);
            QVERIFY(!pixmaps.isEmpty());
            QCOMPARE(pixmaps.first().rect, QRectF(12, 16, 32, 32));
        }
    }

    void emptySecondLineDrawsNothingBelowTheTitle()
    {
        QStandardItemModel model;
        model.appendRow(new QStandardItem(QStringLiteral("Spring offer")));
        CNewsItemDelegate delegate;
        RecordingPaintDevice device(QSize(320, 64));
        {
            QPainter painter(&device);
            delegate.paint(&painter, rowOption(), model.index(0, 0));
        }
        QCOMPARE(device.ofKind(PaintRecord::Text).size(), 1);
    }

    void selectionUsesTheLightBlueHighlight()
    {
        QStandardItemModel model;
        model.appendRow(new QStandardItem(QStringLiteral("Spring offer")));
        CNewsItemDelegate delegate;
        QStyleOptionViewItem option = rowOption();
        option.state |= QStyle::State_Selected | QStyle::State_Active;
        option.showDecorationSelected = true;
        QImage image(option.rect.size(), QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::white);
        {
            QPainter painter(&image);
            delegate.paint(&painter, option, model.index(0, 0));
        }
        QCOMPARE(image.pixelColor(300, 60).rgb(), QColor(QStringLiteral("#A6D8FF")).rgb());
    }
};

HOST_TEST_MAIN(TestNewsItemDelegate)
#include "tst_cnewsitemdelegate.moc"
