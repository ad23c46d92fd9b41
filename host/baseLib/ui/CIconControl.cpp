#include "CIconControl.h"

#include <QPainter>

CIconControl::CIconControl(QWidget* parent)
    : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

CIconControl::~CIconControl() = default;

void CIconControl::setIcon(const QIcon& icon)
{
    m_icon = icon;
    update();
}

QIcon CIconControl::icon() const
{
    return m_icon;
}

void CIconControl::setIconSize(const QSize& size)
{
    if (m_iconSize == size)
        return;
    m_iconSize = size;
    updateGeometry();
    update();
}

QSize CIconControl::iconSize() const
{
    return m_iconSize;
}

QSize CIconControl::sizeHint() const
{
    const QMargins margins = contentsMargins();
    return m_iconSize.grownBy(margins);
}

void CIconControl::paintEvent(QPaintEvent*)
{
    if (m_icon.isNull())
        return;
    QPainter painter(this);
    const QRect area = contentsRect();
    const QSize size = m_iconSize.boundedTo(area.size());
    QRect target(QPoint(0, 0), size);
    target.moveCenter(area.center());
    m_icon.paint(&painter, target, Qt::AlignCenter, isEnabled() ? QIcon::Normal : QIcon::Disabled);
}
