// The application object and the host environment it exposes: identity, application events, what the host
// records (links, flashed windows), the services it hands out and the switches tests can turn.

#include "CNewsFetcher.h"
#include "CReadNewsEntryRequest.h"
#include "CSignInService.h"
#include "ConfigurableObjects.h"
#include "HostRuntime.h"
#include "HostTestMain.h"
#include "HostWindows.h"

#include <QSignalSpy>
#include <QStyle>
#include <QWidget>

namespace {

// Listens to application events the way page plugins do: accepts the news-entry requests it is after.
class EntryRequestListener : public QObject
{
public:
    explicit EntryRequestListener(bool accept)
        : m_accept(accept)
    {
        connect(vantrelApp, &CVantrelApp::applicationEvent, this, [this](QEvent* event) {
            if (event->type() != CReadNewsEntryRequest::EventType)
                return;
            lastEntryId = static_cast<CReadNewsEntryRequest*>(event)->getNewsEntryId();
            if (m_accept)
                event->accept();
        });
    }
    QString lastEntryId;

private:
    bool m_accept;
};

} // namespace

class TestCVantrelApp : public QObject
{
    Q_OBJECT

private slots:
    void init() { HostRuntime::instance().events.clear(); }

    void isTheOneHostApplication()
    {
        QCOMPARE(vantrelApp, qobject_cast<CVantrelApp*>(qApp));
        QCOMPARE(QCoreApplication::applicationName(), QStringLiteral("VantrelDesktop"));
        QCOMPARE(QApplication::style()->name(), QStringLiteral("fusion"));
    }

    void applicationEventReportsWhetherItWasTaken()
    {
        CReadNewsEntryRequest request(QStringLiteral("n1"), 2);
        QCOMPARE(int(request.type()), 1078);
        QCOMPARE(request.getFlags(), 2);
        QVERIFY(!vantrelApp->postApplicationEvent(&request)); // nobody listens

        EntryRequestListener ignoring(false);
        request.accept(); // a stale acceptance must not count
        QVERIFY(!vantrelApp->postApplicationEvent(&request));
        QCOMPARE(ignoring.lastEntryId, QStringLiteral("n1"));

        EntryRequestListener accepting(true);
        QVERIFY(vantrelApp->postApplicationEvent(&request));
        QCOMPARE(accepting.lastEntryId, QStringLiteral("n1"));
        QVERIFY(!vantrelApp->postApplicationEvent(nullptr));
    }

    void broadcastReachesListeners()
    {
        QSignalSpy spy(vantrelApp, &CVantrelApp::appBroadcastRequest);
        vantrelApp->broadcastRequest(BroadcastWriteToSupport);
        QCOMPARE(spy.size(), 1);
        QCOMPARE(spy.at(0).at(0).value<AppBroadcastRequest>(), BroadcastWriteToSupport);
    }

    void linksAndFlashesAreRecorded()
    {
        QVERIFY(!HostRuntime::instance().openExternally);
        QSignalSpy recorded(&HostRuntime::instance(), &HostRuntime::eventRecorded);
        vantrelApp->onExternalBrowserLinkClicked(QStringLiteral("https://example.com/a?b=c"));
        QWidget window;
        flashWindow(window.winId(), 10);
        flashWindow(HWND(0), 3); // an unknown window is still recorded

        const QList<HostRuntime::Event>& events = HostRuntime::instance().events;
        QCOMPARE(recorded.size(), 3);
        QCOMPARE(events.size(), 3);
        QCOMPARE(events.at(0).kind, QStringLiteral("openLink"));
        QCOMPARE(events.at(0).details.value("url").toString(), QStringLiteral("https://example.com/a?b=c"));
        QCOMPARE(events.at(1).kind, QStringLiteral("flashWindow"));
        QCOMPARE(events.at(1).details.value("count").toUInt(), 10u);
        QCOMPARE(events.at(2).details.value("count").toUInt(), 3u);
    }

    void servicesAreSharedAndGuarded()
    {
        HostRuntime& runtime = HostRuntime::instance();
        auto restore = qScopeGuard([&] { runtime.newsFetcherAvailable = true; });
        const std::shared_ptr<CNewsFetcher> fetcher = vantrelApp->getNewsFetcher();
        QVERIFY(fetcher);
        QCOMPARE(vantrelApp->getNewsFetcher(), fetcher);
        runtime.newsFetcherAvailable = false;
        QVERIFY(!vantrelApp->getNewsFetcher());

        CSignInService* service = vantrelApp->getSignInService();
        QCOMPARE(vantrelApp->getSignInService(), service);
        QCOMPARE(service->parent(), vantrelApp);

        auto* window = new QWidget;
        vantrelApp->setMainWidget(window);
        QCOMPARE(vantrelApp->mainWidget(), window);
        delete window;
        QVERIFY(!vantrelApp->mainWidget());
    }

    void switchesFollowTheHost()
    {
        HostRuntime& runtime = HostRuntime::instance();
        auto restore = qScopeGuard([&] {
            runtime.canUseWebEngine = true;
            runtime.windowsPE = false;
            runtime.allowed.clear();
            runtime.visible.clear();
        });
        QVERIFY(vantrelApp->getCanUseWebEngineWidgets());
        QVERIFY(!IsWindowsPE());
        // Unknown feature switches are on.
        QVERIFY(ConfigurableObjects::isAllowed(QStringLiteral("useZendeskTickets")));
        QVERIFY(ConfigurableObjects::isVisible(QStringLiteral("showNews")));

        runtime.canUseWebEngine = false;
        runtime.windowsPE = true;
        runtime.allowed.insert(QStringLiteral("useZendeskTickets"), false);
        runtime.visible.insert(QStringLiteral("showNews"), false);
        QVERIFY(!vantrelApp->getCanUseWebEngineWidgets());
        QVERIFY(IsWindowsPE());
        QVERIFY(!ConfigurableObjects::isAllowed(QStringLiteral("useZendeskTickets")));
        QVERIFY(!ConfigurableObjects::isVisible(QStringLiteral("showNews")));
        // Allowed and visible are independent of each other.
        QVERIFY(ConfigurableObjects::isVisible(QStringLiteral("useZendeskTickets")));
        QVERIFY(ConfigurableObjects::isAllowed(QStringLiteral("showNews")));
    }
};

HOST_TEST_MAIN(TestCVantrelApp)
#include "tst_cvantrelapp.moc"
