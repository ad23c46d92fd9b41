// Measures the thread at scale, on generated conversations of 50, 1,500, 5,000 and 10,000 varied messages
// (own and support messages, Markdown and HTML bodies of many shapes and sizes, attachments), each figure
// with its baseline and ratio:
//   paint   an 800x600 view scrolled a page at a time (the whole viewport repainted) and a wheel step at a
//           time (the uncovered strip repainted): mean and 95th percentile per paint and the longest one.
//           Baseline: the stock layout showing the same content as HTML, painted alternately with ours at
//           every position.
//   memory  heap in use once the whole thread has been scrolled through, against the stock view of the
//           same content; what a second pass of scrolling adds; what stays after the document is gone.
//   ops     one download progress tick, a tile's rectangle, a delivery mark, replacing and removing a
//           message in the middle of a laid-out thread, each with the layout brought up to date after it.
//           Baseline: the same operation on 50 messages.
//   open    selecting a conversation through the plugin until its newest message is painted, 10,000
//           messages against 500 (both served once before, interleaved); and apart from that the stand-in
//           server's answer alone, which grows with the thread whatever the plugin does, and the plugin's
//           share, the difference.
//   older   scrolling a conversation of 10,000 messages up to its oldest message, a portion of older
//           messages at a time: how long each takes to come in, against a conversation of 1,500, and how far
//           the message that was first moves on the screen (it should not).
//   bench_scale [paint|memory|ops|open|older]... [sizes]...   (default: all, at the sizes above)

#include "CMessageGroups.h"
#include "CMessageItemsDocument.h"
#include "CNewsFetcher.h"
#include "CVantrelApp.h"
#include "ChatServiceApi.h"
#include "CustomerEntitiesQueryVectorHandler.h"
#include "GeneratedConversation.h"
#include "HostControl.h"
#include "PluginScreen.h"
#include "SampleThread.h"

#include <QAbstractTextDocumentLayout>
#include <QElapsedTimer>
#include <QImage>
#include <QJsonArray>
#include <QPainter>
#include <QTextStream>

#include <malloc.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <numeric>

