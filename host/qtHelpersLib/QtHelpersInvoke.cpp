#include "QtHelpersInvoke.h"

#include <QCoreApplication>
#include <QEvent>
#include <QPointer>
#include <QThread>

// Idle calls are posted events with Qt::LowEventPriority. The toolkit sorts its queue of posted events by
// priority, so such a call runs after every ordinary event already queued (queued signals, deferred
// invocations, QTimer::singleShot(0) calls) and after ordinary events posted while those run, yet calls of
// the same priority keep the order they were queued in. A zero timer or a plain queued invocation would run
// in the very next pass instead, ahead of work that is already waiting.

namespace qtHelpers {

namespace {

const QEvent::Type kIdleCallEvent = static_cast<QEvent::Type>(QEvent::registerEventType());

class IdleCallEvent : public QEvent
{
public:
    IdleCallEvent(QObject* context, std::function<void()> call)
        : QEvent(kIdleCallEvent)
        , context(context)
        , guarded(context != nullptr)
        , call(std::move(call))
    {}

    QPointer<QObject> context;
    bool guarded;
    std::function<void()> call;
};

// Receives the idle calls of the application thread. It is a child of the application object, so it never
// goes away while calls are being delivered.
class IdleCallDispatcher : public QObject
{
public:
    using QObject::QObject;

    bool event(QEvent* event) override
    {
        if (event->type() != kIdleCallEvent)
            return QObject::event(event);
        auto* idle = static_cast<IdleCallEvent*>(event);
        if ((!idle->guarded || idle->context) && idle->call)
            idle->call();
        return true;
    }
};

IdleCallDispatcher* dispatcher()
{
    static QPointer<IdleCallDispatcher> instance;
    if (!instance && QCoreApplication::instance())
        instance = new IdleCallDispatcher(QCoreApplication::instance());
    return instance;
}

} // namespace

void invokeOnIdle(QObject* context, std::function<void()> call)
{
    if (!call)
        return;
    IdleCallDispatcher* target = dispatcher();
    if (!target)
        return;
    // A context living in a worker thread gets its call in its own thread, as a queued invocation.
    if (context && context->thread() != target->thread()) {
        QMetaObject::invokeMethod(context, std::move(call), Qt::QueuedConnection);
        return;
    }
    QCoreApplication::postEvent(target, new IdleCallEvent(context, std::move(call)), Qt::LowEventPriority);
}

} // namespace qtHelpers
