#pragma once
// An animation clock that only moves when the test says so. Installed, it drives every QAbstractAnimation of
// the process; setTime() moves the clock and advances the animations to that moment.

#include <QAnimationDriver>
#include <QCoreApplication>

class ManualAnimationDriver : public QAnimationDriver
{
public:
    ManualAnimationDriver() { install(); }
    ~ManualAnimationDriver() override { uninstall(); }

    qint64 elapsed() const override { return m_time; }

    void setTime(qint64 milliseconds)
    {
        // Animations that were started register with the animation timer through a queued call.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::MetaCall);
        m_time = milliseconds;
        advance();
    }
    void step(qint64 milliseconds) { setTime(m_time + milliseconds); }

private:
    qint64 m_time = 0;
};
