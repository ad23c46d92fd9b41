#include "HostPainting.h"

#include <QPainter>
#include <QStyleOptionFocusRect>

namespace {

constexpr qreal focusFrameRadius = 3.0;
// Centres the 1-pixel pen on the pixel row inside the rectangle, which keeps the dots sharp.
constexpr qreal halfPixel = 0.5;

} // namespace

void drawFocusRect(QPainter* painter, const QRect& rect, const QColor& color, QStyle::State state,
                   const QStyle* style)
{
    if (!painter || !rect.isValid())
        return;

    if (style) {
        QStyleOptionFocusRect option;
        option.rect = rect;
        option.state = state | QStyle::State_KeyboardFocusChange;
        option.backgroundColor = color;
        style->drawPrimitive(QStyle::PE_FrameFocusRect, &option, painter);
        return;
    }

    painter->save();
    QPen pen(color, 1.0, Qt::DotLine);
    pen.setCosmetic(true);
    painter->setPen(pen);
    painter->setBrush(Qt::NoBrush);
    painter->setRenderHint(QPainter::Antialiasing, true);
    painter->drawRoundedRect(QRectF(rect).adjusted(halfPixel, halfPixel, -halfPixel, -halfPixel),
                             focusFrameRadius, focusFrameRadius);
    painter->restore();
}