namespace {

QList<int> sizesMeasured = {50, 1500, 5000, 10000};
constexpr qreal kWidth = 800.0;
constexpr int kHeight = 600;
constexpr int kWheelStep = 60; // three lines of 20 pixels
constexpr int kMaxPages = 300;
constexpr int kWheelWindows = 12;
constexpr int kWheelStepsPerWindow = 30;
constexpr qint64 kFrame = 16'666'667;

QTextStream out(stdout);

// --- content -------------------------------------------------------------------------------------------

QString mimeTypeOf(const QString& fileName)
{
    if (fileName.endsWith(QLatin1String(".png")))
        return QStringLiteral("image/png");
    if (fileName.endsWith(QLatin1String(".pdf")))
        return QStringLiteral("application/pdf");
    if (fileName.endsWith(QLatin1String(".zip")))
        return QStringLiteral("application/zip");
    return QStringLiteral("text/plain");
}

// The records the plugin would hand the document for a generated conversation.
QList<CIncidentCommunication> generatedRecords(int count)
{
    const QString key = QStringLiteral("c%1").arg(count);
    const QJsonObject conversation = GeneratedConversation::make(key, count, quint32(count));
    const QDateTime now = QDateTime::currentDateTime();
    QList<CIncidentCommunication> records;
    for (const QJsonValue& value : conversation.value(QStringLiteral("messages")).toArray()) {
        const QJsonObject message = value.toObject();
        CIncidentCommunication record;
        record.id = message.value(QStringLiteral("id")).toString();
        record.threadId = key;
        record.versionKey = record.id;
        record.text = message.value(QStringLiteral("text")).toString();
        const QString sender = message.value(QStringLiteral("sender")).toString();
        record.fromOtherParty = sender != QLatin1String("u-self");
        record.senderName = sender == QLatin1String("s-anna")    ? QStringLiteral("Anna Keller")
                            : sender == QLatin1String("s-marco") ? QStringLiteral("Marco Brandt")
                                                                 : QString();
        record.nameKnown = true;
        const QString time = message.value(QStringLiteral("time")).toString();
        record.time = time == QLatin1String("now") ? now : now.addSecs(60 * time.chopped(1).toLongLong());
        record.editVersion = message.value(QStringLiteral("editVersion")).toInt(1);
        record.deleted = message.value(QStringLiteral("deleted")).toBool();
        int number = 0;
        for (const QJsonValue& file : message.value(QStringLiteral("attachments")).toArray()) {
            CIncidentAttachment attachment;
            attachment.fileName = file.toObject().value(QStringLiteral("fileName")).toString();
            attachment.id = QStringLiteral("%1-a%2").arg(record.id).arg(++number);
            attachment.size = 1000 + 7919 * quint64(records.size() % 97);
            attachment.mimeType = mimeTypeOf(attachment.fileName);
            record.attachments.append(attachment);
        }
        records.append(record);
    }
    return records;
}

std::unique_ptr<QTextDocument> ourDocument(const QList<CIncidentCommunication>& records)
{
    auto document = std::make_unique<CMessageItemsDocument>();
    for (const CIncidentCommunication& record : records)
        document->appendMessage(record);
    return document;
}

std::unique_ptr<QTextDocument> stockDocument(const QString& html)
{
    auto document = std::make_unique<QTextDocument>();
    document->setHtml(html);
    return document;
}

qreal layOut(QTextDocument& document)
{
    document.setTextWidth(kWidth);
    return document.documentLayout()->documentSize().height();
}

// --- figures -------------------------------------------------------------------------------------------

struct Spread
{
    double mean = 0;
    qint64 p95 = 0;
    qint64 longest = 0;
};

Spread spread(std::vector<qint64> values)
{
    std::sort(values.begin(), values.end());
    Spread result;
    result.mean = std::accumulate(values.begin(), values.end(), 0.0) / double(values.size());
    result.p95 = values.at(std::min(values.size() - 1, values.size() * 95 / 100));
    result.longest = values.back();
    return result;
}

qint64 median(std::vector<qint64> values)
{
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

QString ms(double ns)
{
    return QString::number(ns / 1e6, 'f', 3) + QStringLiteral(" ms");
}

QString mib(qint64 bytes)
{
    return QString::number(double(bytes) / (1024.0 * 1024.0), 'f', 1) + QStringLiteral(" MiB");
}

QString ratio(double mine, double base)
{
    return base > 0 ? QString::number(mine / base, 'f', 2) : QStringLiteral("-");
}

void row(const QString& what, int size, const QString& mine, const QString& base, const QString& ratioText)
{
    out << qSetFieldWidth(34) << Qt::left << what << qSetFieldWidth(7) << Qt::right << size
        << qSetFieldWidth(0) << "  " << qSetFieldWidth(13) << mine << qSetFieldWidth(0) << "  vs "
        << qSetFieldWidth(13) << base << qSetFieldWidth(0) << "  ratio " << ratioText << Qt::endl;
}

// --- paint ---------------------------------------------------------------------------------------------

// Paints the part `exposed` (document coordinates) of a view whose top is at `top`, as the view does.
qint64 paintView(QTextDocument& document, QImage& target, qreal top, const QRectF& exposed)
{
    QElapsedTimer timer;
    timer.start();
    QPainter painter(&target);
    painter.translate(0, -top);
    painter.setClipRect(exposed);
    painter.fillRect(exposed, CVantrelApp::GetColor(clrThreadBackground));
    QAbstractTextDocumentLayout::PaintContext context;
    context.clip = exposed;
    document.documentLayout()->draw(&painter, context);
    painter.end();
    return timer.nsecsElapsed();
}

struct ScrollTimes
{
    std::vector<qint64> ours;
    std::vector<qint64> stock;
};

// Positions of a page-by-page pass from top to bottom; for long threads evenly spread pages of it.
QList<qreal> pageTops(qreal height)
{
    const int pages = int(std::max<qreal>(1, std::ceil((height - kHeight) / kHeight)));
    const int stride = std::max(1, pages / kMaxPages);
    QList<qreal> tops;
    for (int page = 0; page < pages; page += stride)
        tops << std::min<qreal>(page * kHeight, height - kHeight);
    return tops;
}

void measurePaint(int size)
{
    const QList<CIncidentCommunication> records = generatedRecords(size);
    auto ours = ourDocument(records);
    auto stock = stockDocument(SampleThread::equivalentHtml(records));
    const qreal height = std::min(layOut(*ours), layOut(*stock));
    QImage target(QSize(int(kWidth), kHeight), QImage::Format_ARGB32_Premultiplied);

    ScrollTimes pages;
    for (qreal top : pageTops(height)) {
        const QRectF exposed(0, top, kWidth, kHeight);
        pages.stock.push_back(paintView(*stock, target, top, exposed));
        pages.ours.push_back(paintView(*ours, target, top, exposed));
    }
    ScrollTimes wheel;
    const qreal span = std::max<qreal>(0, height - kHeight - kWheelStep * kWheelStepsPerWindow);
    for (int window = 0; window < kWheelWindows; ++window) {
        qreal top = span * window / std::max(1, kWheelWindows - 1);
        for (int step = 0; step < kWheelStepsPerWindow; ++step) {
            top += kWheelStep;
            const QRectF exposed(0, top + kHeight - kWheelStep, kWidth, kWheelStep);
            wheel.stock.push_back(paintView(*stock, target, top, exposed));
            wheel.ours.push_back(paintView(*ours, target, top, exposed));
        }
    }
    const auto report = [size](const char* how, const ScrollTimes& times) {
        const Spread mine = spread(times.ours);
        const Spread base = spread(times.stock);
        row(QStringLiteral("paint, %1, mean").arg(QLatin1String(how)), size, ms(mine.mean), ms(base.mean),
            ratio(mine.mean, base.mean));
        row(QStringLiteral("paint, %1, 95th percentile").arg(QLatin1String(how)), size, ms(double(mine.p95)),
            ms(double(base.p95)), ratio(double(mine.p95), double(base.p95)));
        row(QStringLiteral("paint, %1, longest").arg(QLatin1String(how)), size, ms(double(mine.longest)),
            ms(double(base.longest)), ratio(double(mine.longest), double(base.longest)));
        if (mine.longest > kFrame)
            out << "  longer than one frame (16.7 ms)" << Qt::endl;
    };
    report("page", pages);
    report("wheel", wheel);
}

// --- memory --------------------------------------------------------------------------------------------

qint64 heapInUse()
{
    const struct mallinfo2 info = mallinfo2();
    return qint64(info.uordblks + info.hblkhd);
}

struct Held
{
    qint64 afterScrolling = 0; // against before the document was built
    qint64 secondPass = 0;     // what a second pass of scrolling added
    qint64 afterwards = 0;     // what stays once the document is gone
};

Held measureMemory(const std::function<std::unique_ptr<QTextDocument>()>& build)
{
    QImage target(QSize(int(kWidth), kHeight), QImage::Format_ARGB32_Premultiplied);
    target.fill(Qt::white);
    const qint64 before = heapInUse();
    Held held;
    {
        std::unique_ptr<QTextDocument> document = build();
        const qreal height = layOut(*document);
        const auto scroll = [&] {
            for (qreal top = 0; top < height; top += kHeight)
                paintView(*document, target, top, QRectF(0, top, kWidth, kHeight));
        };
        scroll();
        const qint64 scrolled = heapInUse();
        held.afterScrolling = scrolled - before;
        scroll();
        held.secondPass = heapInUse() - scrolled;
    }
    held.afterwards = heapInUse() - before;
    return held;
}

void measureMemory(int size)
{
    const QList<CIncidentCommunication> records = generatedRecords(size);
    const QString html = SampleThread::equivalentHtml(records);
    const Held stock = measureMemory([&] { return stockDocument(html); });
    const Held ours = measureMemory([&] { return ourDocument(records); });
    row(QStringLiteral("memory held after scrolling"), size, mib(ours.afterScrolling),
        mib(stock.afterScrolling), ratio(double(ours.afterScrolling), double(stock.afterScrolling)));
    row(QStringLiteral("memory added by a second pass"), size, mib(ours.secondPass), mib(stock.secondPass),
        QStringLiteral("-"));
    row(QStringLiteral("memory kept after the document"), size, mib(ours.afterwards), mib(stock.afterwards),
        QStringLiteral("-"));
}

// --- ops -----------------------------------------------------------------------------------------------

constexpr int kOpRounds = 24;

// A laid-out thread of one size and the messages and tiles the operations work on.
struct OpThread
{
    std::unique_ptr<QTextDocument> owned;
    QList<CIncidentCommunication> middle;
    QList<CIncidentCommunication> own;
    QStringList attachments;
    std::vector<qint64> progress, rects, delivery, replace, remove;

    CMessageItemsDocument& document() { return static_cast<CMessageItemsDocument&>(*owned); }
};

// The messages every size of thread is measured on: the same content at every size, so that the cost of a
// message's own layout does not differ between them. Each carries a file; about half are the user's own.
QList<CIncidentCommunication> probeMessages()
{
    QList<CIncidentCommunication> probes = generatedRecords(kOpRounds);
    for (int i = 0; i < probes.size(); ++i) {
        CIncidentCommunication& probe = probes[i];
        probe.id = QStringLiteral("probe-%1").arg(i);
        probe.versionKey = probe.id;
        probe.deleted = false;
        probe.fromOtherParty = i % 2 == 1;
        CIncidentAttachment attachment;
        attachment.id = QStringLiteral("probe-file-%1").arg(i);
        attachment.fileName = QStringLiteral("report-%1.pdf").arg(i);
        attachment.size = 48'213;
        attachment.mimeType = mimeTypeOf(attachment.fileName);
        probe.attachments = {attachment};
    }
    return probes;
}

OpThread makeOpThread(int size)
{
    QList<CIncidentCommunication> records = generatedRecords(size);
    const QList<CIncidentCommunication> probes = probeMessages();
    // In the middle of the thread, where a change moves the most below it.
    const qsizetype start = std::max<qsizetype>(0, (records.size() - probes.size()) / 2);
    for (qsizetype i = 0; i < probes.size() && start + i < records.size(); ++i)
        records[start + i] = probes.at(i);
    OpThread thread;
    thread.owned = ourDocument(records);
    layOut(*thread.owned);
    thread.middle = probes;
    for (const CIncidentCommunication& probe : probes) {
        if (!probe.fromOtherParty)
            thread.own << probe;
        thread.attachments << probe.attachments.constFirst().id;
    }
    return thread;
}

// One of each operation, timed with the layout brought up to date after it, as the next paint would.
void measureRound(OpThread& thread, int round)
{
    CMessageItemsDocument& document = thread.document();
    const auto timed = [&](std::vector<qint64>& into, const std::function<void()>& change) {
        QElapsedTimer timer;
        timer.start();
        change();
        document.documentLayout()->documentSize();
        into.push_back(timer.nsecsElapsed());
    };
    // Looking a tile up is a matter of microseconds: timed over all tiles at once.
    QElapsedTimer lookups;
    lookups.start();
    for (const QString& id : std::as_const(thread.attachments))
        (void)document.attachmentRect(id);
    thread.rects.push_back(lookups.nsecsElapsed() / thread.attachments.size());
    const QString tile = thread.attachments.at(round % thread.attachments.size());
    for (int percent = 0; percent < 100; percent += 10)
        timed(thread.progress, [&] { document.setAttachProgress(tile, percent); });
    document.setAttachProgress(tile, 100);

    const QString own = thread.own.at(round % thread.own.size()).id;
    for (auto status : {CMessageItemsDocument::NotDelivered, CMessageItemsDocument::Delivered})
        timed(thread.delivery, [&] { document.setDeliveryStatus(document.messageIndex(own), status); });

    if (round >= thread.middle.size())
        return;
    const CIncidentCommunication& message = thread.middle.at(round);
    CIncidentCommunication edited = message;
    edited.id += QStringLiteral("-v2");
    edited.editVersion += 1;
    edited.text += QStringLiteral(" (corrected)");
    timed(thread.replace, [&] { document.replaceMessage(document.messageIndex(message.id), edited); });
    timed(thread.remove, [&] { document.removeMessage(document.messageIndex(edited.id)); });
}

void reportOps()
{
    std::vector<OpThread> threads;
    for (int size : sizesMeasured)
        threads.push_back(makeOpThread(size));
    // Interleaved: every size takes its turn in every round.
    for (int round = 0; round < kOpRounds; ++round) {
        for (OpThread& thread : threads)
            measureRound(thread, round);
    }
    const auto report = [&](const char* what, std::vector<qint64> OpThread::*times) {
        const qint64 base = median(threads.front().*times);
        for (size_t i = 0; i < threads.size(); ++i) {
            const qint64 mine = median(threads[i].*times);
            row(QLatin1String(what), sizesMeasured.at(int(i)), ms(double(mine)),
                ms(double(base)) + QStringLiteral(" @%1").arg(sizesMeasured.front()),
                ratio(double(mine), double(base)));
        }
    };
    report("download progress tick", &OpThread::progress);
    report("tile rectangle", &OpThread::rects);
    report("delivery mark", &OpThread::delivery);
    report("replace a message", &OpThread::replace);
    report("remove a message", &OpThread::remove);
}

// --- open ----------------------------------------------------------------------------------------------

// Puts generated conversations (id and number of messages) on the server and waits until the list has them.
void addGenerated(const QList<std::pair<QString, int>>& conversations, quint32 seed)
{
    for (const auto& [id, messages] : conversations)
        HostControl::addConversation(GeneratedConversation::make(id, messages, seed));
    const PluginScreen probe(QSize(900, 700));
    (void)QTest::qWaitFor(
        [&] {
            return std::all_of(
                conversations.cbegin(), conversations.cend(),
                [&probe](const auto& conversation) { return probe.item(conversation.first).isValid(); });
        },
        60000);
}

qint64 openThroughPlugin(const QString& key, int messages)
{
    PluginScreen screen(QSize(900, 700));
    QElapsedTimer timer;
    timer.start();
    (void)screen.open(key, messages);
    screen.paintEnd();
    return timer.nsecsElapsed();
}

// What the plugin waits for before it can do anything: the stand-in server's answer, carried through the
// host's transport and parsed into entities.
qint64 answerAlone(const QString& threadId)
{
    QElapsedTimer timer;
    timer.start();
    CustomerEntitiesQueryVectorHandler* fetch = ChatServiceApi::startFetchThreadCommunications(threadId);
    bool delivered = false;
    QObject::connect(fetch, &CustomerEntitiesQueryVectorHandler::entitiesFetched, fetch,
                     [&delivered] { delivered = true; });
    (void)QTest::qWaitFor([&] { return delivered; }, 60000);
    return timer.nsecsElapsed();
}

void measureOpen()
{
    constexpr int kSmall = 500;
    constexpr int kLarge = 10000;
    constexpr int kRuns = 5;
    const QString small = QStringLiteral("open-%1").arg(kSmall);
    const QString large = QStringLiteral("open-%1").arg(kLarge);
    addGenerated({{small, kSmall}, {large, kLarge}}, 7);
    // The server makes each conversation's attachment files when it is first asked for it.
    openThroughPlugin(small, kSmall);
    openThroughPlugin(large, kLarge);
    std::vector<qint64> smallOpen, largeOpen, smallAnswer, largeAnswer, smallShare, largeShare;
    for (int run = 0; run < kRuns; ++run) {
        smallAnswer.push_back(answerAlone(small));
        smallOpen.push_back(openThroughPlugin(small, kSmall));
        largeAnswer.push_back(answerAlone(large));
        largeOpen.push_back(openThroughPlugin(large, kLarge));
        smallShare.push_back(smallOpen.back() - smallAnswer.back());
        largeShare.push_back(largeOpen.back() - largeAnswer.back());
    }
    const auto report = [](const char* what, const std::vector<qint64>& mine,
                           const std::vector<qint64>& base) {
        row(QLatin1String(what), kLarge, ms(double(median(mine))),
            ms(double(median(base))) + QStringLiteral(" @%1").arg(kSmall),
            ratio(double(median(mine)), double(median(base))));
    };
    report("open until the newest is painted", largeOpen, smallOpen);
    report("  of which the server's answer", largeAnswer, smallAnswer);
    report("  of which the plugin's share", largeShare, smallShare);
}

// --- older ---------------------------------------------------------------------------------------------

struct Portions
{
    std::vector<qint64> times;
    qreal largestJump = 0; // how far the message that was first moved on the screen
    qsizetype shown = 0;
};

// Opens the conversation, then scrolls to the top again and again until its oldest message is shown: the
// time each portion of older messages takes to come in and be painted.
Portions scrollToOldest(const QString& key, int messages)
{
    PluginScreen screen(QSize(900, 700));
    (void)screen.open(key, messages);
    screen.paintEnd();
    auto* document = static_cast<CMessageItemsDocument*>(screen.thread()->document());
    QScrollBar* bar = screen.thread()->verticalScrollBar();
    Portions portions;
    for (;;) {
        const qsizetype before = CMessageGroups::messageCount(document);
        auto* first = static_cast<QTextTable*>(document->firstMessageFrame());
        QElapsedTimer timer;
        timer.start();
        bar->setValue(0);
        // Where the reader sees the message that is first now, at the top of the view.
        const qreal onScreen = document->frameRect({first, {}}).top();
        if (!QTest::qWaitFor([&] { return CMessageGroups::messageCount(document) > before; }, 5000))
            break;
        screen.thread()->viewport()->repaint();
        portions.times.push_back(timer.nsecsElapsed());
        const qreal now = document->frameRect({first, {}}).top() - bar->value();
        portions.largestJump = std::max(portions.largestJump, std::abs(now - onScreen));
    }
    portions.shown = CMessageGroups::messageCount(document);
    return portions;
}

void measureOlder()
{
    constexpr int kSmall = 1500;
    constexpr int kLarge = 10000;
    const QString small = QStringLiteral("older-%1").arg(kSmall);
    const QString large = QStringLiteral("older-%1").arg(kLarge);
    addGenerated({{small, kSmall}, {large, kLarge}}, 11);
    const Portions base = scrollToOldest(small, kSmall);
    const Portions mine = scrollToOldest(large, kLarge);
    row(QStringLiteral("older portion coming in, median"), kLarge, ms(double(median(mine.times))),
        ms(double(median(base.times))) + QStringLiteral(" @%1").arg(kSmall),
        ratio(double(median(mine.times)), double(median(base.times))));
    const qint64 worst = *std::max_element(mine.times.cbegin(), mine.times.cend());
    const qint64 baseWorst = *std::max_element(base.times.cbegin(), base.times.cend());
    row(QStringLiteral("older portion coming in, longest"), kLarge, ms(double(worst)),
        ms(double(baseWorst)) + QStringLiteral(" @%1").arg(kSmall), ratio(double(worst), double(baseWorst)));
    out << "  all " << mine.shown << " messages shown after " << mine.times.size()
        << " portions; the first message moved by at most " << mine.largestJump << " px (" << base.largestJump
        << " px @" << kSmall << ")" << Qt::endl;
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QCoreApplication::setAttribute(Qt::AA_Use96Dpi, true);
    CVantrelApp app(argc, argv);
    HostControl::resetForTests();
    HostControl::setCanUseWebEngine(false);
    QStringList parts;
    QList<int> sizes;
    for (int i = 1; i < argc; ++i) {
        bool number = false;
        const int size = QString::fromLocal8Bit(argv[i]).toInt(&number);
        if (number && size > 0)
            sizes << size;
        else
            parts << QString::fromLocal8Bit(argv[i]);
    }
    if (!sizes.isEmpty())
        sizesMeasured = sizes;
    const auto wanted = [&parts](const char* part) {
        return parts.isEmpty() || parts.contains(QLatin1String(part));
    };

    QElapsedTimer total;
    total.start();
    out << "figure                              messages          ours      baseline" << Qt::endl;
    if (wanted("paint")) {
        for (int size : sizesMeasured)
            measurePaint(size);
    }
    if (wanted("memory")) {
        for (int size : sizesMeasured)
            measureMemory(size);
    }
    if (wanted("ops"))
        reportOps();
    if (wanted("open") || wanted("older"))
        HostControl::loadDefaultScenario();
    if (wanted("open"))
        measureOpen();
    if (wanted("older"))
        measureOlder();
    out << "took " << QString::number(double(total.elapsed()) / 1000.0, 'f', 1) << " s" << Qt::endl;
    return 0;
}
