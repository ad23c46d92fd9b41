// Mapping layout rectangles to whole widget pixels under the host's UI scale.

#include "CSettingsLoader.h"
#include "HostTestMain.h"
#include "Mapper.h"

class TestMapper : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { vantrelApp->getSettingsInstance().Remove(QStringLiteral("UIScale")); }

    void fractionalEdgesRoundOutwards()
    {
        QCOMPARE(Mapper::map(QRectF(0.2, 0.7, 9.6, 9.1)), QRect(0, 0, 10, 10));
        QCOMPARE(Mapper::map(QRectF(-1.5, 2.0, 3.0, 1.0)), QRect(-2, 2, 4, 1));
        QCOMPARE(Mapper::map(QRect(3, 4, 20, 10)), QRect(3, 4, 20, 10));
    }

    void uiScaleIsApplied()
    {
        vantrelApp->getSettingsInstance().Write(QStringLiteral("UIScale"), 1.5);
        // 10..21 scaled is 15..31.5, which needs pixels 15 to 31 inclusive.
        QCOMPARE(Mapper::map(QRect(10, 10, 11, 11)), QRect(15, 15, 17, 17));
        QCOMPARE(Mapper::map(QRectF(0, 0, 10, 4)), QRect(0, 0, 15, 6));
    }

    void brokenScaleFallsBackToOne()
    {
        vantrelApp->getSettingsInstance().Write(QStringLiteral("UIScale"), QStringLiteral("big"));
        QCOMPARE(Mapper::map(QRect(1, 2, 3, 4)), QRect(1, 2, 3, 4));
        vantrelApp->getSettingsInstance().Write(QStringLiteral("UIScale"), 0);
        QCOMPARE(Mapper::map(QRect(1, 2, 3, 4)), QRect(1, 2, 3, 4));
    }
};

HOST_TEST_MAIN(TestMapper)
#include "tst_mapper.moc"
