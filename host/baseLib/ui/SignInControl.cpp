#include "SignInControl.h"

#include "CSignInService.h"
#include "CVantrelApp.h"

#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace {

constexpr qreal kTitlePointSize = 13.0;
constexpr int kSectionSpacing = 12;
constexpr int kFieldSpacing = 8;
constexpr int kFieldMinimumWidth = 260;
// The host's table has no text colour for errors; this red reads well on light and dialog backgrounds.
const QColor kErrorTextColor(0xc6, 0x28, 0x28);

CSignInService* signInService()
{
    return vantrelApp ? vantrelApp->getSignInService() : nullptr;
}

QLabel* makeTitle(const QString& text, QWidget* parent)
{
    auto* title = new QLabel(text, parent);
    QFont font = title->font();
    font.setPointSizeF(kTitlePointSize);
    font.setWeight(QFont::DemiBold);
    title->setFont(font);
    return title;
}

QLabel* makeNote(const QString& text, QWidget* parent)
{
    auto* note = new QLabel(text, parent);
    note->setWordWrap(true);
    const QColor quiet = CVantrelApp::GetColor(clrSecondaryText);
    if (quiet.isValid()) {
        QPalette palette = note->palette();
        palette.setColor(QPalette::WindowText, quiet);
        note->setPalette(palette);
    }
    return note;
}

QLineEdit* makeField(const QString& objectName, const QString& placeholder, QWidget* parent)
{
    auto* field = new QLineEdit(parent);
    field->setObjectName(objectName);
    field->setPlaceholderText(placeholder);
    field->setMinimumWidth(kFieldMinimumWidth);
    field->setClearButtonEnabled(true);
    return field;
}

QFormLayout* makeForm()
{
    auto* form = new QFormLayout;
    form->setContentsMargins(0, 0, 0, 0);
    form->setHorizontalSpacing(kSectionSpacing);
    form->setVerticalSpacing(kFieldSpacing);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    form->setLabelAlignment(Qt::AlignRight | Qt::AlignVCenter);
    return form;
}

} // namespace

SignInControl::SignInControl(QWidget* parent)
    : QWidget(parent)
    , m_pages(new QStackedWidget(this))
    , m_email(makeField(QStringLiteral("signInEmail"), tr("name@example.com"), this))
    , m_password(makeField(QStringLiteral("signInPassword"), tr("Password"), this))
    , m_newEmail(makeField(QStringLiteral("createAccountEmail"), tr("name@example.com"), this))
    , m_newPassword(makeField(QStringLiteral("createAccountPassword"), tr("Choose a password"), this))
    , m_firstName(makeField(QStringLiteral("createAccountFirstName"), tr("First name"), this))
    , m_lastName(makeField(QStringLiteral("createAccountLastName"), tr("Last name"), this))
    , m_error(new QLabel(this))
{
    m_password->setEchoMode(QLineEdit::Password);
    m_newPassword->setEchoMode(QLineEdit::Password);
    m_pages->setObjectName(QStringLiteral("signInPages"));

    auto* signInPage = new QWidget(m_pages);
    auto* signInLayout = new QVBoxLayout(signInPage);
    signInLayout->setContentsMargins(0, 0, 0, 0);
    signInLayout->setSpacing(kSectionSpacing);
    signInLayout->addWidget(makeTitle(tr("Sign in to contact support"), signInPage));
    signInLayout->addWidget(
        makeNote(tr("Use the e-mail address and password of your account. Support answers you there, too."),
                 signInPage));
    QFormLayout* signInForm = makeForm();
    signInForm->addRow(tr("E-mail:"), m_email);
    signInForm->addRow(tr("Password:"), m_password);
    signInLayout->addLayout(signInForm);
    signInLayout->addStretch(1);
    m_pages->addWidget(signInPage);

    auto* createPage = new QWidget(m_pages);
    auto* createLayout = new QVBoxLayout(createPage);
    createLayout->setContentsMargins(0, 0, 0, 0);
    createLayout->setSpacing(kSectionSpacing);
    createLayout->addWidget(makeTitle(tr("Create an account"), createPage));
    createLayout->addWidget(
        makeNote(tr("Tell us who you are; you will be signed in right away."), createPage));
    QFormLayout* createForm = makeForm();
    createForm->addRow(tr("First name:"), m_firstName);
    createForm->addRow(tr("Last name:"), m_lastName);
    createForm->addRow(tr("E-mail:"), m_newEmail);
    createForm->addRow(tr("Password:"), m_newPassword);
    createLayout->addLayout(createForm);
    auto* backLink = new QLabel(
        QStringLiteral("<a href=\"#signin\">%1</a>").arg(tr("I already have an account")), createPage);
    backLink->setObjectName(QStringLiteral("backToSignInLink"));
    connect(backLink, &QLabel::linkActivated, this, [this] { handleReject(); });
    createLayout->addWidget(backLink);
    createLayout->addStretch(1);
    m_pages->addWidget(createPage);

    m_error->setObjectName(QStringLiteral("signInError"));
    m_error->setWordWrap(true);
    m_error->setTextFormat(Qt::PlainText);
    QPalette errorPalette = m_error->palette();
    errorPalette.setColor(QPalette::WindowText, kErrorTextColor);
    m_error->setPalette(errorPalette);
    m_error->hide();

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(kSectionSpacing);
    layout->addWidget(m_pages, 1);
    layout->addWidget(m_error);

    for (QLineEdit* field : {m_email, m_password, m_newEmail, m_newPassword, m_firstName, m_lastName}) {
        connect(field, &QLineEdit::textEdited, this, [this] {
            m_error->hide();
            updateCaps();
        });
        connect(field, &QLineEdit::textChanged, this, &SignInControl::updateCaps);
        connect(field, &QLineEdit::returnPressed, this, &SignInControl::startAction);
    }

    if (CSignInService* service = signInService()) {
        connect(service, &CSignInService::signedIn, this, &SignInControl::onSignedIn);
        connect(service, &CSignInService::signInFailed, this, &SignInControl::onSignInFailed);
        connect(service, &CSignInService::signedOut, this, &SignInControl::updateCaps);
    }
    m_caps = computeCaps();
}

