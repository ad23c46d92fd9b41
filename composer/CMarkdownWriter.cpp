#include "CMarkdownWriter.h"

#include <QTextBlock>
#include <QTextDocument>
#include <QTextList>

#include <algorithm>

namespace {

// Characters that start or end markup wherever they stand.
const QString kAlwaysEscaped = QStringLiteral("\\`*_[]|~&");
// Characters that start a block construct at the start of a line (heading, list, quote, rule).
const QString kLineStartEscaped = QStringLiteral("#+-=>");
// Lines of list items nested one level deeper start this much further in.
constexpr int kListIndent = 4;

struct Style
{
    bool bold = false;
    bool italic = false;
    bool strike = false;
    bool code = false;

    bool operator==(const Style& other) const
    {
        return bold == other.bold && italic == other.italic && strike == other.strike && code == other.code;
    }
    QString opening() const
    {
        return QString(strike ? QStringLiteral("~~") : QString()) +
               (bold ? QStringLiteral("**") : QString()) + (italic ? QStringLiteral("*") : QString());
    }
    QString closing() const
    {
        QString markers = opening();
        std::reverse(markers.begin(), markers.end());
        return markers;
    }
};

Style styleOf(const QTextCharFormat& format)
{
    Style style;
    style.bold = format.fontWeight() > QFont::Medium;
    style.italic = format.fontItalic();
    style.strike = format.fontStrikeOut();
    style.code = format.fontFixedPitch();
    return style;
}

int longestRun(const QString& text, QChar c)
{
    int longest = 0;
    int run = 0;
    for (QChar x : text) {
        run = x == c ? run + 1 : 0;
        longest = std::max(longest, run);
    }
    return longest;
}

QString trimmedRight(const QString& line)
{
    qsizetype end = line.size();
    while (end > 0 && (line.at(end - 1) == QLatin1Char(' ') || line.at(end - 1) == QLatin1Char('\t')))
        --end;
    return line.left(end);
}

} // namespace

QString CMarkdownWriter::write(const QTextDocument* document)
{
    if (!document)
        return QString();
    QStringList parts; // paragraphs, headings and whole lists
    QString listPart;  // the list being written
    const auto flush = [&] {
        if (!listPart.isEmpty())
            parts << std::exchange(listPart, QString());
    };
    for (QTextBlock block = document->begin(); block.isValid(); block = block.next()) {
        const QTextBlockFormat format = block.blockFormat();
        QTextList* list = block.textList();
        if (block.text().trimmed().isEmpty() && !list) {
            flush();
            continue;
        }
        if (list) {
            const bool ordered = list->format().style() <= QTextListFormat::ListDecimal &&
                                 list->format().style() != QTextListFormat::ListStyleUndefined;
            const int level = std::max(1, list->format().indent());
            const QString marker =
                ordered ? QStringLiteral("%1. ").arg(list->itemNumber(block) + 1) : QStringLiteral("- ");
            const QString indent(kListIndent * (level - 1), QLatin1Char(' '));
            QString item = inlineText(block);
            item.replace(QLatin1Char('\n'),
                         QLatin1Char('\n') + indent + QString(marker.size(), QLatin1Char(' ')));
            if (!listPart.isEmpty())
                listPart += QLatin1Char('\n');
            listPart += indent + marker + item;
            continue;
        }
        if (!listPart.isEmpty())
            flush();
        if (format.headingLevel() > 0) {
            flush();
            QString heading = inlineText(block, true);
            heading.replace(QStringLiteral("\\\n"), QStringLiteral(" "));
            parts << QString(std::min(format.headingLevel(), 6), QLatin1Char('#')) + QLatin1Char(' ') +
                         heading.trimmed();
            continue;
        }
        flush();
        parts << inlineText(block);
    }
    flush();
    return parts.join(QStringLiteral("\n\n")).trimmed();
}

QString CMarkdownWriter::inlineText(const QTextBlock& block, bool heading)
{
    // The block's text cut into runs of one style.
    QList<std::pair<Style, QString>> runs;
    for (auto it = block.begin(); !it.atEnd(); ++it) {
        const QTextFragment fragment = it.fragment();
        QString text = fragment.text();
        text.remove(QChar::ObjectReplacementCharacter);
        if (text.isEmpty())
            continue;
        Style style = styleOf(fragment.charFormat());
        // A heading is bold by its level, not by the user's choice.
        style.bold = style.bold && !heading;
        if (!runs.isEmpty() && runs.last().first == style)
            runs.last().second += text;
        else
            runs.append({style, text});
    }

    QString out;
    bool atLineStart = true;
    for (const auto& [style, text] : std::as_const(runs)) {
        // Lines broken inside the paragraph (Shift+Return) are written as hard line breaks.
        const QStringList lines = text.split(QChar::LineSeparator);
        for (qsizetype i = 0; i < lines.size(); ++i) {
            if (i > 0) {
                out = trimmedRight(out) + QStringLiteral("\\\n");
                atLineStart = true;
            }
            QString line = lines.at(i);
            if (atLineStart) {
                // Leading white space would make an indented code block.
                qsizetype start = 0;
                while (start < line.size() && line.at(start).isSpace())
                    ++start;
                line = line.mid(start);
            }
            if (line.isEmpty())
                continue;
            if (style.code) {
                out += style.opening() + codeSpan(line) + style.closing();
            } else {
                qsizetype first = 0;
                while (first < line.size() && line.at(first).isSpace())
                    ++first;
                qsizetype last = line.size();
                while (last > first && line.at(last - 1).isSpace())
                    --last;
                const QString core = line.mid(first, last - first);
                out += line.left(first);
                if (!core.isEmpty())
                    out += style.opening() + escaped(core, atLineStart && first == 0 && !heading, heading) +
                           style.closing();
                out += line.mid(last);
            }
            atLineStart = false;
        }
    }
    return trimmedRight(out);
}

QString CMarkdownWriter::escaped(const QString& text, bool atLineStart, bool inHeading)
{
    QString out;
    out.reserve(text.size() + text.size() / 8);
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        // As an entity, not escaped: a body with something that looks like a tag pair is read as HTML.
        if (c == QLatin1Char('<')) {
            out += QStringLiteral("&lt;");
            continue;
        }
        // A heading's text must not end in what a reader takes for its closing sequence.
        if (kAlwaysEscaped.contains(c) || (i == 0 && atLineStart && kLineStartEscaped.contains(c)) ||
            (inHeading && c == QLatin1Char('#')))
            out += QLatin1Char('\\');
        out += c;
    }
    if (atLineStart) {
        // "1. " or "1) " at the start of a line would begin a numbered list.
        qsizetype digits = 0;
        while (digits < out.size() && out.at(digits).isDigit())
            ++digits;
        if (digits > 0 && digits < out.size() &&
            (out.at(digits) == QLatin1Char('.') || out.at(digits) == QLatin1Char(')')))
            out.insert(digits, QLatin1Char('\\'));
    }
    return out;
}

QString CMarkdownWriter::codeSpan(const QString& text)
{
    const QString ticks(longestRun(text, QLatin1Char('`')) + 1, QLatin1Char('`'));
    // A reader strips one space on each side, which would eat a space the user typed or glue a backtick
    // to the fence.
    const bool pad =
        text.startsWith(QLatin1Char('`')) || text.endsWith(QLatin1Char('`')) ||
        (text.startsWith(QLatin1Char(' ')) && text.endsWith(QLatin1Char(' ')) && !text.trimmed().isEmpty());
    const QString padding = pad ? QStringLiteral(" ") : QString();
    return ticks + padding + text + padding + ticks;
}
