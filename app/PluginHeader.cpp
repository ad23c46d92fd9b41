#include "PluginHeader.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>

namespace {
constexpr int kIconSize = 20;
constexpr int kMargin = 8;
constexpr int kSpacing = 8;
constexpr int kSelectionBarWidth = 3;
constexpr qreal kCornerRadius = 4.0;
// The selected entry gets a faint tint of the accent so the attention highlight stays distinguishable.
constexpr qreal kSelectedTint = 0.12;
} // namespace

PluginHeader::PluginHeader(QWidget* parent)
    : QWidget(parent)
    , m_iconLabel(new QLabel(this))
    , m_captionLabel(new QLabel(this))
{
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    layout->setSpacing(kSpacing);
    m_iconLabel->setFixedSize(kIconSize, kIconSize);
    QFont captionFont = m_captionLabel->font();
    captionFont.setBold(true);
    m_captionLabel->setFont(captionFont);
    layout->addWidget(m_iconLabel);
    layout->addWidget(m_captionLabel, 1);
    setCursor(Qt::PointingHandCursor);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void PluginHeader::setIcon(const QIcon& icon)
{
    m_iconLabel->setPixmap(icon.pixmap(kIconSize, kIconSize));
}

void PluginHeader::setCaption(const QString& caption)
{
    m_captionLabel->setText(caption);
}

QString PluginHeader::caption() const
{
    return m_captionLabel->text();
}

void PluginHeader::setSelected(bool selected)
{
    if (m_selected == selected)
        return;
    m_selected = selected;
    update();
}

void PluginHeader::setAttentionLevel(qreal level)
{
    m_attentionLevel = qBound(0.0, level, 1.0);
    update();
}

void PluginHeader::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor accent = palette().color(QPalette::Highlight);
    const qreal tint = qMax(m_selected ? kSelectedTint : 0.0, m_attentionLevel);
    if (tint > 0.0) {
        QColor fill = accent;
        fill.setAlphaF(tint);
        painter.setPen(Qt::NoPen);
        painter.setBrush(fill);
        painter.drawRoundedRect(QRectF(rect()), kCornerRadius, kCornerRadius);
    }
    if (m_selected) {
        painter.fillRect(QRect(0, 0, kSelectionBarWidth, height()), accent);
    }
}

void PluginHeader::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint()))
        emit clicked();
    QWidget::mouseReleaseEvent(event);
}
