#pragma once
// Deferred calls on the GUI thread.

#include "qtHelpersGlobal.h"

#include <functional>

class QObject;

namespace qtHelpers {

// Runs `call` once, after the events already queued have been handled (the event loop is idle again).
// Nothing runs when `context` is destroyed first. Calls queued in one pass run in the order queued.
QTHELPERS_EXPORT void invokeOnIdle(QObject* context, std::function<void()> call);

} // namespace qtHelpers
