// The bubble shadows: a small tile drawn in nine pieces looks like the whole bubble blurred.
#include "HostTestMain.h"

#include "CBubbleShadowCache.h"
#include "CNinePatch.h"

#include <QPainter>

class TestBubbleShadowCache : public QObject
{
    Q_OBJECT

    static inline const QMarginsF kReach{2, 1, 5, 5};
    static inline const QColor kPage{QStringLiteral("#eef1f4")};

    static void rounded(QPainter* p, const QRectF& r, const QBrush& b)
    {
        p->setPen(Qt::NoPen);
        p->setBrush(b);
        p->drawRoundedRect(r, 12, 12);
    }

    static int largestDifference(const QImage& a, const QImage& b)
    {
        int largest = 0;
        for (int y = 0; y < a.height(); ++y) {
            for (int x = 0; x < a.width(); ++x) {
                const QRgb p = a.pixel(x, y);
                const QRgb q = b.pixel(x, y);
                largest = std::max({largest, std::abs(qRed(p) - qRed(q)), std::abs(qGreen(p) - qGreen(q)),
                                    std::abs(qBlue(p) - qBlue(q))});
            }
        }
        return largest;
    }

private slots:
    void ninePiecesLookLikeTheWholeBubbleBlurred_data()
    {
        QTest::addColumn<QSizeF>("size");
        QTest::addColumn<qreal>("ratio");
        QTest::newRow("smaller than a tile") << QSizeF(60, 40) << 1.0;
        QTest::newRow("wide") << QSizeF(530, 48) << 1.0;
        QTest::newRow("tall") << QSizeF(90, 3000) << 1.0;
        QTest::newRow("large, fractional") << QSizeF(411.5, 377.25) << 1.0;
        QTest::newRow("large, high resolution") << QSizeF(300, 200) << 2.0;
    }
    void ninePiecesLookLikeTheWholeBubbleBlurred()
    {
        QFETCH(QSizeF, size);
        QFETCH(qreal, ratio);
        const QImage whole = CBubbleShadowCache::render(size, kReach, kPage, QColor(), ratio, rounded);

        CBubbleShadowCache cache(kReach);
        QImage pieced(whole.size(), QImage::Format_ARGB32_Premultiplied);
        pieced.setDevicePixelRatio(ratio);
        pieced.fill(Qt::black);
        QPainter painter(&pieced);
        CNinePatch(cache.tile(size, {12, 12, 12, 12}, kPage, QColor(), ratio, rounded))
            .draw(&painter, QRectF(QPointF(0, 0), size.grownBy(kReach)));
        painter.end();

        QVERIFY(whole.pixelColor(whole.rect().center()) != kPage); // there is a shadow to compare
        QVERIFY2(largestDifference(whole, pieced) <= 2,
                 qPrintable(QString::number(largestDifference(whole, pieced))));
        QVERIFY(cache.bytes() <= 128 * 1024);
    }
};

HOST_TEST_MAIN(TestBubbleShadowCache)
#include "tst_bubbleshadowcache.moc"
