#include "CNewIncidentDialog.h"

#include "CFormTexts.h"

#include "BalloonMessage.h"
#include "CBusyStateCtl.h"
#include "CSignInService.h"
#include "CVantrelApp.h"
#include "ChatServiceApi.h"
#include "SignInControl.h"
#include "TicketServiceApi.h"

#include <QLabel>
#include <QLineEdit>
#include <QLoggingCategory>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStackedWidget>

#include <stdexcept>

namespace {

Q_LOGGING_CATEGORY(lcNewIncident, "newsReader.newIncidentDialog")

const QString kFormName = QStringLiteral("communications.createIncident.ui");

// Flag bits of the sign-in control that decide the dialog's own buttons.
constexpr unsigned kCapCanCancel = 0x1;
constexpr unsigned kCapCanCreateAccount = 0x8;
constexpr unsigned kCapCreateAccountPage = 0x80;
constexpr unsigned kCapFinished = 0x800;

CSignInService* signInService()
{
    return vantrelApp ? vantrelApp->getSignInService() : nullptr;
}

bool isSignedIn()
{
    const CSignInService* service = signInService();
    return service && service->getIsSignedIn();
}

void showError(QWidget* widget, const QString& text)
{
    issueBalloonMessage(widget, text, QMessageBox::Critical, QRect(), kDefaultBalloonTimeout, 0);
}

} // namespace

CNewIncidentDialog::CNewIncidentDialog(QWidget* parent, const QVariant& argument)
    : CKOLDialog(parent, false, argument, false)
{
    if (CSignInService* service = signInService())
        connect(service, &CSignInService::signedIn, this, &CNewIncidentDialog::onSignedIn);
}

CNewIncidentDialog::~CNewIncidentDialog() = default;

template<class T>
T* CNewIncidentDialog::findControl(const QString& name) const
{
    T* control = findChild<T*>(name);
    if (!control) {
        const QString error = QObject::tr("CKOLDialog (%1): no control found: %2")
                                  .arg(QString::fromLatin1(metaObject()->className()), name);
        qCCritical(lcNewIncident).noquote() << error;
        throw std::runtime_error(error.toStdString());
    }
    return control;
}

QString CNewIncidentDialog::getFormResourceName() const
{
    return kFormName;
}

QSize CNewIncidentDialog::getInitialSize() const
{
    return QSize(kInitialWidth, kInitialHeight);
}

bool CNewIncidentDialog::escapeRejects() const
{
    return true;
}

bool CNewIncidentDialog::isFixedTopLevelSize() const
{
    return false;
}

void CNewIncidentDialog::setupUi()
{
    CFormTexts::translate(this);
    m_signInControl = findControl<SignInControl>(QStringLiteral("signInControl"));
    m_createAccountLink = findControl<QLabel>(QStringLiteral("createAccountLink"));
    m_messageEdit = findControl<QPlainTextEdit>(QStringLiteral("messageEdit"));
    m_subjectEdit = findControl<QLineEdit>(QStringLiteral("subjectEdit"));
    m_titleArea = findControl<QWidget>(QStringLiteral("PART_TitleArea"));
    m_caption = findControl<QLabel>(QStringLiteral("PART_DialogCaption"));
    m_charsTypedLabel = findControl<QLabel>(QStringLiteral("charsTypedLabel"));
    m_stackedWidget = findControl<QStackedWidget>(QStringLiteral("stackedWidget"));

    QPalette background = palette();
    background.setColor(QPalette::Window, CVantrelApp::GetColor(kBackgroundColor));
    setPalette(background);

    m_okText = okButton()->text();
    m_cancelText = cancelButton()->text();
    connect(m_createAccountLink, &QLabel::linkActivated, m_signInControl,
            &SignInControl::handleCreateAccountRequest);
    connect(m_signInControl, &SignInControl::uiCapsChanged, this,
            &CNewIncidentDialog::onSignInUiFlagsChanged);
    m_signInControl->broadcastUiCapsFlags();

    QFont captionFont = m_caption->font();
    captionFont.setPointSizeF(kCaptionPointSize);
    m_caption->setFont(captionFont);
    m_caption->setText(QObject::tr("Write us a message!"));

    showCounter();
    connect(m_messageEdit, &QPlainTextEdit::textChanged, this, &CNewIncidentDialog::onMessageChanged);
    connect(m_subjectEdit, &QLineEdit::textChanged, this, &CNewIncidentDialog::onSubjectChanged);

    if (isSignedIn()) {
        // A signed-in user's sign-in control only offers "Close"; the form page needs OK and Cancel.
        onSignedIn();
    } else {
        m_stackedWidget->setCurrentIndex(SignInPage);
        m_titleArea->setVisible(false);
        m_signInControl->setFocusToLogin();
    }
}

int CNewIncidentDialog::getButtonsMask() const
{
    return kButtonsMask;
}

QString CNewIncidentDialog::getHelpTopic() const
{
    return QString();
}

bool CNewIncidentDialog::showErrorsAsBalloons() const
{
    return true;
}

bool CNewIncidentDialog::canCloseOnAccept() const
{
    return true;
}

