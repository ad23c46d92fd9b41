// The application object: identity, application events and broadcasts.

#include "CNewsFetcher.h"
#include "CReadNewsEntryRequest.h"
#include "CSignInService.h"
#include "ConfigurableObjects.h"
#include "HostRuntime.h"
#include "HostTestMain.h"
#include "HostWindows.h"

#include <QSignalSpy>
#include <QStyle>

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
};

HOST_TEST_MAIN(TestCVantrelApp)
#include "tst_cvantrelapp.moc"
