#include "CSignInService.h"
#include "HostRuntime.h"
#include "HostTestMain.h"

#include <QSignalSpy>
#include <QTest>

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

    void derivesTheUserFromTheEmail_data()
    {
        QTest::addColumn<QString>("email");
        QTest::addColumn<QString>("firstName");
        QTest::addColumn<QString>("lastName");
        QTest::addColumn<QString>("userId");
        QTest::newRow("dotted") << "jane.doe@example.com"
                                << "Jane"
                                << "Doe"
                                << "u-jane.doe";
        QTest::newRow("single word") << "support@example.com"
                                     << "Support"
                                     << ""
                                     << "u-support";
        QTest::newRow("underscores") << "mary_ann_lee@example.com"
                                     << "Mary"
                                     << "Ann Lee"
                                     << "u-mary_ann_lee";
    }

    void derivesTheUserFromTheEmail()
    {
        QFETCH(QString, email);
        QFETCH(QString, firstName);
        QFETCH(QString, lastName);
        QFETCH(QString, userId);
        QSignalSpy signedIn(m_service, &CSignInService::signedIn);
        m_service->startSignIn(email, "pw");
        QCOMPARE(signedIn.size(), 0); // answers after the call returns
        QVERIFY(!m_service->getIsSignedIn());
        QVERIFY(signedIn.wait());
        const Ordenz::SignIn::UserInfo user = m_service->getLoggedInUserInfo();
        QCOMPARE(user.firstName, firstName);
        QCOMPARE(user.lastName, lastName);
        QCOMPARE(user.userId, userId);
        QCOMPARE(user.email, email);
    }

    void refusesIncompleteCredentials_data()
    {
        QTest::addColumn<QString>("email");
        QTest::addColumn<QString>("password");
        QTest::newRow("no at sign") << "jane.example.com"
                                    << "pw";
        QTest::newRow("no local part") << "@example.com"
                                       << "pw";
        QTest::newRow("no password") << "jane@example.com"
                                     << "";
    }

    void refusesIncompleteCredentials()
    {
        QFETCH(QString, email);
        QFETCH(QString, password);
        QSignalSpy failed(m_service, &CSignInService::signInFailed);
        QSignalSpy signedIn(m_service, &CSignInService::signedIn);
        m_service->startSignIn(email, password);
        QCOMPARE(failed.size(), 0);
        QVERIFY(failed.wait());
        QVERIFY(!failed.first().first().toString().isEmpty());
        QCOMPARE(signedIn.size(), 0);
        QVERIFY(!m_service->getIsSignedIn());
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

    void signsOutOnlyWhenSignedIn()
    {
        QSignalSpy signedOut(m_service, &CSignInService::signedOut);
        m_service->signOut();
        QCOMPARE(signedOut.size(), 0);
        m_service->setSignedInUser({"u-x", "X", "Y", "x@example.com"});
        m_service->signOut();
        QCOMPARE(signedOut.size(), 1);
        QVERIFY(!m_service->getIsSignedIn());
        QVERIFY(m_service->getLoggedInUserInfo().userId.isEmpty());
    }

    void takesARememberedUserAtOnce()
    {
        QSignalSpy signedIn(m_service, &CSignInService::signedIn);
        m_service->setSignedInUser({"u-self", "Alex", "Morgan", "alex@example.com"});
        QCOMPARE(signedIn.size(), 1);
        QVERIFY(m_service->getIsSignedIn());
        QCOMPARE(m_service->getLoggedInUserInfo().firstName, QStringLiteral("Alex"));
    }

private:
    CSignInService* m_service = nullptr;
};

HOST_TEST_MAIN(TestCSignInService)
#include "tst_csigninservice.moc"