void CNewIncidentDialog::onAccept()
{
    auto* busyState = findControl<CBusyStateCtl>(QStringLiteral("busyStateCtl"));

    if (!isSignedIn()) {
        if (m_signInControl)
            m_signInControl->startAction();
        return;
    }
    if (m_subject.isEmpty()) {
        showError(m_subjectEdit,
                  QObject::tr("Please specify a subject of your inquiry to start chat with support."));
        if (m_subjectEdit)
            m_subjectEdit->setFocus();
        return;
    }
    if (m_message.isEmpty()) {
        showError(m_messageEdit, QObject::tr("Please specify a message to start chat with support."));
        if (m_messageEdit)
            m_messageEdit->setFocus();
        return;
    }
    QString counter;
    if (!ChatServiceApi::checkCommunicationLength(m_message, counter)) {
        showError(m_messageEdit, QObject::tr("The message is too long, please make it shorter."));
        return;
    }

    // The dialog only ever opens a conversation with text; files are added in the thread afterwards.
    m_request = TicketServiceApi::startCreateTicket(m_message, m_subject, {});
    if (!m_request)
        return;
    busyState->setBusyText(QObject::tr("Creating new communication..."));
    connect(m_request, &TicketEntityCreateHandler::finished, this, &CNewIncidentDialog::onIncidentCreated);
    connect(m_request, &TicketEntityCreateHandler::requestErrorOccured, this,
            &CNewIncidentDialog::onIncidentCreationError);
    if (m_stackedWidget)
        m_stackedWidget->setCurrentIndex(BusyPage);
    okButton()->setEnabled(false);
}

void CNewIncidentDialog::reject()
{
    // The sign-in control may only step back inside its own pages.
    if (m_signInControl && m_signInControl->handleReject())
        return;
    if (m_request) {
        // Nothing of the cancelled request is of interest any more: no apology balloon after Cancel.
        m_request->disconnect(this);
        m_request->abort();
        m_request = nullptr;
    }
    CKOLDialog::reject();
}

void CNewIncidentDialog::onIncidentCreated(bool succeeded)
{
    if (m_stackedWidget)
        m_stackedWidget->setCurrentIndex(FormPage);
    if (m_request) {
        if (succeeded)
            emit newIncidentCreated(m_request->getNewTicketEntity());
        m_request->deleteLater();
        m_request = nullptr;
    }
    if (!succeeded) {
        okButton()->setEnabled(true);
        return;
    }
    done(0);
}

void CNewIncidentDialog::onIncidentCreationError(int, QNetworkReply::NetworkError, QString errorString,
                                                 QByteArray)
{
    // Back on the form first, so that the balloon points at an editor the user can see.
    if (m_stackedWidget)
        m_stackedWidget->setCurrentIndex(FormPage);
    const QString text =
        QStringLiteral("%1 %2 %3")
            .arg(QObject::tr("Sorry, we couldn't start chat with Support. Please try again later."),
                 QObject::tr("Error reason:"), errorString);
    showError(m_messageEdit, text);
}

void CNewIncidentDialog::onSignInUiFlagsChanged()
{
    if (!m_signInControl)
        return;
    const unsigned flags = m_signInControl->getUiCapsFlags();

    if (m_createAccountLink)
        m_createAccountLink->setVisible((flags & kCapCanCreateAccount) && !(flags & kCapCreateAccountPage) &&
                                        !isSignedIn());

    QPushButton* escape = cancelButton();
    escape->setText((flags & kCapFinished) ? QObject::tr("&Close") : QObject::tr("&Cancel"));
    escape->setVisible(true);
    escape->setEnabled(flags & (kCapCanCancel | kCapFinished));

    QPushButton* ok = okButton();
    ok->setEnabled(m_signInControl->isSubmitEnabled());
    const QString submitName = m_signInControl->getSubmitActionName(QString());
    ok->setText(submitName.isEmpty() ? m_okText : submitName);
    ok->setVisible(m_signInControl->isSubmitVisible());
}

void CNewIncidentDialog::onSignedIn()
{
    okButton()->setEnabled(true);
    okButton()->setVisible(true);
    cancelButton()->setEnabled(true);
    // The sign-in page named them ("Sign in", "&Close"); on the form they are OK and Cancel again.
    if (!m_okText.isEmpty())
        okButton()->setText(m_okText);
    if (!m_cancelText.isEmpty())
        cancelButton()->setText(m_cancelText);
    if (m_signInControl)
        disconnect(m_signInControl, nullptr, this, nullptr);
    if (m_stackedWidget)
        m_stackedWidget->setCurrentIndex(FormPage);
    if (m_createAccountLink)
        m_createAccountLink->setVisible(false);
    if (m_titleArea)
        m_titleArea->setVisible(true);
    if (m_subjectEdit)
        m_subjectEdit->setFocus();
}

void CNewIncidentDialog::onMessageChanged()
{
    if (!m_messageEdit)
        return;
    m_message = m_messageEdit->toPlainText().trimmed();
    showCounter();
}

void CNewIncidentDialog::onSubjectChanged(const QString& text)
{
    m_subject = text.trimmed();
}

void CNewIncidentDialog::showCounter()
{
    QString counter;
    ChatServiceApi::checkCommunicationLength(m_message, counter);
    if (m_charsTypedLabel)
        m_charsTypedLabel->setText(counter);
}
