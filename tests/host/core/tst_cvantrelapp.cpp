// The application object: identity, application events, broadcasts, links and the services it hands out.

#include "CNewsFetcher.h"
#include "CReadNewsEntryRequest.h"
#include "CSignInService.h"
#include "HostRuntime.h"
#include "HostTestMain.h"

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
        connect(vantrelApp, &CVantrelApp::applicationEvent, this, &EntryRequestListener::onApplicationEvent);
    }
    QString lastEntryId;

private:
    void onApplicationEvent(QEvent* event)
    {
        if (event->type() != CReadNewsEntryRequest::EventType)
            return;
        lastEntryId = static_cast<CReadNewsEntryRequest*>(event)->getNewsEntryId();
        if (m_accept)
            event->accept();
    }
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
        QCOMPARE(QCoreApplication::organizationName(), QStringLiteral("Vantrel"));
        QCOMPARE(QApplication::style()->name(), QStringLiteral("fusion"));
    }

    void newsEntryRequestCarriesItsEntry()
    {
        const CReadNewsEntryRequest request(QStringLiteral("news-7"), 2);
        QCOMPARE(int(request.type()), 1078);
        QCOMPARE(request.getNewsEntryId(), QStringLiteral("news-7"));
        QCOMPARE(request.getFlags(), 2);
    }

    void applicationEventReportsWhetherItWasTaken()
    {
        CReadNewsEntryRequest request(QStringLiteral("n1"));
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

    void externalLinksAreRecorded()
    {
        QVERIFY(!HostRuntime::instance().openExternally);
        vantrelApp->onExternalBrowserLinkClicked(QStringLiteral("https://example.com/a?b=c"));
        QCOMPARE(HostRuntime::instance().events.size(), 1);
        QCOMPARE(HostRuntime::instance().events.at(0).kind, QStringLiteral("openLink"));
        QCOMPARE(HostRuntime::instance().events.at(0).details.value("url").toString(),
                 QStringLiteral("https://example.com/a?b=c"));
    }

    void newsFetcherIsSharedAndCanBeAbsent()
    {
        HostRuntime& runtime = HostRuntime::instance();
        auto restore = qScopeGuard([&] { runtime.newsFetcherAvailable = true; });
        const std::shared_ptr<CNewsFetcher> fetcher = vantrelApp->getNewsFetcher();
        QVERIFY(fetcher);
        QCOMPARE(vantrelApp->getNewsFetcher(), fetcher);
        runtime.newsFetcherAvailable = false;
        QVERIFY(!vantrelApp->getNewsFetcher());
    }

    void signInServiceIsOneChildOfTheApplication()
    {
        CSignInService* service = vantrelApp->getSignInService();
        QVERIFY(service);
        QCOMPARE(vantrelApp->getSignInService(), service);
        QCOMPARE(service->parent(), vantrelApp);
    }

    void mainWidgetIsGuarded()
    {
        auto* window = new QWidget;
        vantrelApp->setMainWidget(window);
        QCOMPARE(vantrelApp->mainWidget(), window);
        delete window;
        QVERIFY(!vantrelApp->mainWidget());
    }

    void webEngineSwitchFollowsTheHost()
    {
        HostRuntime& runtime = HostRuntime::instance();
        auto restore = qScopeGuard([&] { runtime.canUseWebEngine = true; });
        QVERIFY(vantrelApp->getCanUseWebEngineWidgets());
        runtime.canUseWebEngine = false;
        QVERIFY(!vantrelApp->getCanUseWebEngineWidgets());
    }
};

HOST_TEST_MAIN(TestCVantrelApp)
#include "tst_cvantrelapp.moc"
