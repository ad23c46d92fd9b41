#pragma once
// Window-system helpers of the host.

#include "baseLibGlobal.h"

#include <QWidget>

using HWND = WId;

// Asks the window system to draw attention to the top-level window `window` (`count` flashes of its
// task-bar button). The host records every request.
BASELIB_EXPORT void flashWindow(HWND window, unsigned count);

// Whether the host runs in a pre-installation environment.
BASELIB_EXPORT bool IsWindowsPE();
