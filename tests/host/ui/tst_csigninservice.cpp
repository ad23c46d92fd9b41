#include "CSignInService.h"
#include "HostRuntime.h"
#include "HostTestMain.h"

#include <QSignalSpy>

class TestCSignInService : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_service = vantrelApp->getSignInService();
        QVERIFY(m_service);
        m_service->signOut();
        HostRuntime::instance().nextSignInResult.reset();
    }

    void followsScriptedResultsOnce()
    {
        HostControl::scriptSignInResult(false, "Account locked");
        QSignalSpy failed(m_service, &CSignInService::signInFailed);
        QSignalSpy signedIn(m_service, &CSignInService::signedIn);
        m_service->startSignIn("jane@example.com", "right");
        QVERIFY(failed.wait());
        QCOMPARE(failed.first().first().toString(), QStringLiteral("Account locked"));
        QVERIFY(!m_service->getIsSignedIn());

        m_service->startSignIn("jane@example.com", "right");
        QVERIFY(signedIn.wait());
        QCOMPARE(failed.size(), 1);

        // A scripted success accepts even what would be refused.
        m_service->signOut();
        HostControl::scriptSignInResult(true);
        m_service->startSignIn("not-an-address", "");
        QVERIFY(signedIn.wait());
        QVERIFY(m_service->getIsSignedIn());
    }

    void createsAnAccountWithTheGivenNames()
    {
        QSignalSpy signedIn(m_service, &CSignInService::signedIn);
        m_service->startCreateAccount("jd@example.com", "pw", "Jane", "Doe-Smith");
        QVERIFY(signedIn.wait());
        const Ordenz::SignIn::UserInfo user = m_service->getLoggedInUserInfo();
        QCOMPARE(user.firstName, QStringLiteral("Jane"));
        QCOMPARE(user.lastName, QStringLiteral("Doe-Smith"));
        QCOMPARE(user.userId, QStringLiteral("u-jd"));
    }

private:
    CSignInService* m_service = nullptr;
};

HOST_TEST_MAIN(TestCSignInService)
#include "tst_csigninservice.moc"
