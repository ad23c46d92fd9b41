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

    void offersSignInWhileSignedOut()
    {
        QCOMPARE(m_control->getUiCapsFlags(), kIdleSignInCaps);
        QVERIFY(m_control->isSubmitVisible());
        QVERIFY(!m_control->isSubmitEnabled());
        QCOMPARE(m_control->getSubmitActionName("OK"), QStringLiteral("Sign in"));
        QSignalSpy changed(m_control, &SignInControl::uiCapsChanged);
        m_control->broadcastUiCapsFlags();
        QCOMPARE(changed.size(), 1);
    }

    void enablesSubmitOnceFilledAndAnnouncesEveryChangeOnce()
    {
        QSignalSpy changed(m_control, &SignInControl::uiCapsChanged);
        QTest::keyClicks(field("signInEmail"), "jane@example.com");
        QCOMPARE(changed.size(), 0); // no password yet: the flags did not change
        QTest::keyClicks(field("signInPassword"), "abc");
        QCOMPARE(changed.size(), 1);
        QVERIFY(m_control->isSubmitEnabled());
        field("signInEmail")->clear();
        QVERIFY(!m_control->isSubmitEnabled());
        QCOMPARE(changed.size(), 2);
    }

    void switchesToCreatingAnAccountAndBack()
    {
        QSignalSpy changed(m_control, &SignInControl::uiCapsChanged);
        m_control->handleCreateAccountRequest();
        QCOMPARE(changed.size(), 1);
        QVERIFY(m_control->getUiCapsFlags() & SignInControl::CapCreateAccountPage);
        QCOMPARE(m_control->getSubmitActionName(), QStringLiteral("Create account"));

        QVERIFY(m_control->handleReject());
        QCOMPARE(changed.size(), 2);
        QCOMPARE(m_control->getUiCapsFlags(), kIdleSignInCaps);
        QCOMPARE(m_control->getSubmitActionName(), QStringLiteral("Sign in"));
        // On the sign-in page a rejection is the dialog's to handle.
        QVERIFY(!m_control->handleReject());
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

    void createsAnAccountFromItsSecondPage()
    {
        QTest::keyClicks(field("signInEmail"), "sam@example.com");
        m_control->handleCreateAccountRequest();
        QCOMPARE(field("createAccountEmail")->text(), QStringLiteral("sam@example.com"));
        QTest::keyClicks(field("createAccountFirstName"), "Sam");
        QTest::keyClicks(field("createAccountLastName"), "Lee");
        QTest::keyClicks(field("createAccountPassword"), "pw");
        QVERIFY(m_control->isSubmitEnabled());
        QSignalSpy signedIn(m_service, &CSignInService::signedIn);
        m_control->startAction();
        QVERIFY(signedIn.wait());
        QCOMPARE(m_service->getLoggedInUserInfo().lastName, QStringLiteral("Lee"));
        QVERIFY(m_control->getUiCapsFlags() & SignInControl::CapFinished);
    }

    void refusesToSubmitAnIncompleteForm()
    {
        QTest::keyClicks(field("signInEmail"), "jane@example.com");
        QSignalSpy failed(m_service, &CSignInService::signInFailed);
        QSignalSpy signedIn(m_service, &CSignInService::signedIn);
        m_control->startAction();
        QVERIFY(m_control->findChild<QLabel*>("signInError")->isVisible());
        QVERIFY(!(m_control->getUiCapsFlags() & SignInControl::CapBusy));
        QTest::qWait(20);
        QCOMPARE(signedIn.size() + failed.size(), 0);
    }

    void isFinishedWhenAlreadySignedIn()
    {
        HostControl::setSignedIn(true);
        SignInControl control;
        QCOMPARE(control.getUiCapsFlags() & SignInControl::CapFinished, unsigned(SignInControl::CapFinished));
        QVERIFY(!control.isSubmitVisible());
        QSignalSpy changed(&control, &SignInControl::uiCapsChanged);
        m_service->signOut();
        QCOMPARE(changed.size(), 1);
        QVERIFY(!(control.getUiCapsFlags() & SignInControl::CapFinished));
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
