// The host's UI pieces: the forms of its form repository render at their working size with nothing squeezed
// away, the busy indicator and icon control, named images (pixel ratios, the avatar tinted through
// currentColor), idle calls, balloons, the dialog base (its form above the buttons, modal and modeless runs,
// Escape), the web page that sends what the user starts to the system browser, and the sign-in service with
// scripted results and the sign-in form the dialogs show (busy while the service works, the reason of a
// failure, creating an account).
#include "HostTestMain.h"

#include "BalloonMessage.h"
#include "CBusyStateCtl.h"
#include "CFormRepository.h"
#include "CIconControl.h"
#include "CKOLDialog.h"
#include "CSignInService.h"
#include "CVantrelWebPage.h"
#include "HostColors.h"
#include "HostRuntime.h"
#include "QtHelpersImages.h"
#include "QtHelpersInvoke.h"
#include "SignInControl.h"

#include <QAccessible>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPointer>
#include <QPushButton>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QScreen>
#include <QSignalSpy>
#include <QStackedWidget>
#include <QSvgRenderer>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>
#include <QWebEngineView>
#include <QtGui/private/qguiapplication_p.h>
#include <qpa/qplatformaccessibility.h>
#include <qpa/qplatformintegration.h>

namespace {

const QString kMainScreen = QStringLiteral("newsReader.mainScreen.ui");
const QString kCreateIncident = QStringLiteral("communications.createIncident.ui");
const QSize kMainScreenSize(1000, 700);
const QSize kDialogFormSize(640, 420);

int distinctColours(const QImage& image)
{
    QSet<QRgb> colours;
    for (int y = 0; y < image.height(); y += 3)
        for (int x = 0; x < image.width(); x += 3)
            colours.insert(image.pixel(x, y));
    return colours.size();
}

} // namespace

namespace {
// The objects of the alerts told to assistive technology.
QList<QPointer<QObject>> s_alerts;

void recordAlert(QAccessibleEvent* event)
{
    if (event->type() == QAccessible::Alert)
        s_alerts.append(event->object());
}

// The toolkit passes events on only while a screen reader listens; the test is one.
void listenAsScreenReader(bool listen)
{
    QPlatformAccessibility* accessibility = QGuiApplicationPrivate::platformIntegration()->accessibility();
    QVERIFY(accessibility);
    accessibility->setActive(listen);
    QAccessible::installUpdateHandler(listen ? recordAlert : nullptr);
    s_alerts.clear();
}
} // namespace

namespace {

// A dialog on the new-conversation form that keeps itself open on OK until told otherwise.
class ProbeDialog : public CKOLDialog
{
    Q_OBJECT
public:
    explicit ProbeDialog(const QString& form, bool modeless = false)
        : CKOLDialog(nullptr, modeless, QVariant(42), modeless)
        , m_form(form)
    {}

    int setupCalls = 0;
    int acceptCalls = 0;
    bool closeOnAccept = false;
    QLineEdit* subject = nullptr;

protected:
    QString getFormResourceName() const override { return m_form; }
    QSize getInitialSize() const override { return QSize(640, 480); }
    void setupUi() override
    {
        ++setupCalls;
        subject = findChild<QLineEdit*>("subjectEdit");
    }
    void onAccept() override
    {
        ++acceptCalls;
        if (closeOnAccept)
            CKOLDialog::onAccept();
    }

private:
    QString m_form;
};

} // namespace

namespace {
constexpr int kLoadTimeoutMs = 20000;
const QString kPage = QStringLiteral("<html><body><a id='link' href='https://example.com/offer'>Offer</a>"
                                     "</body></html>");
} // namespace

namespace {
constexpr unsigned kIdleSignInCaps =
    SignInControl::CapCanCancel | SignInControl::CapSubmitVisible | SignInControl::CapCanCreateAccount;
} // namespace

class TestHostUi : public QObject
{
    Q_OBJECT

private:
    QWidget* m_window = nullptr;
    QLineEdit* m_edit = nullptr;

    bool load(CVantrelWebPage& page)
    {
        QSignalSpy loaded(&page, &QWebEnginePage::loadFinished);
        page.setHtml(kPage, QUrl("https://news.example.com/"));
        return loaded.wait(kLoadTimeoutMs) && loaded.first().first().toBool();
    }

