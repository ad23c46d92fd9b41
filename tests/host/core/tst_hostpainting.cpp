// Painting geometry of the host: mapping layout rectangles to widget pixels under the UI scale.

#include "CSettingsLoader.h"
#include "HostPainting.h"
#include "HostTestMain.h"
#include "Mapper.h"

class TestHostPainting : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { vantrelApp->getSettingsInstance().Remove(QStringLiteral("UIScale")); }

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
