#pragma once

#include "CAbstractPopupAssistant.h"

// Default timeout of a balloon, in milliseconds.
inline constexpr unsigned kDefaultBalloonTimeout = 10000;

// Shows a balloon with `text` and `icon` pointing at `rect` of `widget` (the whole widget when `rect` is
// null). `timeout` in milliseconds; 0 and 0xFFFFFFFF keep it until the user closes it. `flags` is reserved.
// A new balloon on the same widget replaces the previous one. The balloon is created and returned even while
// the host keeps balloons hidden (HostRuntime::showBalloons off); it then stays hidden but still expires.
// Null only when `widget` is null. Every call is recorded as a "balloon" event.
BASELIB_EXPORT QPointer<CAbstractPopupAssistant>
issueBalloonMessage(QWidget* widget, const QString& text, QMessageBox::Icon icon, const QRect& rect = QRect(),
                    unsigned timeout = kDefaultBalloonTimeout, unsigned flags = 0);
