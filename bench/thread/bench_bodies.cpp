// Inserts, lays out and paints one message of each pathological shape and size that message content can take
// (long Markdown, a huge table, one enormous word, deep nesting, thousands of missing pictures, control
// characters, a 10 MB body) and prints for each the time of the insertion, of the layout, of painting the
// top and the bottom of the message, and the growth of the process's peak memory. Every row must stay under
// a second and 300 MB.
//   bench_bodies [shape]   (one shape only, by the start of its name)

#include "CMessageItemsDocument.h"
#include "CVantrelApp.h"
#include "HostControl.h"

#include <QAbstractTextDocumentLayout>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QTextStream>

#include <functional>

namespace {

constexpr qreal kPageWidth = 600.0;
constexpr int kViewportHeight = 800;

qint64 statusKilobytes(const char* field)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith(field))
            return line.mid(qstrlen(field)).trimmed().split(' ').value(0).toLongLong();
    }
    return 0;
}

// Starts counting the peak afresh at the current size (Linux: "5" resets the peak resident size).
void resetPeak()
{
    QFile refs(QStringLiteral("/proc/self/clear_refs"));
    if (refs.open(QIODevice::WriteOnly))
        refs.write("5");
}

QString repeated(const QString& unit, qsizetype bytes)
{
    QString text;
    text.reserve(bytes + unit.size());
    while (text.size() < bytes)
        text += unit;
    return text;
}

QString markdown(qsizetype bytes)
{
    QString text;
    for (int i = 0; text.size() < bytes; ++i) {
        switch (i % 4) {
        case 0:
            text += QStringLiteral("## Section %1\n\nSome *emphasis* and **strong** text with `code` and a "
                                   "[link](https://example.com/%1).\n\n")
                        .arg(i);
            break;
        case 1:
            text += QStringLiteral("- item %1\n  - nested item\n    1. numbered\n\n").arg(i);
            break;
        case 2:
            text += QStringLiteral("> quoted line %1 that goes on for a while to fill the line\n\n").arg(i);
            break;
        default:
            text += QStringLiteral("```\ncode block %1\n```\n\n").arg(i);
        }
    }
    return text;
}

QString nested(const QString& open, const QString& close, int levels, const QString& inner)
{
    return open.repeated(levels) + inner + close.repeated(levels);
}

struct Shape
{
    QString name;
    std::function<QString()> body;
};

QList<Shape> shapes()
{
    QList<Shape> list;
    for (int kb : {256, 512, 1024})
        list.append(
            {QStringLiteral("markdown %1 KB").arg(kb), [kb] { return markdown(qsizetype(kb) * 1024); }});
    list.append({QStringLiteral("markdown table 10000 rows"), [] {
                     QString table = QStringLiteral("| a | b | c |\n|---|---|---|\n");
                     table += repeated(QStringLiteral("| cell | more | last |\n"), 10000 * 22);
                     return table;
                 }});
    for (int kb : {512, 1024})
        list.append({QStringLiteral("one word %1 KB").arg(kb),
                     [kb] { return QString(kb * 1024, QLatin1Char('w')); }});
    list.append({QStringLiteral("nested div 10000"), [] {
                     return nested(QStringLiteral("<div>"), QStringLiteral("</div>"), 10000,
                                   QStringLiteral("x"));
                 }});
    list.append({QStringLiteral("nested list 500"), [] {
                     QString text;
                     for (int i = 0; i < 500; ++i)
                         text += QString(i * 2, QLatin1Char(' ')) + QStringLiteral("- level %1\n").arg(i);
                     return text;
                 }});
    list.append({QStringLiteral("missing pictures 5000"), [] {
                     return repeated(QStringLiteral("<p><img src=\"missing-picture.png\"></p>"), 5000 * 37);
                 }});
    list.append({QStringLiteral("markdown with NUL 100000"), [] {
                     QString text = markdown(100000);
                     for (qsizetype i = 2; i < text.size(); i += 3)
                         text[i] = QChar(0);
                     return text;
                 }});
    list.append({QStringLiteral("nested tables 20"), [] {
                     return nested(QStringLiteral("<table><tr><td>"), QStringLiteral("</td></tr></table>"),
                                   20, QStringLiteral("deep"));
                 }});
    list.append({QStringLiteral("body 10 MB"), [] { return markdown(10 * 1024 * 1024); }});
    return list;
}

QString ms(qint64 ns)
{
    return QString::number(double(ns) / 1e6, 'f', 1);
}

void paint(QTextDocument& document, qreal top)
{
    QImage image(int(kPageWidth), kViewportHeight, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.translate(0, -top);
    QAbstractTextDocumentLayout::PaintContext context;
    context.clip = QRectF(0, top, kPageWidth, kViewportHeight);
    painter.setClipRect(context.clip);
    document.documentLayout()->draw(&painter, context);
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    CVantrelApp app(argc, argv);
    HostControl::resetForTests();
    const QString only = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QString();
    QTextStream out(stdout);
    out << "shape | insert ms | layout ms | paint top ms | paint bottom ms | peak MB\n";
    for (const Shape& shape : shapes()) {
        if (!shape.name.startsWith(only))
            continue;
        CIncidentCommunication message;
        message.id = QStringLiteral("m1");
        message.fromOtherParty = true;
        message.senderName = QStringLiteral("Anna Keller");
        message.time = QDateTime::currentDateTime();
        message.text = shape.body();
        resetPeak();
        const qint64 before = statusKilobytes("VmRSS:");
        QElapsedTimer timer;
        CMessageItemsDocument document;
        timer.start();
        document.appendMessage(message);
        const qint64 insert = timer.nsecsElapsed();
        timer.restart();
        document.setTextWidth(kPageWidth);
        const qreal height = document.documentLayout()->documentSize().height();
        const qint64 layout = timer.nsecsElapsed();
        timer.restart();
        paint(document, 0);
        const qint64 paintTop = timer.nsecsElapsed();
        timer.restart();
        paint(document, std::max(0.0, height - kViewportHeight));
        const qint64 paintBottom = timer.nsecsElapsed();
        const qint64 peak = std::max<qint64>(0, statusKilobytes("VmHWM:") - before);
        out << shape.name << " | " << ms(insert) << " | " << ms(layout) << " | " << ms(paintTop) << " | "
            << ms(paintBottom) << " | " << QString::number(double(peak) / 1024.0, 'f', 1) << "\n";
        out.flush();
    }
    return 0;
}
