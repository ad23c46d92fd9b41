#include "CKOLDialog.h"

#include "CFormRepository.h"
#include "HostRuntime.h"

#include <QDialogButtonBox>
#include <QKeyEvent>
#include <QLoggingCategory>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

constexpr int kOkButtonBit = 0x1;
constexpr int kCancelButtonBit = 0x2;
constexpr int kAllButtons = kOkButtonBit | kCancelButtonBit;
constexpr int kButtonRowMargin = 12;

Q_LOGGING_CATEGORY(lcDialog, "host.dialog")

} // namespace

CKOLDialog::CKOLDialog(QWidget* parent, bool modeless, const QVariant& argument, bool fixedSize)
    : QDialog(parent)
    , m_modeless(modeless)
    , m_fixedSize(fixedSize)
    , m_argument(argument)
    , m_layout(new QVBoxLayout(this))
    , m_buttons(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this))
{
    m_layout->setContentsMargins(0, 0, 0, 0);
    m_layout->setSpacing(0);
    m_buttons->setObjectName(QStringLiteral("dialogButtons"));
    m_buttons->setContentsMargins(kButtonRowMargin, kButtonRowMargin, kButtonRowMargin, kButtonRowMargin);
    okButton()->setObjectName(QStringLiteral("ok"));
    cancelButton()->setObjectName(QStringLiteral("cancel"));
    okButton()->setDefault(true);
    okButton()->setAutoDefault(true);
    cancelButton()->setAutoDefault(false);
    m_layout->addWidget(m_buttons);
    connect(m_buttons, &QDialogButtonBox::accepted, this, &CKOLDialog::accept);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &CKOLDialog::reject);
    // Modeless dialogs return from Execute() at once; their result is recorded when they finish.
    connect(this, &QDialog::finished, this, [this](int result) {
        if (m_modeless)
            HostRuntime::instance().record(
                QStringLiteral("dialogExecuted"),
                {{QStringLiteral("class"), QString::fromLatin1(metaObject()->className())},
                 {QStringLiteral("result"), result}});
    });
}

CKOLDialog::~CKOLDialog() = default;

int CKOLDialog::Execute()
{
    if (!ensureLoaded())
        return QDialog::Rejected;
    const QSize initial = getInitialSize();
    resize(initial.isValid() ? initial : sizeHint());
    setUpFixedTopLevelSize();
    if (m_modeless) {
        setModal(false);
        show();
        return QDialog::Rejected;
    }
    const int result = exec();
    DoneUI();
    HostRuntime::instance().record(QStringLiteral("dialogExecuted"),
                                   {{QStringLiteral("class"), QString::fromLatin1(metaObject()->className())},
                                    {QStringLiteral("result"), result}});
    return result;
}

QPushButton* CKOLDialog::okButton() const
{
    return m_buttons->button(QDialogButtonBox::Ok);
}

QPushButton* CKOLDialog::cancelButton() const
{
    return m_buttons->button(QDialogButtonBox::Cancel);
}

QVariant CKOLDialog::argument() const
{
    return m_argument;
}

QWidget* CKOLDialog::formWidget() const
{
    return m_form;
}

bool CKOLDialog::ensureLoaded()
{
    if (m_loaded)
        return true;
    if (!LoadUI())
        return false;
    const int mask = getButtonsMask();
    okButton()->setVisible(mask & kOkButtonBit);
    cancelButton()->setVisible(mask & kCancelButtonBit);
    m_buttons->setVisible(mask & kAllButtons);
    // Set before setupUi() so that a subclass that throws on a missing control is not loaded twice.
    m_loaded = true;
    setupUi();
    return true;
}

void CKOLDialog::accept()
{
    onAccept();
}

void CKOLDialog::reject()
{
    if (CanCloseDlg())
        done(QDialog::Rejected);
}

bool CKOLDialog::LoadUI()
{
    if (!useRepository())
        return true;
    const QString name = getFormResourceName();
    QString error;
    QWidget* form = name.isEmpty() ? nullptr : CFormRepository::load(name, this, &error);
    if (!form) {
        qCCritical(lcDialog).noquote() << QStringLiteral("CKOLDialog (%1): cannot load form \"%2\": %3")
                                              .arg(QString::fromLatin1(metaObject()->className()), name,
                                                   name.isEmpty() ? QStringLiteral("no form named") : error);
        return false;
    }
    m_form = form;
    m_layout->insertWidget(0, form, 1);
    // The form names the window it is shown in.
    if (windowTitle().isEmpty())
        setWindowTitle(form->windowTitle());
    return true;
}

QString CKOLDialog::getFormResourceName() const
{
    return QString();
}

QString CKOLDialog::GetLinkBindingEntry() const
{
    return QString();
}

QSize CKOLDialog::getInitialSize() const
{
    return QSize();
}

QString CKOLDialog::getEscapeHotkeyButtonName() const
{
    return cancelButton()->objectName();
}

bool CKOLDialog::escapeRejects() const
{
    return true;
}

void CKOLDialog::setUpFixedTopLevelSize()
{
    if (isFixedTopLevelSize())
        setFixedSize(size());
}

bool CKOLDialog::isFixedTopLevelSize() const
{
    return m_fixedSize;
}

bool CKOLDialog::useRepository() const
{
    return true;
}

void CKOLDialog::setupUi()
{}

bool CKOLDialog::DoneUI()
{
    return true;
}

int CKOLDialog::getButtonsMask() const
{
    return kAllButtons;
}

QString CKOLDialog::getHelpTopic() const
{
    return QString();
}

bool CKOLDialog::GetMsgBoxParams() const
{
    return false;
}

bool CKOLDialog::showErrorsAsBalloons() const
{
    return true;
}

bool CKOLDialog::CanCloseDlg() const
{
    return true;
}

bool CKOLDialog::canCloseOnAccept() const
{
    return true;
}

unsigned CKOLDialog::GetApplicableObjectMask() const
{
    return 0;
}

void CKOLDialog::onAccept()
{
    if (canCloseOnAccept())
        done(QDialog::Accepted);
}

void CKOLDialog::keyPressEvent(QKeyEvent* event)
{
    if (event->matches(QKeySequence::Cancel)) {
        // Escape acts as the escape button would: disabled or hidden, it does nothing.
        QPushButton* escapeButton = findChild<QPushButton*>(getEscapeHotkeyButtonName());
        if (escapeRejects() && escapeButton && escapeButton->isVisible() && escapeButton->isEnabled())
            escapeButton->click();
        event->accept();
        return;
    }
    QDialog::keyPressEvent(event);
}
