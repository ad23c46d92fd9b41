// Window-system helpers: flashing a window and the pre-installation environment switch.

#include "HostRuntime.h"
#include "HostTestMain.h"
#include "HostWindows.h"

#include <QSignalSpy>

class TestHostWindows : public QObject
{
    Q_OBJECT

private slots:
    void init() { HostRuntime::instance().events.clear(); }

    void flashRequestIsRecordedWithItsCount()
    {
        QWidget window;
        QSignalSpy recorded(&HostRuntime::instance(), &HostRuntime::eventRecorded);
        flashWindow(window.winId(), 10);

        QCOMPARE(recorded.size(), 1);
        QCOMPARE(recorded.at(0).at(0).toString(), QStringLiteral("flashWindow"));
        const QList<HostRuntime::Event>& events = HostRuntime::instance().events;
        QCOMPARE(events.size(), 1);
        QCOMPARE(events.at(0).details.value("count").toUInt(), 10u);
    }

    void unknownWindowIsStillRecorded()
    {
        flashWindow(HWND(0), 3);
        QCOMPARE(HostRuntime::instance().events.size(), 1);
        QCOMPARE(HostRuntime::instance().events.at(0).details.value("count").toUInt(), 3u);
    }

    void windowsPEFollowsTheHost()
    {
        HostRuntime& runtime = HostRuntime::instance();
        auto restore = qScopeGuard([&] { runtime.windowsPE = false; });
        QVERIFY(!IsWindowsPE());
        runtime.windowsPE = true;
        QVERIFY(IsWindowsPE());
    }
};

HOST_TEST_MAIN(TestHostWindows)
#include "tst_hostwindows.moc"
