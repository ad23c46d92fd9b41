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
