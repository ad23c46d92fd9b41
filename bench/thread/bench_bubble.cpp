// Paints bubbles of one line, of a screenful, of very many paragraphs and of a picture that asks for 100,000
// pixels a side, and prints for each the time of a viewport paint, the growth of the process's peak memory
// and the bytes the shadow cache holds, with the ratio of the tall bubble's paint time to the screenful's: a
// bubble's background and shadow must cost the same whatever the bubble's size.
//   bench_bubble [paragraphs]   (default 50,000 short paragraphs in the tall bubble)

#include "CMessageItemsDocument.h"
#include "CVantrelApp.h"
#include "HostControl.h"
#include "QTextDocumentLayout.h"

#include <QAbstractTextDocumentLayout>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QTextStream>

#include <algorithm>
#include <vector>

namespace {

constexpr int kDefaultParagraphs = 50000;
// Enough paragraphs to fill the viewport: the tall bubble's paint is compared with this one's.
constexpr int kScreenParagraphs = 40;
constexpr qreal kPageWidth = 600.0;
constexpr int kViewportHeight = 800;
constexpr int kPaints = 9;

// The process's peak resident memory so far, in kilobytes (Linux).
qint64 peakKilobytes()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').value(0).toLongLong();
    }
    return 0;
}

CIncidentCommunication message(const QString& text)
{
    CIncidentCommunication m;
    m.id = QStringLiteral("m");
    m.fromOtherParty = true;
    m.senderName = QStringLiteral("Support");
    m.nameKnown = true;
    m.text = text;
    m.time = QDateTime(QDate(2024, 1, 2), QTime(3, 4));
    return m;
}

QString paragraphs(int count)
{
    QString body;
    for (int i = 0; i < count; ++i)
        body += QStringLiteral("Line %1\n\n").arg(i);
    return body;
}

struct Figures
{
    qint64 paintNs = 0;
    qint64 peakGrowthKb = 0;
    qsizetype shadowBytes = 0;
    qreal height = 0;
};

Figures measure(const QString& body)
{
    CMessageItemsDocument document;
    document.appendMessage(message(body));
    document.setTextWidth(kPageWidth);
    Figures figures;
    figures.height = document.documentLayout()->documentSize().height();

    QImage target(QSize(int(kPageWidth), kViewportHeight), QImage::Format_ARGB32_Premultiplied);
    const qint64 peakBefore = peakKilobytes();
    std::vector<qint64> paints;
    for (int i = 0; i < kPaints; ++i) {
        // Scroll steps through the whole bubble: its shadow is needed wherever any of it shows.
        const qreal top = std::max(0.0, figures.height - kViewportHeight) * i / (kPaints - 1);
        target.fill(CVantrelApp::GetColor(clrThreadBackground));
        QElapsedTimer timer;
        timer.start();
        {
            QPainter painter(&target);
            painter.translate(0, -top);
            QAbstractTextDocumentLayout::PaintContext context;
            context.clip = QRectF(0, top, kPageWidth, kViewportHeight);
            painter.setClipRect(context.clip);
            document.documentLayout()->draw(&painter, context);
        }
        paints.push_back(timer.nsecsElapsed());
    }
    std::sort(paints.begin(), paints.end());
    figures.paintNs = paints.at(paints.size() / 2);
    figures.peakGrowthKb = peakKilobytes() - peakBefore;
    figures.shadowBytes =
        static_cast<newsReader::QTextDocumentLayout*>(document.documentLayout())->shadowCache().bytes();
    return figures;
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QCoreApplication::setAttribute(Qt::AA_Use96Dpi, true);
    CVantrelApp app(argc, argv);
    HostControl::resetForTests();
    const int tall = argc > 1 ? std::max(1, atoi(argv[1])) : kDefaultParagraphs;

    const Figures line = measure(QStringLiteral("A short reply."));
    const Figures screen = measure(paragraphs(kScreenParagraphs));
    const Figures large = measure(paragraphs(tall));
    // The size is the content's: the page must neither allocate nor blur anything that large.
    const Figures picture =
        measure(QStringLiteral("<p><img src=\"AvatarSingle\" width=\"100000\" height=\"100000\"></p>"));

    QTextStream out(stdout);
    auto row = [&](const QString& what, const Figures& f) {
        out << qSetFieldWidth(30) << Qt::left << what << qSetFieldWidth(0)
            << QString::number(f.height, 'f', 0) << " px tall, paint "
            << QString::number(f.paintNs / 1e6, 'f', 2) << " ms, peak memory +" << f.peakGrowthKb / 1024
            << " MB, shadow cache " << f.shadowBytes / 1024 << " KB" << Qt::endl;
    };
    out << "median of " << kPaints << " viewport paints (" << kPageWidth << " x " << kViewportHeight << ")"
        << Qt::endl;
    row(QStringLiteral("one line"), line);
    row(QStringLiteral("%1 paragraphs").arg(kScreenParagraphs), screen);
    row(QStringLiteral("%1 paragraphs").arg(tall), large);
    row(QStringLiteral("a 100,000 px square picture"), picture);
    out << "paint time ratio " << tall << " / " << kScreenParagraphs << " paragraphs: "
        << QString::number(double(large.paintNs) / double(std::max<qint64>(1, screen.paintNs)), 'f', 2)
        << Qt::endl;
    return 0;
}