SignInControl::~SignInControl() = default;

unsigned SignInControl::getUiCapsFlags() const
{
    return m_caps;
}

bool SignInControl::isSubmitEnabled() const
{
    return m_caps & CapSubmitEnabled;
}

bool SignInControl::isSubmitVisible() const
{
    return m_caps & CapSubmitVisible;
}

QString SignInControl::getSubmitActionName(const QString& defaultName) const
{
    if (m_caps & CapFinished)
        return defaultName;
    return m_pages->currentIndex() == CreateAccountPage ? tr("Create account") : tr("Sign in");
}

void SignInControl::setFocusToLogin()
{
    if (m_pages->currentIndex() == CreateAccountPage)
        m_firstName->setFocus(Qt::OtherFocusReason);
    else if (m_email->text().isEmpty())
        m_email->setFocus(Qt::OtherFocusReason);
    else
        m_password->setFocus(Qt::OtherFocusReason);
}

void SignInControl::broadcastUiCapsFlags()
{
    m_caps = computeCaps();
    emit uiCapsChanged();
}

void SignInControl::startAction()
{
    CSignInService* service = signInService();
    if (!service || m_busy || service->getIsSignedIn())
        return;
    if (!isFormFilled()) {
        showError(m_pages->currentIndex() == CreateAccountPage
                      ? tr("Please enter your name, an e-mail address and a password.")
                      : tr("Please enter your e-mail address and password."));
        return;
    }
    m_busy = true;
    m_error->hide();
    setInputsEnabled(false);
    updateCaps();
    if (m_pages->currentIndex() == CreateAccountPage)
        service->startCreateAccount(m_newEmail->text().trimmed(), m_newPassword->text(), m_firstName->text(),
                                    m_lastName->text());
    else
        service->startSignIn(m_email->text().trimmed(), m_password->text());
}

bool SignInControl::handleReject()
{
    if (m_busy || m_pages->currentIndex() != CreateAccountPage)
        return false;
    m_pages->setCurrentIndex(SignInPage);
    m_error->hide();
    updateCaps();
    setFocusToLogin();
    return true;
}

void SignInControl::handleCreateAccountRequest()
{
    if (m_busy || (m_caps & CapFinished))
        return;
    if (m_newEmail->text().isEmpty())
        m_newEmail->setText(m_email->text().trimmed());
    m_pages->setCurrentIndex(CreateAccountPage);
    m_error->hide();
    updateCaps();
    setFocusToLogin();
}

void SignInControl::updateCaps()
{
    const unsigned caps = computeCaps();
    if (caps == m_caps)
        return;
    m_caps = caps;
    emit uiCapsChanged();
}

unsigned SignInControl::computeCaps() const
{
    const CSignInService* service = signInService();
    if (service && service->getIsSignedIn())
        return CapFinished | CapCanCancel;
    unsigned caps = CapCanCancel | CapSubmitVisible | CapCanCreateAccount;
    if (m_pages->currentIndex() == CreateAccountPage)
        caps |= CapCreateAccountPage;
    if (m_busy)
        caps |= CapBusy;
    else if (isFormFilled())
        caps |= CapSubmitEnabled;
    return caps;
}

bool SignInControl::isFormFilled() const
{
    if (m_pages->currentIndex() == CreateAccountPage) {
        return !m_firstName->text().trimmed().isEmpty() && m_newEmail->text().contains(QLatin1Char('@')) &&
               !m_newPassword->text().isEmpty();
    }
    return m_email->text().contains(QLatin1Char('@')) && !m_password->text().isEmpty();
}

void SignInControl::setInputsEnabled(bool enabled)
{
    for (QLineEdit* field : {m_email, m_password, m_newEmail, m_newPassword, m_firstName, m_lastName})
        field->setEnabled(enabled);
}

void SignInControl::showError(const QString& text)
{
    m_error->setText(text);
    m_error->show();
}

void SignInControl::onSignedIn()
{
    m_busy = false;
    m_error->hide();
    setInputsEnabled(true);
    m_password->clear();
    m_newPassword->clear();
    updateCaps();
}

void SignInControl::onSignInFailed(const QString& reason)
{
    // Another form's attempt is none of this form's business.
    if (!m_busy)
        return;
    m_busy = false;
    setInputsEnabled(true);
    showError(reason.isEmpty() ? tr("Signing in failed. Please try again.") : reason);
    updateCaps();
    if (m_pages->currentIndex() == CreateAccountPage)
        m_newPassword->setFocus(Qt::OtherFocusReason);
    else
        m_password->setFocus(Qt::OtherFocusReason);
}
