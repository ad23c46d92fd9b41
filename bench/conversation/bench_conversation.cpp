// Measures a support conversation through the plugin and the simulated server, against baselines measured
// in the same run, interleaved, on generated threads of varied messages:
//   open      selecting a 1,500-message conversation until its newest message is painted, against building
//             the same document directly and painting it in the same view (the plugin shows only the newest
//             messages at first, the baseline builds them all);
//   update    one received message (new, then a new version of it) on threads of 50, 1,500 and 5,000
//             messages: the time per update should not grow with the thread;
//   burst     1,000 messages received within one second: the longest gap between two ticks of a 16 ms timer;
//   progress  one progress tick of an attachment download (the ring on its tile) on threads of 50 and 5,000
//             messages: the time per tick should not grow with the thread.
//   bench_conversation [runs] [open|update|burst|progress]

#include "CCommunicationObjectModel.h"
#include "CConversationView.h"
#include "CMessageItemsDocument.h"
#include "CNewsFetcher.h"
#include "CNewsReaderPlugin.h"
#include "CVantrelApp.h"
#include "HostControl.h"

#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonObject>
#include <QProgressBar>
#include <QRandomGenerator>
#include <QScrollBar>
#include <QTest>
#include <QTextBrowser>
#include <QTextStream>
#include <QTimer>

#include <algorithm>
#include <memory>

