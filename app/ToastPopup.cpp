#include "ToastPopup.h"

#include <QEvent>
#include <QGraphicsDropShadowEffect>
#include <QHBoxLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QTimer>

namespace {
constexpr int kMargin = 14;
constexpr int kWindowMargin = 20;
constexpr int kMaximumWidth = 380;
constexpr int kIconSize = 32;
constexpr qreal kCornerRadius = 10.0;
constexpr int kShadowBlur = 24;
constexpr int kShadowOffset = 3;
constexpr int kShadowAlpha = 90;
// SLOT() and SIGNAL() prefix their signature with a one-digit code.
constexpr char kSlotCode = '1';
constexpr char kSignalCode = '2';

QStyle::StandardPixmap standardPixmapFor(QMessageBox::Icon icon)
{
    switch (icon) {
    case QMessageBox::Information:
        return QStyle::SP_MessageBoxInformation;
    case QMessageBox::Warning:
        return QStyle::SP_MessageBoxWarning;
    case QMessageBox::Critical:
        return QStyle::SP_MessageBoxCritical;
    case QMessageBox::Question:
        return QStyle::SP_MessageBoxQuestion;
    case QMessageBox::NoIcon:
        break;
    }
    return QStyle::SP_CustomBase;
}
} // namespace

ToastPopup::ToastPopup(QWidget* window)
    : QFrame(window)
    , m_iconLabel(new QLabel(this))
    , m_textLabel(new QLabel(this))
    , m_hideTimer(new QTimer(this))
{
    setObjectName(QStringLiteral("hostToast"));
    setAttribute(Qt::WA_TranslucentBackground);
    setCursor(Qt::PointingHandCursor);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    layout->setSpacing(kMargin);
    m_iconLabel->setFixedSize(kIconSize, kIconSize);
    m_textLabel->setTextFormat(Qt::RichText);
    m_textLabel->setWordWrap(true);
    m_textLabel->setForegroundRole(QPalette::ToolTipText);
    m_textLabel->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_iconLabel->setAttribute(Qt::WA_TransparentForMouseEvents);
    layout->addWidget(m_iconLabel, 0, Qt::AlignTop);
    layout->addWidget(m_textLabel, 1);
    setMaximumWidth(kMaximumWidth);

    auto* shadow = new QGraphicsDropShadowEffect(this);
    shadow->setBlurRadius(kShadowBlur);
    shadow->setOffset(0, kShadowOffset);
    shadow->setColor(QColor(0, 0, 0, kShadowAlpha));
    setGraphicsEffect(shadow);

    m_hideTimer->setSingleShot(true);
    connect(m_hideTimer, &QTimer::timeout, this, &QWidget::hide);
    window->installEventFilter(this);
    hide();
}

void ToastPopup::showToast(QObject* receiver, const QString& text, const char* slot, QMessageBox::Icon icon,
                           int timeoutMs)
{
    m_receiver = receiver;
    m_method = methodName(slot);
    m_textLabel->setText(text);
    const QStyle::StandardPixmap pixmap = standardPixmapFor(icon);
    m_iconLabel->setVisible(pixmap != QStyle::SP_CustomBase);
    if (pixmap != QStyle::SP_CustomBase)
        m_iconLabel->setPixmap(style()->standardIcon(pixmap).pixmap(kIconSize, kIconSize));
    adjustSize();
    placeInCorner();
    show();
    raise();
    m_hideTimer->start(timeoutMs < 0 ? kDefaultTimeoutMs : timeoutMs);
}

QString ToastPopup::text() const
{
    return m_textLabel->text();
}

QByteArray ToastPopup::methodName(const char* slotSignature)
{
    QByteArray name(slotSignature ? slotSignature : "");
    if (!name.isEmpty() && (name.front() == kSlotCode || name.front() == kSignalCode))
        name.remove(0, 1);
    const int parameters = name.indexOf('(');
    if (parameters >= 0)
        name.truncate(parameters);
    return name.trimmed();
}

bool ToastPopup::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == parentWidget() && event->type() == QEvent::Resize && isVisible())
        placeInCorner();
    return QFrame::eventFilter(watched, event);
}

void ToastPopup::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    hide();
    m_hideTimer->stop();
    emit clicked();
    if (m_receiver && !m_method.isEmpty())
        QMetaObject::invokeMethod(m_receiver, m_method.constData(), Qt::DirectConnection);
}

void ToastPopup::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(palette().color(QPalette::Mid), 1));
    painter.setBrush(palette().color(QPalette::ToolTipBase));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), kCornerRadius, kCornerRadius);
}

void ToastPopup::placeInCorner()
{
    const QWidget* window = parentWidget();
    if (!window)
        return;
    const QSize size = sizeHint().boundedTo(QSize(kMaximumWidth, window->height()));
    resize(size.width(), heightForWidth(size.width()) > 0 ? heightForWidth(size.width()) : size.height());
    move(window->width() - width() - kWindowMargin, window->height() - height() - kWindowMargin);
}
