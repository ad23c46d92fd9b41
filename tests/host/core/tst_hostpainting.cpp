// Painting geometry of the host: the focus frame and mapping layout rectangles to widget pixels.

#include "CSettingsLoader.h"
#include "HostPainting.h"
#include "HostTestMain.h"
#include "Mapper.h"

#include <QImage>
#include <QPainter>

namespace {

constexpr int canvasSize = 40;
const QRect frameRect(5, 5, 30, 20);

int changedPixels(const QImage& image, const QRect& area)
{
    int count = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x)
            count += image.pixel(x, y) != qRgb(255, 255, 255) ? 1 : 0;
    }
    return count;
}

} // namespace

class TestHostPainting : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { vantrelApp->getSettingsInstance().Remove(QStringLiteral("UIScale")); }

    void focusFrameStaysOnTheEdge_data()
    {
        QTest::addColumn<bool>("withStyle");
        QTest::newRow("host frame") << false;
        QTest::newRow("style frame") << true;
    }

    void focusFrameStaysOnTheEdge()
    {
        QFETCH(bool, withStyle);
        QImage image(canvasSize, canvasSize, QImage::Format_ARGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        drawFocusRect(&painter, frameRect, Qt::red, QStyle::State_None,
                      withStyle ? QApplication::style() : nullptr);
        drawFocusRect(&painter, QRect(), Qt::red); // an empty rectangle paints nothing
        drawFocusRect(nullptr, frameRect, Qt::red);
        painter.end();

        QVERIFY(changedPixels(image, frameRect) > 0);
        QCOMPARE(changedPixels(image, QRect(0, 0, canvasSize, 2)), 0);
        if (withStyle)
            return;
        QCOMPARE(changedPixels(image, QRect(0, 0, canvasSize, frameRect.top())), 0);
        QCOMPARE(changedPixels(image, frameRect.adjusted(2, 2, -2, -2)), 0);
        // The straight part of the top edge is dotted: some pixels painted red, some left blank.
        int red = 0;
        int blank = 0;
        for (int x = frameRect.left() + 4; x <= frameRect.right() - 4; ++x) {
            const QColor pixel = image.pixelColor(x, frameRect.top());
            blank += pixel == Qt::white ? 1 : 0;
            red += pixel.red() > 200 && pixel.green() < 120 ? 1 : 0;
        }
        QVERIFY(red > 4);
        QVERIFY(blank > 4);
    }

    void mapperRoundsOutwardsUnderTheUiScale_data()
    {
        QTest::addColumn<QVariant>("scale");
        QTest::addColumn<QRectF>("rect");
        QTest::addColumn<QRect>("expected");
        QTest::newRow("fractional edges") << QVariant() << QRectF(0.2, 0.7, 9.6, 9.1) << QRect(0, 0, 10, 10);
        QTest::newRow("negative edges") << QVariant() << QRectF(-1.5, 2.0, 3.0, 1.0) << QRect(-2, 2, 4, 1);
        // 10..21 scaled is 15..31.5, which needs pixels 15 to 31 inclusive.
        QTest::newRow("scaled") << QVariant(1.5) << QRectF(10, 10, 11, 11) << QRect(15, 15, 17, 17);
        QTest::newRow("broken scale") << QVariant("big") << QRectF(1, 2, 3, 4) << QRect(1, 2, 3, 4);
        QTest::newRow("zero scale") << QVariant(0) << QRectF(1, 2, 3, 4) << QRect(1, 2, 3, 4);
    }

    void mapperRoundsOutwardsUnderTheUiScale()
    {
        QFETCH(QVariant, scale);
        QFETCH(QRectF, rect);
        QFETCH(QRect, expected);
        if (scale.isValid())
            vantrelApp->getSettingsInstance().Write(QStringLiteral("UIScale"), scale);
        QCOMPARE(Mapper::map(rect), expected);
        if (rect == rect.toRect())
            QCOMPARE(Mapper::map(rect.toRect()), expected);
    }
};

HOST_TEST_MAIN(TestHostPainting)
#include "tst_hostpainting.moc"
