// The sign-in service with scripted results, and the sign-in form the dialogs show: busy while the service
// works, the reason of a failure, and creating an account.
#include "CSignInService.h"
#include "HostRuntime.h"
#include "HostTestMain.h"
#include "SignInControl.h"

#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>

namespace {
constexpr unsigned kIdleSignInCaps =
    SignInControl::CapCanCancel | SignInControl::CapSubmitVisible | SignInControl::CapCanCreateAccount;
} // namespace

class TestSignInControl : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_service = vantrelApp->getSignInService();
        m_service->signOut();
        HostRuntime::instance().nextSignInResult.reset();
        m_control = new SignInControl;
        m_control->show();
    }

    void cleanup()
    {
        delete m_control;
        m_control = nullptr;
    }

    void isBusyUntilTheServiceAnswers()
    {
        fillSignIn("jane.doe@example.com", "pw");
        QSignalSpy signedIn(m_service, &CSignInService::signedIn);
        m_control->startAction();
        QVERIFY(m_control->getUiCapsFlags() & SignInControl::CapBusy);
        QVERIFY(!m_control->isSubmitEnabled());
        QVERIFY(!field("signInEmail")->isEnabled());
        QVERIFY(signedIn.wait());
        QCOMPARE(m_control->getUiCapsFlags() & SignInControl::CapFinished,
                 unsigned(SignInControl::CapFinished));
        QVERIFY(!(m_control->getUiCapsFlags() & SignInControl::CapBusy));
        QVERIFY(!m_control->isSubmitVisible());
        QCOMPARE(m_control->getSubmitActionName("OK"), QStringLiteral("OK"));
    }

    void showsTheReasonWhenSigningInFails()
    {
        HostControl::scriptSignInResult(false, "Wrong password");
        fillSignIn("jane@example.com", "pw");
        QSignalSpy failed(m_service, &CSignInService::signInFailed);
        m_control->startAction();
        QVERIFY(failed.wait());
        auto* error = m_control->findChild<QLabel*>("signInError");
        QVERIFY(error);
        QVERIFY(error->isVisible());
        QCOMPARE(error->text(), QStringLiteral("Wrong password"));
        QCOMPARE(m_control->getUiCapsFlags(), kIdleSignInCaps | SignInControl::CapSubmitEnabled);
        QVERIFY(field("signInPassword")->isEnabled());
    }

    // A new user asks for an account: the form takes the e-mail typed so far, wants a name, an address and a
    // password, and signs in on success; the way back to signing in is open until then.
    void createsAnAccountAndSignsIn()
    {
        QTest::keyClicks(field("signInEmail"), "new.user@example.com");
        QVERIFY(!m_control->handleReject());
        m_control->handleCreateAccountRequest();
        QCOMPARE(field("createAccountEmail")->text(), QStringLiteral("new.user@example.com"));
        QCOMPARE(m_control->getSubmitActionName("OK"), QStringLiteral("Create account"));
        QVERIFY(m_control->getUiCapsFlags() & SignInControl::CapCreateAccountPage);
        m_control->startAction();
        auto* error = m_control->findChild<QLabel*>("signInError");
        QCOMPARE(error->text(), QStringLiteral("Please enter your name, an e-mail address and a password."));
        QVERIFY(m_control->handleReject());
        QCOMPARE(m_control->getSubmitActionName("OK"), QStringLiteral("Sign in"));
        QVERIFY(error->isHidden());
        m_control->startAction();
        QCOMPARE(error->text(), QStringLiteral("Please enter your e-mail address and password."));

        m_control->handleCreateAccountRequest();
        QTest::keyClicks(field("createAccountFirstName"), "Nina");
        QTest::keyClicks(field("createAccountLastName"), "New");
        QVERIFY(!m_control->isSubmitEnabled());
        QTest::keyClicks(field("createAccountPassword"), "secret");
        QVERIFY(m_control->isSubmitEnabled());
        HostControl::scriptSignInResult(false);
        QSignalSpy failed(m_service, &CSignInService::signInFailed);
        m_control->startAction();
        QVERIFY(failed.wait());
        QCOMPARE(error->text(),
                 QStringLiteral("An account cannot be created with this e-mail address and password."));
        QSignalSpy signedIn(m_service, &CSignInService::signedIn);
        m_control->startAction();
        QVERIFY(signedIn.wait());
        QVERIFY(m_control->getUiCapsFlags() & SignInControl::CapFinished);
        QVERIFY(field("createAccountPassword")->text().isEmpty());
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
    void fillSignIn(const QString& email, const QString& password)
    {
        QTest::keyClicks(field("signInEmail"), email);
        QTest::keyClicks(field("signInPassword"), password);
    }

    QLineEdit* field(const char* name) const { return m_control->findChild<QLineEdit*>(name); }
    CSignInService* m_service = nullptr;
    SignInControl* m_control = nullptr;
};

HOST_TEST_MAIN(TestSignInControl)
#include "tst_signincontrol.moc"
