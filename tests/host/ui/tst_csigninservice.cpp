#include "CSignInService.h"
#include "HostRuntime.h"
#include "HostTestMain.h"

#include <QSignalSpy>
#include <QTest>

class TestCSignInService : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void answersAfterTheCallReturns();
    void derivesTheUserFromTheEmail_data();
    void derivesTheUserFromTheEmail();
    void refusesIncompleteCredentials_data();
    void refusesIncompleteCredentials();
    void followsAScriptedFailureOnce();
    void followsAScriptedSuccess();
    void createsAnAccountWithTheGivenNames();
    void signsOutOnlyWhenSignedIn();
    void takesARememberedUserAtOnce();

private:
    CSignInService* m_service = nullptr;
};

void TestCSignInService::init()
{
    m_service = vantrelApp->getSignInService();
    QVERIFY(m_service);
    m_service->signOut();
    HostRuntime::instance().nextSignInResult.reset();
}

void TestCSignInService::answersAfterTheCallReturns()
{
    QSignalSpy signedIn(m_service, &CSignInService::signedIn);
    m_service->startSignIn("jane.doe@example.com", "secret");
    QCOMPARE(signedIn.size(), 0);
    QVERIFY(!m_service->getIsSignedIn());
    QVERIFY(signedIn.wait());
    QVERIFY(m_service->getIsSignedIn());
}

void TestCSignInService::derivesTheUserFromTheEmail_data()
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

void TestCSignInService::derivesTheUserFromTheEmail()
{
    QFETCH(QString, email);
    QFETCH(QString, firstName);
    QFETCH(QString, lastName);
    QFETCH(QString, userId);
    QSignalSpy signedIn(m_service, &CSignInService::signedIn);
    m_service->startSignIn(email, "pw");
    QVERIFY(signedIn.wait());
    const Ordenz::SignIn::UserInfo user = m_service->getLoggedInUserInfo();
    QCOMPARE(user.firstName, firstName);
    QCOMPARE(user.lastName, lastName);
    QCOMPARE(user.userId, userId);
    QCOMPARE(user.email, email);
}

void TestCSignInService::refusesIncompleteCredentials_data()
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

void TestCSignInService::refusesIncompleteCredentials()
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

void TestCSignInService::followsAScriptedFailureOnce()
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
}

void TestCSignInService::followsAScriptedSuccess()
{
    HostControl::scriptSignInResult(true);
    QSignalSpy signedIn(m_service, &CSignInService::signedIn);
    m_service->startSignIn("not-an-address", "");
    QVERIFY(signedIn.wait());
    QVERIFY(m_service->getIsSignedIn());
}

void TestCSignInService::createsAnAccountWithTheGivenNames()
{
    QSignalSpy signedIn(m_service, &CSignInService::signedIn);
    m_service->startCreateAccount("jd@example.com", "pw", "Jane", "Doe-Smith");
    QVERIFY(signedIn.wait());
    const Ordenz::SignIn::UserInfo user = m_service->getLoggedInUserInfo();
    QCOMPARE(user.firstName, QStringLiteral("Jane"));
    QCOMPARE(user.lastName, QStringLiteral("Doe-Smith"));
    QCOMPARE(user.userId, QStringLiteral("u-jd"));
}

void TestCSignInService::signsOutOnlyWhenSignedIn()
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

void TestCSignInService::takesARememberedUserAtOnce()
{
    QSignalSpy signedIn(m_service, &CSignInService::signedIn);
    m_service->setSignedInUser({"u-self", "Alex", "Morgan", "alex@example.com"});
    QCOMPARE(signedIn.size(), 1);
    QVERIFY(m_service->getIsSignedIn());
    QCOMPARE(m_service->getLoggedInUserInfo().firstName, QStringLiteral("Alex"));
}

HOST_TEST_MAIN(TestCSignInService)
#include "tst_csigninservice.moc"
