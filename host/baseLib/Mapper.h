#pragma once

#include "baseLibGlobal.h"

#include <QRect>

// Maps rectangles computed in layout units (for example a text layout's coordinates) to whole widget
// pixels: the host's UI scale is applied and the edges are rounded outwards.
class BASELIB_EXPORT Mapper
{
public:
    static QRect map(const QRect& rect);
    static QRect map(const QRectF& rect);
};
