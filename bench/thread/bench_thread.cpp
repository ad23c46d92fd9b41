// Measures the thread document against the toolkit's stock layout in the same run and prints the ratios:
// building a 1,500-message thread (stock: the same content from equivalent HTML), its first paint, and later
// paints of a full viewport. Medians of several runs.
//   bench_thread [runs]

#include "CMessageItemsDocument.h"
#include "CVantrelApp.h"
#include "HostControl.h"
#include "SampleThread.h"

#include <QAbstractTextDocumentLayout>
#include <QElapsedTimer>
#include <QImage>
#include <QPainter>
#include <QTextStream>

#include <algorithm>
#include <functional>
#include <memory>

namespace {

constexpr int kMessages = 1500;
constexpr qreal kPageWidth = 600.0;
constexpr int kViewportHeight = 800;
constexpr int kLaterPaints = 20;
constexpr int kDefaultRuns = 5;

qint64 median(std::vector<qint64> values)
{
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

void paintViewport(QTextDocument& document, QImage& target, qreal top)
{
    target.fill(CVantrelApp::GetColor(clrThreadBackground));
    QPainter painter(&target);
    painter.translate(0, -top);
    QAbstractTextDocumentLayout::PaintContext context;
    context.clip = QRectF(0, top, kPageWidth, kViewportHeight);
    painter.setClipRect(context.clip);
    document.documentLayout()->draw(&painter, context);
}

struct Figures
{
    qint64 build = 0;
    qint64 firstPaint = 0;
    qint64 laterPaint = 0;
};

Figures measure(const std::function<std::unique_ptr<QTextDocument>()>& build, int runs)
{
    std::vector<qint64> builds, firsts, laters;
    QImage target(QSize(int(kPageWidth), kViewportHeight), QImage::Format_ARGB32_Premultiplied);
    for (int run = 0; run < runs; ++run) {
        QElapsedTimer timer;
        timer.start();
        std::unique_ptr<QTextDocument> document = build();
        builds.push_back(timer.nsecsElapsed());

        timer.restart();
        document->setTextWidth(kPageWidth);
        paintViewport(*document, target, 0);
        firsts.push_back(timer.nsecsElapsed());

        const qreal height = document->documentLayout()->documentSize().height();
        std::vector<qint64> paints;
        for (int i = 0; i < kLaterPaints; ++i) {
            const qreal top = (height - kViewportHeight) * i / kLaterPaints;
            timer.restart();
            paintViewport(*document, target, top);
            paints.push_back(timer.nsecsElapsed());
        }
        laters.push_back(median(paints));
    }
    return {median(builds), median(firsts), median(laters)};
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QCoreApplication::setAttribute(Qt::AA_Use96Dpi, true);
    CVantrelApp app(argc, argv);
    HostControl::resetForTests();
    const int runs = argc > 1 ? std::max(1, atoi(argv[1])) : kDefaultRuns;

    const QList<CIncidentCommunication> messages = SampleThread::repeated(kMessages);
    const QString html = SampleThread::equivalentHtml(messages);

    const Figures stock = measure(
        [&] {
            auto document = std::make_unique<QTextDocument>();
            document->setHtml(html);
            return document;
        },
        runs);
    const Figures ours = measure(
        [&] {
            auto document = std::make_unique<CMessageItemsDocument>();
            for (const CIncidentCommunication& message : messages)
                document->appendMessage(message);
            return document;
        },
        runs);

    QTextStream out(stdout);
    auto line = [&](const char* what, qint64 mine, qint64 theirs) {
        out << qSetFieldWidth(28) << Qt::left << what << qSetFieldWidth(0)
            << QString::number(mine / 1e6, 'f', 2) << " ms vs stock " << QString::number(theirs / 1e6, 'f', 2)
            << " ms, ratio " << QString::number(double(mine) / double(theirs), 'f', 2) << Qt::endl;
    };
    out << kMessages << " messages, median of " << runs << " runs" << Qt::endl;
    line("build", ours.build, stock.build);
    line("first paint", ours.firstPaint, stock.firstPaint);
    line("later paint (viewport)", ours.laterPaint, stock.laterPaint);
    return 0;
}