    void fillSignIn(const QString& email, const QString& password)
    {
        QTest::keyClicks(field("signInEmail"), email);
        QTest::keyClicks(field("signInPassword"), password);
    }

    QLineEdit* field(const char* name) const { return m_control->findChild<QLineEdit*>(name); }
    CSignInService* m_service = nullptr;
    SignInControl* m_control = nullptr;

private slots:
    void init()
    {
        HostControl::clearEvents();
        HostControl::setShowBalloons(true);
        m_window = new QWidget;
        m_window->resize(400, 300);
        m_window->move(100, 100);
        auto* layout = new QVBoxLayout(m_window);
        m_edit = new QLineEdit(m_window);
        m_edit->setObjectName("subjectEdit");
        layout->addWidget(m_edit);
        layout->addStretch();
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window));
        HostControl::clearEvents();
        HostControl::clearEvents();
        HostControl::setOpenExternally(false);
        m_service = vantrelApp->getSignInService();
        m_service->signOut();
        HostRuntime::instance().nextSignInResult.reset();
        m_control = new SignInControl;
        m_control->show();
    }

    void cleanup()
    {
        delete m_window;
        m_window = nullptr;
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        delete m_control;
        m_control = nullptr;
    }

    void rendersAtItsWorkingSize_data()
    {
        QTest::addColumn<QString>("form");
        QTest::addColumn<QString>("stack");
        QTest::addColumn<int>("page");
        QTest::addColumn<QSize>("size");
        QTest::newRow("main empty list") << kMainScreen << "stackedWidget" << 0 << kMainScreenSize;
        QTest::newRow("main no thread") << kMainScreen << "stackedWidget" << 2 << kMainScreenSize;
        QTest::newRow("main conversation") << kMainScreen << "stackedWidget" << 3 << kMainScreenSize;
        QTest::newRow("dialog sign-in") << kCreateIncident << "stackedWidget" << 0 << kDialogFormSize;
        QTest::newRow("dialog form") << kCreateIncident << "stackedWidget" << 1 << kDialogFormSize;
        QTest::newRow("dialog busy") << kCreateIncident << "stackedWidget" << 2 << kDialogFormSize;
    }

    void rendersAtItsWorkingSize()
    {
        QFETCH(QString, form);
        QFETCH(QString, stack);
        QFETCH(int, page);
        QFETCH(QSize, size);
        std::unique_ptr<QWidget> widget(CFormRepository::load(form, nullptr));
        QVERIFY(widget);
        widget->setPalette(hostPalette());
        widget->findChild<QStackedWidget*>(stack)->setCurrentIndex(page);
        if (auto* busy = widget->findChild<CBusyStateCtl*>("busyStateCtl"))
            busy->setBusyText(QStringLiteral("Creating new communication..."));
        if (auto* title = widget->findChild<QLabel*>("issueTitle"))
            title->setText(QStringLiteral("Cannot restore my backup"));
        widget->resize(size);
        widget->show();
        QVERIFY(QTest::qWaitForWindowExposed(widget.get()));
        QCOMPARE(widget->size(), size);
        const QImage image = widget->grab().toImage();
        QVERIFY2(distinctColours(image) > 4, "the page renders blank");
        // Nothing of the visible page may be squeezed to nothing.
        QWidget* current = widget->findChild<QStackedWidget*>(stack)->currentWidget();
        for (QWidget* child : current->findChildren<QWidget*>()) {
            if (child->isVisibleTo(widget.get()) && !qobject_cast<QStackedWidget*>(child->parentWidget()))
                QVERIFY2(child->height() > 0 && child->width() > 0, qPrintable(child->objectName()));
        }
    }

    void busyIndicatorSpinsOnlyWhileVisible()
    {
        QWidget page;
        auto* busy = new CBusyStateCtl(&page);
        busy->resize(200, 100);
        auto* timer = busy->findChild<QTimer*>();
        QVERIFY(timer);
        QVERIFY(!timer->isActive());
        page.show();
        QVERIFY(timer->isActive());
        const QImage first = busy->grab().toImage();
        QTest::qWait(150);
        QVERIFY2(busy->grab().toImage() != first, "the spinner did not move");
        page.hide(); // hiding the page hides the indicator with it
        QVERIFY(!timer->isActive());
    }

    void iconControlPaintsItsIconCentred()
    {
        CIconControl control;
        control.setIcon(qtHelpers::images::icon("balloon-critical"));
        control.setIconSize(QSize(24, 24));
        control.resize(64, 64);
        const QImage image = control.grab().toImage();
        // The red disc sits in the middle; the corners stay the background.
        const QColor centre = image.pixelColor(26, 32); // left of the white cross
        QVERIFY(centre.red() > 200 && centre.green() < 120);
        QVERIFY(image.pixelColor(2, 2) != centre);
    }

    void pixmapsAndIconsCarryTheRequestedPixelRatio()
    {
        const QPixmap plain = qtHelpers::images::pixmap("ico-stop-download", -1, false);
        QCOMPARE(plain.devicePixelRatio(), 1.0);
        const QPixmap hiDpi = qtHelpers::images::pixmap("ico-stop-download", -1, true);
        const qreal ratio = QGuiApplication::primaryScreen()->devicePixelRatio();
        QCOMPARE(hiDpi.devicePixelRatio(), ratio);
        QCOMPARE(hiDpi.deviceIndependentSize().toSize(), QSize(32, 32));
        const QPixmap sharp = qtHelpers::images::icon("arrow-down").pixmap(QSize(16, 16), 2.0);
        QCOMPARE(sharp.size(), QSize(32, 32));
        QCOMPARE(sharp.devicePixelRatio(), 2.0);
    }

    void avatarIsTintableThroughCurrentColor()
    {
        QByteArray svg = qtHelpers::images::svgData("AvatarSingle");
        QVERIFY(svg.contains("currentColor"));
        const QColor tint(0x3a, 0x7b, 0xd5);
        svg.replace("currentColor", tint.name().toLatin1());
        QSvgRenderer renderer(svg);
        QVERIFY(renderer.isValid());
        QImage image(40, 40, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        renderer.render(&painter);
        painter.end();
        // The ring of the avatar is the tint; the figure in the middle stays light.
        QCOMPARE(image.pixelColor(20, 1).rgb(), tint.rgb());
        QCOMPARE(image.pixelColor(3, 20).rgb(), tint.rgb());
        QVERIFY(image.pixelColor(20, 15).lightness() > 200);
    }

    void neverRunsInsideTheCall()
    {
        QObject context;
        bool ran = false;
        qtHelpers::invokeOnIdle(&context, [&] { ran = true; });
        QVERIFY(!ran);
        QVERIFY(QTest::qWaitFor([&] { return ran; }));
        bool ranWithoutContext = false;
        qtHelpers::invokeOnIdle(nullptr, [&] { ranWithoutContext = true; });
        QVERIFY(!ranWithoutContext);
        QVERIFY(QTest::qWaitFor([&] { return ranWithoutContext; }));
    }

    void skipsCallsWhoseContextIsGone()
    {
        auto* context = new QObject;
        QPointer<QObject> guard(context);
        int runs = 0;
        qtHelpers::invokeOnIdle(context, [&] {
            ++runs;
            delete context;
        });
        qtHelpers::invokeOnIdle(context, [&] { ++runs; });
        auto* deletedBeforeIdle = new QObject;
        qtHelpers::invokeOnIdle(deletedBeforeIdle, [&] { ++runs; });
        delete deletedBeforeIdle;
        QObject witness;
        bool witnessRan = false;
        qtHelpers::invokeOnIdle(&witness, [&] { witnessRan = true; });
        QVERIFY(QTest::qWaitFor([&] { return witnessRan; }));
        QVERIFY(guard.isNull());
        QCOMPARE(runs, 1);
    }

    void showsOnlyWhileBalloonsAreOn_data()
    {
        QTest::addColumn<bool>("show");
        QTest::newRow("on") << true;
        QTest::newRow("off") << false;
    }

    void showsOnlyWhileBalloonsAreOn()
    {
        QFETCH(bool, show);
        HostControl::setShowBalloons(show);
        listenAsScreenReader(true);
        auto stopListening = qScopeGuard([] { listenAsScreenReader(false); });
        QPointer<CAbstractPopupAssistant> balloon =
            issueBalloonMessage(m_edit, "Text", QMessageBox::Warning, QRect(), 5000);
        QVERIFY(balloon);
        QCOMPARE(balloon->isVisible(), show);
        // A shown balloon is announced once, as an alert that reads its text; a hidden one is not.
        QCOMPARE(s_alerts.count(balloon.data()), show ? 1 : 0);
        QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(balloon);
        QVERIFY(accessible);
        QCOMPARE(accessible->role(), QAccessible::AlertMessage);
        QCOMPARE(accessible->text(QAccessible::Name), QStringLiteral("Text"));
        QCOMPARE(balloon->text(), QStringLiteral("Text"));
        QCOMPARE(balloon->icon(), QMessageBox::Warning);
        QCOMPARE(balloon->target(), m_edit);
        QCOMPARE(HostControl::events("balloon").size(), 1);
    }

    void closesAfterTimeoutTargetLossOrCloseButton_data()
    {
        QTest::addColumn<QString>("how");
        for (const char* how : {"timeout", "target destroyed", "close button"})
            QTest::newRow(how) << how;
    }

    void closesAfterTimeoutTargetLossOrCloseButton()
    {
        QFETCH(QString, how);
        constexpr unsigned shortTimeout = 50;
        QPointer<CAbstractPopupAssistant> balloon =
            issueBalloonMessage(m_edit, "Bye", QMessageBox::Critical, QRect(),
                                how == QLatin1String("timeout") ? shortTimeout : 0);
        QVERIFY(balloon);
        QSignalSpy closed(balloon.data(), &CAbstractPopupAssistant::closed);
        if (how == QLatin1String("target destroyed")) {
            delete m_edit;
            m_edit = nullptr;
        } else if (how == QLatin1String("close button")) {
            auto* closeButton = balloon->findChild<QToolButton*>("balloonClose");
            QVERIFY(closeButton);
            QVERIFY(!closeButton->icon().isNull());
            closeButton->click();
        }
        QVERIFY(QTest::qWaitFor([&] { return balloon.isNull(); }));
        QCOMPARE(closed.size(), 1);
    }

    void paintsARoundedBubbleWithItsArrow()
    {
        QPointer<CAbstractPopupAssistant> balloon = issueBalloonMessage(
            m_edit, "Please specify a subject of your inquiry to start chat with support.",
            QMessageBox::Critical, QRect(), 0);
        QVERIFY(balloon);
        const QImage image = balloon->grab().toImage();
        const QPoint anchor =
            balloon->mapFromGlobal(m_edit->mapToGlobal(QPoint(m_edit->width() / 2, m_edit->height())));
        // Corners are outside the rounded bubble; the middle is the balloon's background.
        QCOMPARE(qAlpha(image.pixel(0, 0)), 0);
        QCOMPARE(qAlpha(image.pixel(image.width() - 1, image.height() - 1)), 0);
        const QColor middle = image.pixelColor(image.width() / 2, image.height() - 14);
        QCOMPARE(middle.alpha(), 255);
        // Just below the arrow tip the arrow is filled.
        QCOMPARE(qAlpha(image.pixel(anchor.x(), anchor.y() + 6)), 255);
    }

    void loadsItsFormAboveTheButtonsOnce()
    {
        ProbeDialog dialog("communications.createIncident.ui");
        QVERIFY(dialog.ensureLoaded());
        QVERIFY(dialog.ensureLoaded());
        QCOMPARE(dialog.setupCalls, 1);
        QVERIFY(dialog.formWidget());
        QVERIFY(dialog.subject);
        QVERIFY(dialog.formWidget()->findChild<QStackedWidget*>("stackedWidget"));
        QVERIFY(dialog.okButton());
        QVERIFY(dialog.cancelButton());
        QVERIFY(dialog.okButton()->isDefault());
        QCOMPARE(dialog.argument(), QVariant(42));
        dialog.resize(640, 480);
        dialog.show();
        QVERIFY(dialog.formWidget()->geometry().bottom() <
                dialog.okButton()->mapTo(&dialog, QPoint(0, 0)).y());
    }

    void runsModallyAndRecordsTheResult_data()
    {
        QTest::addColumn<bool>("accept");
        QTest::addColumn<int>("result");
        QTest::newRow("ok") << true << int(QDialog::Accepted);
        QTest::newRow("cancel") << false << int(QDialog::Rejected);
    }

    void runsModallyAndRecordsTheResult()
    {
        QFETCH(bool, accept);
        QFETCH(int, result);
        ProbeDialog dialog("communications.createIncident.ui");
        dialog.closeOnAccept = true;
        QSize shownSize;
        QTimer::singleShot(0, &dialog, [&] {
            shownSize = dialog.size();
            (accept ? dialog.okButton() : dialog.cancelButton())->click();
        });
        QCOMPARE(dialog.Execute(), result);
        QCOMPARE(shownSize, QSize(640, 480));
        const auto events = HostControl::events("dialogExecuted");
        QCOMPARE(events.size(), 1);
        QVERIFY(events.first().details.value("class").toString().endsWith("ProbeDialog"));
        QCOMPARE(events.first().details.value("result").toInt(), result);
    }

    void withoutItsFormItDoesNotOpen()
    {
        CKOLDialog bare(nullptr, false, {}, false);
        QTest::ignoreMessage(QtCriticalMsg, QRegularExpression("cannot load form"));
        QCOMPARE(bare.Execute(), int(QDialog::Rejected));
        QVERIFY(!bare.isVisible() && !bare.formWidget());
        QVERIFY(HostControl::events("dialogExecuted").isEmpty());
    }

    // A modeless dialog is shown at a fixed size and Execute() returns at once; Escape presses Cancel, which
    // does nothing while it is disabled; the result is recorded when the dialog finishes.
    void modelessDialogsReturnAtOnceAndRecordWhenTheyFinish()
    {
        ProbeDialog dialog("communications.createIncident.ui", true);
        QCOMPARE(dialog.Execute(), int(QDialog::Rejected));
        QVERIFY(dialog.isVisible() && !dialog.isModal());
        QCOMPARE(dialog.minimumSize(), dialog.maximumSize());
        QVERIFY(HostControl::events("dialogExecuted").isEmpty());
        dialog.cancelButton()->setEnabled(false);
        QTest::keyClick(&dialog, Qt::Key_Escape);
        QVERIFY(dialog.isVisible());
        dialog.cancelButton()->setEnabled(true);
        QTest::keyClick(&dialog, Qt::Key_Escape);
        QVERIFY(!dialog.isVisible());
        const auto events = HostControl::events("dialogExecuted");
        QCOMPARE(events.size(), 1);
        QCOMPARE(events.first().details.value("result").toInt(), int(QDialog::Rejected));
    }

    void sendsClickedLinksToTheSystemBrowser_data()
    {
        QTest::addColumn<bool>("external");
        QTest::newRow("external") << true;
        QTest::newRow("in place") << false;
    }

    void sendsClickedLinksToTheSystemBrowser()
    {
        QFETCH(bool, external);
        QWebEngineView view;
        auto* page = new CVantrelWebPage(&view);
        page->setAlwaysOpenLinkInExternalBrowser(external);
        QCOMPARE(page->alwaysOpenLinkInExternalBrowser(), external);
        view.setPage(page);
        view.resize(400, 300);
        view.show();
        // Content the host sets itself always loads.
        QVERIFY(load(*page));

        QSignalSpy urlChanged(page, &QWebEnginePage::urlChanged);
        page->runJavaScript(QStringLiteral("document.getElementById('link').click();"));
        if (external) {
            QVERIFY(
                QTest::qWaitFor([] { return !HostControl::events("openLink").isEmpty(); }, kLoadTimeoutMs));
            QCOMPARE(HostControl::events("openLink").first().details.value("url").toString(),
                     QStringLiteral("https://example.com/offer"));
            QCOMPARE(page->url(), QUrl("https://news.example.com/"));
        } else {
            // The page navigates in place (the address need not be reachable); nothing goes to the browser.
            QVERIFY(QTest::qWaitFor([&] { return !urlChanged.isEmpty(); }, kLoadTimeoutMs));
            QVERIFY(HostControl::events("openLink").isEmpty());
        }
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
};

HOST_TEST_MAIN(TestHostUi)
#include "tst_hostui.moc"
