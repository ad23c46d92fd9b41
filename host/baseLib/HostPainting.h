#pragma once

#include "baseLibGlobal.h"

#include <QColor>
#include <QRect>
#include <QStyle>

class QPainter;

// The host's keyboard-focus frame: a 1-pixel dotted rounded rectangle in `color`.
// `state` and `style` select a style-specific frame when given; with neither the host frame is drawn.
BASELIB_EXPORT void drawFocusRect(QPainter* painter, const QRect& rect, const QColor& color,
                                  QStyle::State state = QStyle::State_None, const QStyle* style = nullptr);
