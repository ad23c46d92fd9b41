// The host focus frame.

#include "HostPainting.h"
#include "HostTestMain.h"

#include <QImage>
#include <QPainter>

namespace {

constexpr int canvasSize = 40;
const QRect frameRect(5, 5, 30, 20);

QImage paintFrame(const QColor& color, const QStyle* style)
{
    QImage image(canvasSize, canvasSize, QImage::Format_ARGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    drawFocusRect(&painter, frameRect, color, QStyle::State_None, style);
    painter.end();
    return image;
}

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
    void hostFrameIsADottedLineOnTheEdge()
    {
        const QImage image = paintFrame(Qt::red, nullptr);

        // Nothing outside the rectangle, nothing in its inside.
        QCOMPARE(changedPixels(image, QRect(0, 0, canvasSize, frameRect.top())), 0);
        QCOMPARE(changedPixels(image, frameRect.adjusted(2, 2, -2, -2)), 0);

        // The straight part of the top edge is dotted: some pixels painted red, some left blank.
        int red = 0;
        int blank = 0;
        for (int x = frameRect.left() + 4; x <= frameRect.right() - 4; ++x) {
            const QColor pixel = image.pixelColor(x, frameRect.top());
            if (pixel == Qt::white)
                ++blank;
            else if (pixel.red() > 200 && pixel.green() < 120)
                ++red;
        }
        QVERIFY(red > 4);
        QVERIFY(blank > 4);
    }

    void styleFrameIsDrawnWhenAStyleIsGiven()
    {
        const QImage image = paintFrame(Qt::red, QApplication::style());
        QVERIFY(changedPixels(image, frameRect) > 0);
        QCOMPARE(changedPixels(image, QRect(0, 0, canvasSize, 2)), 0);
    }

    void invalidInputPaintsNothing()
    {
        QImage image(canvasSize, canvasSize, QImage::Format_ARGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        drawFocusRect(&painter, QRect(), Qt::red);
        drawFocusRect(nullptr, frameRect, Qt::red);
        painter.end();
        QCOMPARE(changedPixels(image, image.rect()), 0);
    }
};

HOST_TEST_MAIN(TestHostPainting)
#include "tst_hostpainting.moc"
