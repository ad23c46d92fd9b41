#include "CAbstractPopupAssistant.h"

#include <QCloseEvent>
#include <QTimer>

#include <limits>

namespace {
constexpr unsigned kNeverExpires = 0xFFFFFFFFu;
}

CAbstractPopupAssistant::CAbstractPopupAssistant(QWidget* target, const QString& text, QMessageBox::Icon icon,
                                                 const QRect& rect, unsigned timeout)
    : QWidget(target ? target->window() : nullptr, Qt::ToolTip | Qt::FramelessWindowHint)
    , m_target(target)
    , m_text(text)
    , m_icon(icon)
    , m_rect(rect)
    , m_timeout(timeout)
{
    setAttribute(Qt::WA_DeleteOnClose);
    if (target) {
        // A balloon about a control that no longer exists would point at nothing.
        connect(target, &QObject::destroyed, this, &QWidget::close);
    }
    if (!isPermanentTimeout(timeout)) {
        auto* expiry = new QTimer(this);
        expiry->setSingleShot(true);
        connect(expiry, &QTimer::timeout, this, &QWidget::close);
        // The timer runs whether or not the balloon is on screen, so a hidden balloon expires the same way.
        expiry->start(int(qMin<unsigned>(timeout, unsigned(std::numeric_limits<int>::max()))));
    }
}

CAbstractPopupAssistant::~CAbstractPopupAssistant()
{
    if (!m_closedEmitted) {
        m_closedEmitted = true;
        emit closed();
    }
}

QString CAbstractPopupAssistant::text() const
{
    return m_text;
}

QMessageBox::Icon CAbstractPopupAssistant::icon() const
{
    return m_icon;
}

QWidget* CAbstractPopupAssistant::target() const
{
    return m_target;
}

QRect CAbstractPopupAssistant::targetRect() const
{
    return m_rect;
}

unsigned CAbstractPopupAssistant::timeout() const
{
    return m_timeout;
}

bool CAbstractPopupAssistant::isPermanentTimeout(unsigned timeout)
{
    return timeout == 0 || timeout == kNeverExpires;
}

void CAbstractPopupAssistant::closeEvent(QCloseEvent* event)
{
    QWidget::closeEvent(event);
    if (event->isAccepted() && !m_closedEmitted) {
        m_closedEmitted = true;
        emit closed();
    }
}
