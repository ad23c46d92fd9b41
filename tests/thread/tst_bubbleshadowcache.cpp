// The cache of blurred bubble shadows: same pictures as a fresh computation, one computation per shape.
#include "HostTestMain.h"

#include "CBubbleShadowCache.h"

#include <QPainter>

class TestBubbleShadowCache : public QObject
{
    Q_OBJECT

    static void square(QPainter* p, const QRectF& r, const QBrush& b) { p->fillRect(r, b); }

private slots:
    void givesExactlyTheFreshPicture()
    {
        CBubbleShadowCache cache;
        const QSizeF size(123.5, 47.25);
        const QImage fresh = CBubbleShadowCache::render(size, Qt::white, square);
        const QImage first = cache.shadow(size, {12, 12, 0, 12}, Qt::white, square);
        const QImage second = cache.shadow(size, {12, 12, 0, 12}, Qt::white, square);
        QCOMPARE(first, fresh);
        QCOMPARE(second, fresh);
        QCOMPARE(cache.misses(), 1);
    }

    void imageHasRoomAroundTheShapeAndIsBlurred()
    {
        const QImage image = CBubbleShadowCache::render(QSizeF(100, 40), QColor("#eef1f4"), square);
        QCOMPARE(image.size(), QSize(200, 140));
        QCOMPARE(image.pixelColor(25, 70), QColor("#eef1f4"));
        // The shape's edge is softened: neither the page colour nor the shadow colour right at the edge.
        const QColor edge = image.pixelColor(50, 70);
        QVERIFY(edge != QColor("#eef1f4"));
        QVERIFY(edge != QColor("#ccd1d1"));
    }

    void distinguishesSizeRadiiAndColour()
    {
        CBubbleShadowCache cache;
        cache.shadow({100, 40}, {12, 12, 0, 12}, Qt::white, square);
        cache.shadow({100, 41}, {12, 12, 0, 12}, Qt::white, square);
        cache.shadow({100, 40}, {12, 12, 12, 0}, Qt::white, square);
        cache.shadow({100, 40}, {12, 12, 0, 12}, Qt::gray, square);
        cache.shadow({100, 40}, {12, 12, 0, 12}, Qt::white, square);
        QCOMPARE(cache.misses(), 4);
        QCOMPARE(cache.count(), 4);
    }

    void dropsImagesBeyondItsBudget()
    {
        CBubbleShadowCache cache(200 * 140 * 4 * 2);
        for (int i = 0; i < 5; ++i)
            cache.shadow(QSizeF(100, 40 + i), {}, Qt::white, square);
        QVERIFY(cache.count() <= 2);
        QCOMPARE(cache.misses(), 5);
    }
};

HOST_TEST_MAIN(TestBubbleShadowCache)
#include "tst_bubbleshadowcache.moc"
