// Feature switches: everything is on unless the host configuration turns it off.

#include "ConfigurableObjects.h"
#include "HostRuntime.h"
#include "HostTestMain.h"

class TestConfigurableObjects : public QObject
{
    Q_OBJECT

private slots:
    void cleanup()
    {
        HostRuntime::instance().allowed.clear();
        HostRuntime::instance().visible.clear();
    }

    void unknownSwitchesAreOn()
    {
        QVERIFY(ConfigurableObjects::isAllowed(QStringLiteral("allowMessengerMode")));
        QVERIFY(ConfigurableObjects::isVisible(QStringLiteral("showNews")));
        QVERIFY(ConfigurableObjects::isAllowed(QString()));
    }

    void allowedAndVisibleAreIndependent()
    {
        HostRuntime::instance().allowed.insert(QStringLiteral("useZendeskTickets"), false);
        HostRuntime::instance().visible.insert(QStringLiteral("showNews"), false);
        QVERIFY(!ConfigurableObjects::isAllowed(QStringLiteral("useZendeskTickets")));
        QVERIFY(ConfigurableObjects::isVisible(QStringLiteral("useZendeskTickets")));
        QVERIFY(!ConfigurableObjects::isVisible(QStringLiteral("showNews")));
        QVERIFY(ConfigurableObjects::isAllowed(QStringLiteral("showNews")));
        HostRuntime::instance().allowed.insert(QStringLiteral("useZendeskTickets"), true);
        QVERIFY(ConfigurableObjects::isAllowed(QStringLiteral("useZendeskTickets")));
    }
};

HOST_TEST_MAIN(TestConfigurableObjects)
#include "tst_configurableobjects.moc"
