// CNewsItemDelegate: created by its registered name, sized by its title, painting icon, title and the
// faded second line.
#include "HostTestMain.h"

#include "CNewsItemDelegate.h"
#include "ListTestSupport.h"

#include <QMetaType>
#include <QPainter>
#include <QStandardItemModel>

using listTest::PaintRecord;

namespace {

constexpr int kSecondLineRole = Qt::UserRole + 5;
const QSize kRowSize(320, 64);

QStyleOptionViewItem rowOption()
{
    QStyleOptionViewItem option;
    option.rect = QRect(QPoint(), kRowSize);
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
        auto* delegate = static_cast<CNewsItemDelegate*>(type.create());
        QVERIFY(delegate);
        QCOMPARE(delegate->metaObject()->className(), "CNewsItemDelegate");
        QCOMPARE(delegate->parent(), nullptr);
        type.destroy(delegate);
    }

    void sizeAndLayoutFollowTheIconAndTheSecondLine_data()
    {
        QTest::addColumn<bool>("withIcon");
        QTest::addColumn<QVariant>("secondLine");
        QTest::addColumn<int>("extraWidth");
        QTest::addColumn<int>("titleLeft");
        QTest::newRow("icon") << true << QVariant(1) << 66 << 54;
        QTest::newRow("no icon") << false << QVariant(1) << 24 << 12;
        QTest::newRow("no second line") << true << QVariant() << 66 << 54;
    }

    void sizeAndLayoutFollowTheIconAndTheSecondLine()
    {
        QFETCH(bool, withIcon);
        QFETCH(QVariant, secondLine);
        QFETCH(int, extraWidth);
        QFETCH(int, titleLeft);
        QStandardItemModel model;
        auto* item = new QStandardItem(QStringLiteral("Spring offer"));
        if (withIcon) {
            QPixmap icon(32, 32);
            icon.fill(Qt::darkGreen);
            item->setData(QIcon(icon), Qt::DecorationRole);
        }
        item->setData(secondLine, kSecondLineRole);
        model.appendRow(item);
        const QModelIndex index = model.index(0, 0);
        CNewsItemDelegate delegate;

        // Measured at 11 points, regular and upright, whatever the view's font.
        QStyleOptionViewItem option = rowOption();
        option.font.setBold(true);
        option.font.setItalic(true);
        QFont measured(option.font);
        measured.setPointSize(11);
        measured.setWeight(QFont::Normal);
        measured.setItalic(false);
        const int advance = QFontMetrics(measured).horizontalAdvance(QStringLiteral("Spring offer"));
        QCOMPARE(delegate.sizeHint(option, index), QSize(advance + extraWidth, kRowSize.height()));

        listTest::RecordingPaintDevice device(kRowSize);
        {
            QPainter painter(&device);
            delegate.paint(&painter, rowOption(), index);
        }
        const QList<PaintRecord> texts = device.ofKind(PaintRecord::Text);
        QCOMPARE(texts.size(), secondLine.isValid() ? 2 : 1);
        QCOMPARE(texts.at(0).text, QStringLiteral("Spring offer"));
        QCOMPARE(qRound(texts.at(0).origin.x()), titleLeft);
        QCOMPARE(texts.at(0).font.weight(), QFont::DemiBold);
        QCOMPARE(texts.at(0).font.pointSize(), 11);
        QVERIFY(texts.at(0).rect.bottom() <= 32.5);
        if (secondLine.isValid()) {
            // The role's integer as text, faded, below the title.
            QCOMPARE(texts.at(1).text, secondLine.toString());
            QCOMPARE(texts.at(1).font.pointSize(), 9);
            QVERIFY(qAbs(texts.at(1).color.alphaF() - 0.6) < 0.01);
            QVERIFY(texts.at(1).rect.top() >= texts.at(0).rect.bottom());
        }
        const QList<PaintRecord> pixmaps = device.ofKind(PaintRecord::Pixmap);
        QCOMPARE(!pixmaps.isEmpty(), withIcon);
        if (withIcon)
            QCOMPARE(pixmaps.first().rect, QRectF(12, 16, 32, 32));
    }

    void selectionUsesTheLightBlueHighlight()
    {
        QStandardItemModel model;
        model.appendRow(new QStandardItem(QStringLiteral("Spring offer")));
        QStyleOptionViewItem option = rowOption();
        option.state |= QStyle::State_Selected | QStyle::State_Active;
        option.showDecorationSelected = true;
        QImage image(kRowSize, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::white);
        {
            QPainter painter(&image);
            CNewsItemDelegate().paint(&painter, option, model.index(0, 0));
        }
        QCOMPARE(image.pixelColor(300, 60).rgb(), QColor(QStringLiteral("#A6D8FF")).rgb());
    }
};

HOST_TEST_MAIN(TestNewsItemDelegate)
#include "tst_cnewsitemdelegate.moc"
