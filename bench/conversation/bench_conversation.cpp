// Measures a support conversation through the plugin and the simulated server on generated threads of
// varied messages:
//   update    one received message (new, then a new version of it) on threads of 50, 1,500 and 5,000
//             messages: the time per update should not grow with the thread;
//   burst     1,000 messages received within one second: the longest gap between two ticks of a 16 ms timer.
// Opening, scrolling, memory and the document's per-message operations are measured by bench_scale.
//   bench_conversation [runs] [update|burst]

#include "CMessageGroups.h"
#include "CMessageItemsDocument.h"
#include "CNewsFetcher.h"
#include "CVantrelApp.h"
#include "GeneratedConversation.h"
#include "HostControl.h"
#include "PluginScreen.h"

#include <QElapsedTimer>
#include <QTextStream>
#include <QTimer>

namespace {

constexpr int kDefaultRuns = 3;
const QSize kViewSize(900, 700);

qint64 median(std::vector<qint64> values)
{
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

// Median time of one received message (a new one, then a new version of it) on a shown thread.
qint64 perUpdate(const QString& key, int messages, int updates)
{
    PluginScreen screen(kViewSize);
    (void)screen.open(key, messages);
    screen.paintEnd();
    auto* document = static_cast<CMessageItemsDocument*>(screen.thread()->document());
    std::vector<qint64> times;
    for (int i = 0; i < updates; ++i) {
        CIncidentCommunication record;
        record.id = QStringLiteral("live-%1-%2").arg(messages).arg(i);
        record.threadId = key;
        record.text = QStringLiteral("Live message %1 with **some** text").arg(i);
        record.fromOtherParty = true;
        record.senderName = QStringLiteral("Anna Keller");
        record.time = QDateTime::currentDateTime();
        record.versionKey = record.id;
        QElapsedTimer timer;
        timer.start();
        screen.plugin->onCommunicationReceived(record);
        (void)QTest::qWaitFor([&] { return document->messageIndex(record.id).isValid(); });
        screen.thread()->viewport()->repaint();
        CIncidentCommunication edited = record;
        edited.id += QStringLiteral("-v2");
        edited.editVersion = 2;
        edited.text += QStringLiteral(" (corrected)");
        screen.plugin->onCommunicationReceived(edited);
        (void)QTest::qWaitFor([&] { return document->messageIndex(edited.id).isValid(); });
        screen.thread()->viewport()->repaint();
        times.push_back(timer.nsecsElapsed() / 2);
    }
    return median(times);
}

// The longest gap between two ticks of a 16 ms timer while 1,000 messages arrive through the server within
// one second.
qint64 burstLongestGap(const QString& key, int messages)
{
    PluginScreen screen(kViewSize);
    (void)screen.open(key, messages);
    screen.paintEnd();
    QElapsedTimer clock;
    clock.start();
    qint64 last = 0;
    qint64 longest = 0;
    QTimer ticker;
    ticker.setTimerType(Qt::PreciseTimer);
    QObject::connect(&ticker, &QTimer::timeout, [&] {
        const qint64 now = clock.nsecsElapsed();
        longest = std::max(longest, now - last);
        last = now;
    });
    int posted = 0;
    QTimer poster;
    poster.setTimerType(Qt::PreciseTimer);
    QObject::connect(&poster, &QTimer::timeout, [&] {
        // One per millisecond on average, as fast as the loop lets it.
        const qint64 due = clock.elapsed() + 1;
        while (posted < due && posted < 1000)
            HostControl::postMessage(key, QStringLiteral("Burst message %1").arg(posted++));
    });
    last = clock.nsecsElapsed();
    ticker.start(16);
    poster.start(1);
    (void)QTest::qWaitFor([&] { return posted >= 1000; }, 30000);
    poster.stop();
    auto* document = screen.thread()->document();
    const qsizetype shown = std::min<qsizetype>(messages + 1, CConversationView::kShownAtOpen);
    (void)QTest::qWaitFor([&] { return CMessageGroups::messageCount(document) >= shown + 1000; }, 60000);
    ticker.stop();
    return longest;
}

QString ms(qint64 ns)
{
    return QString::number(double(ns) / 1e6, 'f', 2) + QStringLiteral(" ms");
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    CVantrelApp app(argc, argv);
    HostControl::resetForTests();
    HostControl::setCanUseWebEngine(false);
    HostControl::loadDefaultScenario();
    const int runs = argc > 1 ? std::max(1, QString::fromLocal8Bit(argv[1]).toInt()) : kDefaultRuns;
    const QString only = argc > 2 ? QString::fromLocal8Bit(argv[2]) : QString();
    const auto wanted = [&only](const char* part) { return only.isEmpty() || only == QLatin1String(part); };
    QTextStream out(stdout);

    const QList<int> sizes = {50, 1500, 5000};
    for (int size : sizes)
        HostControl::addConversation(GeneratedConversation::make(QStringLiteral("gen-%1").arg(size), size));
    (void)QTest::qWaitFor([] { return vantrelApp->getNewsFetcher()->hasAny(CNewsFetcher::FilterIssues); });
    QTest::qWait(100);

    if (wanted("update")) {
        QList<qint64> perSize;
        for (int size : sizes) {
            perSize << perUpdate(QStringLiteral("gen-%1").arg(size), size, 5 * runs);
            out << "received message on " << size << " messages: " << ms(perSize.last()) << " per update\n";
            out.flush();
        }
        out << "per-update ratio 5000/50: "
            << QString::number(double(perSize.last()) / double(perSize.first()), 'f', 2) << "\n";
    }
    if (wanted("burst")) {
        out << "burst of 1000 on 1500 messages: longest gap between 16 ms ticks "
            << ms(burstLongestGap(QStringLiteral("gen-1500"), 1500)) << "\n";
    }
    return 0;
}