namespace {

constexpr int kDefaultRuns = 3;
const QSize kViewSize(900, 700);

qint64 median(std::vector<qint64> values)
{
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

// A message body of one of several kinds and lengths, picked by `seed`.
QString body(QRandomGenerator& random, int n)
{
    static const QStringList words = {
        QStringLiteral("scanner"),   QStringLiteral("driver"),     QStringLiteral("update"),
        QStringLiteral("exception"), QStringLiteral("printer"),    QStringLiteral("licence"),
        QStringLiteral("backup"),    QStringLiteral("quarantine"), QStringLiteral("folder")};
    QStringList sentence;
    const int length = 5 + int(random.bounded(60));
    for (int i = 0; i < length; ++i)
        sentence << words.at(int(random.bounded(words.size())));
    const QString text = sentence.join(QLatin1Char(' '));
    switch (random.bounded(5)) {
    case 0:
        return QStringLiteral("<p>Message %1: <b>%2</b></p><ul><li>%2</li><li>step two</li></ul>")
            .arg(n)
            .arg(text);
    case 1:
        return QStringLiteral("**Message %1**\n\n1. %2\n2. second step\n\n```\nC:\\\\path\\\\%1\n```")
            .arg(n)
            .arg(text);
    case 2:
        return QStringLiteral("Message %1 with a [link](https://example.com/%1) and *%2*").arg(n).arg(text);
    default:
        return QStringLiteral("Message %1. %2").arg(n).arg(text);
    }
}

QJsonObject conversation(const QString& id, int messages)
{
    QRandomGenerator random{quint32(messages)};
    QJsonArray list;
    for (int i = 0; i < messages; ++i) {
        QJsonObject message{{QStringLiteral("id"), QStringLiteral("%1-m%2").arg(id).arg(i)},
                            {QStringLiteral("sender"),
                             random.bounded(3) == 0 ? QStringLiteral("u-self") : QStringLiteral("s-anna")},
                            {QStringLiteral("time"), QStringLiteral("-%1m").arg(messages - i)},
                            {QStringLiteral("text"), body(random, i)}};
        if (random.bounded(10) == 0)
            message.insert(
                QStringLiteral("attachments"),
                QJsonArray{QJsonObject{{QStringLiteral("id"), QStringLiteral("%1-a%2").arg(id).arg(i)},
                                       {QStringLiteral("fileName"), QStringLiteral("log-%1.txt").arg(i)},
                                       {QStringLiteral("text"), QStringLiteral("log line")}}});
        list.append(message);
    }
    return {{QStringLiteral("id"), id},
            {QStringLiteral("subject"), QStringLiteral("Generated conversation %1").arg(messages)},
            {QStringLiteral("state"), QStringLiteral("OPEN")},
            {QStringLiteral("agent"), QStringLiteral("s-anna")},
            {QStringLiteral("created"), QStringLiteral("-30d")},
            {QStringLiteral("firstMessage"), QStringLiteral("Opening message")},
            {QStringLiteral("messages"), list}};
}

struct Screen
{
    std::unique_ptr<CNewsReaderPlugin> plugin = std::make_unique<CNewsReaderPlugin>();
    QPointer<QWidget> view;
    Screen()
    {
        view = plugin->getPluginView(nullptr);
        view->resize(kViewSize);
        view->show();
        plugin->setIsSelected(true);
    }
    ~Screen() { delete view; }
    QTextBrowser* thread() const { return view->findChild<QTextBrowser*>(QStringLiteral("issueMessages")); }
    bool busy() const
    {
        return !view->findChild<QProgressBar*>(QStringLiteral("messagesProgress"))
                    ->property("stopProgressBarAnimation")
                    .toBool();
    }
    QModelIndex item(const QString& key) const
    {
        return static_cast<CCommunicationObjectModel*>(plugin->getPluginModel().get())->indexForKey(key);
    }
    bool open(const QString& key, int messages) const
    {
        plugin->onPluginItemSelected(item(key), QModelIndex());
        auto* document = thread()->document();
        // A long thread opens with its newest messages only (the opening message counts as one).
        const qsizetype shown = std::min<qsizetype>(messages + 1, CConversationView::kShownAtOpen);
        return QTest::qWaitFor(
            [&] { return !busy() && document->rootFrame()->childFrames().size() >= shown; }, 120000);
    }
    // Waits until the view is at its end and has painted it.
    void paintEnd() const
    {
        QScrollBar* bar = thread()->verticalScrollBar();
        (void)QTest::qWaitFor([bar] { return bar->value() == bar->maximum(); }, 60000);
        thread()->viewport()->repaint();
    }
};

// The plugin's way: select and wait until the newest message is painted.
qint64 openThroughPlugin(const QString& key, int messages)
{
    Screen screen;
    QElapsedTimer timer;
    timer.start();
    (void)screen.open(key, messages);
    screen.paintEnd();
    return timer.nsecsElapsed();
}

// The baseline: the same records laid into a document directly, shown in a view of the same size, painted at
// the end.
qint64 openDirectly(const QList<CIncidentCommunication>& records)
{
    Screen screen;
    QElapsedTimer timer;
    timer.start();
    CMessageItemsDocument document;
    for (const CIncidentCommunication& record : records)
        document.appendMessage(record);
    screen.thread()->setDocument(&document);
    screen.thread()->moveCursor(QTextCursor::End);
    screen.thread()->verticalScrollBar()->setValue(screen.thread()->verticalScrollBar()->maximum());
    screen.thread()->viewport()->repaint();
    const qint64 elapsed = timer.nsecsElapsed();
    screen.thread()->setDocument(nullptr);
    return elapsed;
}

QList<CIncidentCommunication> recordsOf(const QString& key)
{
    CNewsFetcher* fetcher = vantrelApp->getNewsFetcher().get();
    const auto list = fetcher->getNewsList(CNewsFetcher::FilterIssues | CNewsFetcher::FilterIncludeHidden);
    QList<CIncidentCommunication> records;
    for (const auto& entry : list) {
        if (entry->id == key)
            records.append(fetcher->ticketEntityToMessageInfo(entry->entity.value<EntityDto::EntityDto>()));
    }
    for (const QJsonObject& message : HostControl::threadMessages(key)) {
        CIncidentCommunication record;
        record.id = message.value(QStringLiteral("id")).toString();
        record.threadId = key;
        record.text = message.value(QStringLiteral("text")).toString();
        record.senderName = QStringLiteral("Anna Keller");
        record.fromOtherParty =
            message.value(QStringLiteral("sender")).toString() != QStringLiteral("u-self");
        record.time = QDateTime::currentDateTime();
        record.versionKey = record.id;
        records.append(record);
    }
    return records;
}

// Median time of one received message (a new one, then a new version of it) on a shown thread.
qint64 perUpdate(const QString& key, int messages, int updates)
{
    Screen screen;
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
    Screen screen;
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
    (void)QTest::qWaitFor([&] { return document->rootFrame()->childFrames().size() >= shown + 1000; }, 60000);
    ticker.stop();
    return longest;
}

// Median time of one progress tick on the tile of an attachment near the top of a shown thread.
qint64 perProgressTick(const QString& key, int messages, qint64& unshownTick)
{
    Screen screen;
    (void)screen.open(key, messages);
    screen.paintEnd();
    auto* document = static_cast<CMessageItemsDocument*>(screen.thread()->document());
    QString attachmentId;
    for (int i = 0; i < messages && attachmentId.isEmpty(); ++i) {
        const CMessageItemIndex index = document->messageIndex(QStringLiteral("%1-m%2").arg(key).arg(i));
        if (!index.message.attachments.isEmpty())
            attachmentId = index.message.attachments.first().id;
    }
    const auto ticks = [&] {
        std::vector<qint64> times;
        for (int percent = 0; percent < 100; ++percent) {
            QElapsedTimer timer;
            timer.start();
            document->setAttachProgress(attachmentId, percent);
            times.push_back(timer.nsecsElapsed());
        }
        document->setAttachProgress(attachmentId, 100);
        return median(times);
    };
    const qint64 shown = ticks();
    // The same without a view: finding the tile and changing it, without the toolkit's layout pass.
    screen.thread()->setDocument(nullptr);
    document->setTextWidth(-1);
    unshownTick = ticks();
    return shown;
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
        HostControl::addConversation(conversation(QStringLiteral("gen-%1").arg(size), size));
    (void)QTest::qWaitFor([] { return vantrelApp->getNewsFetcher()->hasAny(CNewsFetcher::FilterIssues); });
    QTest::qWait(100);

    if (wanted("open")) {
        const QString open = QStringLiteral("gen-1500");
        const QList<CIncidentCommunication> records = recordsOf(open);
        std::vector<qint64> plugin, direct;
        for (int run = 0; run < runs; ++run) {
            direct.push_back(openDirectly(records));
            plugin.push_back(openThroughPlugin(open, 1500));
        }
        out << "open 1500 messages: plugin " << ms(median(plugin)) << ", direct build and paint "
            << ms(median(direct)) << ", ratio "
            << QString::number(double(median(plugin)) / double(median(direct)), 'f', 2) << "\n";
        out.flush();
    }
    if (wanted("update")) {
        QList<qint64> perSize;
        for (int size : sizes) {
            perSize << perUpdate(QStringLiteral("gen-%1").arg(size), size, 15);
            out << "received message on " << size << " messages: " << ms(perSize.last()) << " per update\n";
            out.flush();
        }
        out << "per-update ratio 5000/50: "
            << QString::number(double(perSize.last()) / double(perSize.first()), 'f', 2) << "\n";
    }
    if (wanted("progress")) {
        qint64 smallUnshown = 0;
        qint64 largeUnshown = 0;
        const qint64 small = perProgressTick(QStringLiteral("gen-50"), 50, smallUnshown);
        const qint64 large = perProgressTick(QStringLiteral("gen-5000"), 5000, largeUnshown);
        out << "progress tick, shown: " << ms(small) << " on 50 messages, " << ms(large) << " on 5000, ratio "
            << QString::number(double(large) / double(small), 'f', 2) << "\n";
        out << "progress tick, document alone: " << ms(smallUnshown) << " on 50 messages, "
            << ms(largeUnshown) << " on 5000, ratio "
            << QString::number(double(largeUnshown) / double(smallUnshown), 'f', 2) << "\n";
        out.flush();
    }
    if (wanted("burst")) {
        out << "burst of 1000 on 1500 messages: longest gap between 16 ms ticks "
            << ms(burstLongestGap(QStringLiteral("gen-1500"), 1500)) << "\n";
    }
    return 0;
}
