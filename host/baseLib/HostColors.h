#pragma once
// The host's colour table and palette helpers.

#include "CColorIndexes.h"
#include "baseLibGlobal.h"

#include <QColor>
#include <QPalette>

class QWidget;

// The colour of the table entry; an invalid colour (and a warning) for an index the table lacks.
BASELIB_EXPORT QColor getPaletteColor(CColorIndexes index);

// Puts the colour of `index` into `role` of the widget's palette (all colour groups) and returns the palette.
BASELIB_EXPORT QPalette adjustWidgetPalette(QWidget* widget, QPalette::ColorRole role, CColorIndexes index);

// A palette built from the host theme (window, base, text, button, highlight, link roles).
BASELIB_EXPORT QPalette hostPalette();

// The style sheet that gives a widget the host look (tool buttons: flat, rounded hover, no frame).
BASELIB_EXPORT QString hostStyleSheet();
