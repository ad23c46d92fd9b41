#pragma once

#include "CAbstractPopupAssistant.h"

// Default timeout of a balloon, in milliseconds.
inline constexpr unsigned kDefaultBalloonTimeout = 10000;

// Shows a balloon with `text` and `icon` pointing at `rect` of `widget` (the whole widget when `rect` is
// null). `timeout` in milliseconds; 0 and 0xFFFFFFFF keep it until the user closes it. `flags` is reserved.
// A new balloon on the same widget replaces the previous one.
BASELIB_EXPORT QPointer<CAbstractPopupAssistant>
issueBalloonMessage(QWidget* widget, const QString& text, QMessageBox::Icon icon, const QRect& rect = QRect(),
                    unsigned timeout = kDefaultBalloonTimeout, unsigned flags = 0);
