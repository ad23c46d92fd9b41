#include "CMessageBody.h"

#include <QByteArray>

#include <algorithm>

namespace {

const QString kWholeTextScheme = QStringLiteral("wholemessage:");
// A shortened body ends at a line break when there is one this close to the limit.
constexpr int kLineBreakReach = 2000;

bool isContainerTag(QStringView name)
{
    static const char* const containers[] = {"div", "table", "tr",         "td",      "th",  "ul",
                                             "ol",  "li",    "blockquote", "span",    "p",   "pre",
                                             "dl",  "dd",    "section",    "article", "font"};
    return std::any_of(std::begin(containers), std::end(containers), [name](const char* container) {
        return name.compare(QLatin1String(container), Qt::CaseInsensitive) == 0;
    });
}

QStringView tagName(QStringView text, qsizetype from)
{
    qsizetype end = from;
    while (end < text.size() && text.at(end).isLetterOrNumber())
        ++end;
    return text.sliced(from, end - from);
}

} // namespace

CMessageBody::CMessageBody(const QString& body, bool html)
{
    m_shortened = body.size() > MaxCharacters;
    m_text = m_shortened ? cut(body, html) : body;
    const auto isControl = [](QChar c) {
        const char16_t u = c.unicode();
        return (u < 0x20 && u != u'\n' && u != u'\t' && u != u'\r') || u == 0x7f;
    };
    // Most bodies have none: they are looked at without being copied.
    if (std::any_of(m_text.cbegin(), m_text.cend(), isControl))
        std::replace_if(m_text.begin(), m_text.end(), isControl, QChar(QChar::ReplacementCharacter));
    const bool slow = html ? slowAsHtml(m_text) : slowAsMarkdown(m_text);
    m_kind = slow ? PlainText : html ? Html : Markdown;
}

QString CMessageBody::cut(const QString& body, bool html)
{
    qsizetype end = MaxCharacters;
    const qsizetype lineBreak = body.lastIndexOf(QLatin1Char('\n'), end);
    if (lineBreak > end - kLineBreakReach)
        end = lineBreak;
    else if (html) {
        // Not inside a tag.
        const qsizetype tag = body.lastIndexOf(QLatin1Char('<'), end);
        if (tag > end - kLineBreakReach)
            end = tag;
    }
    if (end > 0 && body.at(end - 1).isHighSurrogate())
        --end;
    return body.left(end);
}

bool CMessageBody::slowAsHtml(QStringView text)
{
    int depth = 0;
    int tables = 0;
    int pictures = 0;
    int rows = 0;
    for (qsizetype i = text.indexOf(QLatin1Char('<')); i >= 0 && i + 1 < text.size();
         i = text.indexOf(QLatin1Char('<'), i + 1)) {
        const bool closing = text.at(i + 1) == QLatin1Char('/');
        const QStringView name = tagName(text, i + (closing ? 2 : 1));
        if (name.compare(QLatin1String("img"), Qt::CaseInsensitive) == 0 && ++pictures > MaxPictures)
            return true;
        if (!isContainerTag(name))
            continue;
        const bool table = name.compare(QLatin1String("table"), Qt::CaseInsensitive) == 0;
        if (name.compare(QLatin1String("tr"), Qt::CaseInsensitive) == 0 && !closing && ++rows > MaxTableRows)
            return true;
        if (closing) {
            depth = std::max(0, depth - 1);
            if (table)
                tables = std::max(0, tables - 1);
        } else if (++depth > MaxNesting || (table && ++tables > MaxTableNesting)) {
            return true;
        }
    }
    return false;
}

bool CMessageBody::slowAsMarkdown(QStringView text)
{
    int pictures = 0;
    int rows = 0;
    qsizetype start = 0;
    while (start < text.size()) {
        qsizetype end = text.indexOf(QLatin1Char('\n'), start);
        if (end < 0)
            end = text.size();
        const QStringView line = text.sliced(start, end - start);
        // Nesting of lists and quotes shows in the indentation and the quote marks before the text.
        int indent = 0;
        int quotes = 0;
        for (QChar c : line) {
            if (c == QLatin1Char(' '))
                ++indent;
            else if (c == QLatin1Char('\t'))
                indent += 4;
            else if (c == QLatin1Char('>'))
                ++quotes;
            else
                break;
        }
        if (indent / 2 + quotes > MaxNesting)
            return true;
        if (line.trimmed().startsWith(QLatin1Char('|')) && ++rows > MaxTableRows)
            return true;
        for (qsizetype at = line.indexOf(QLatin1String("![")); at >= 0;
             at = line.indexOf(QLatin1String("!["), at + 2)) {
            if (++pictures > MaxPictures)
                return true;
        }
        for (qsizetype at = line.indexOf(QLatin1String("<img"), 0, Qt::CaseInsensitive); at >= 0;
             at = line.indexOf(QLatin1String("<img"), at + 4, Qt::CaseInsensitive)) {
            if (++pictures > MaxPictures)
                return true;
        }
        start = end + 1;
    }
    // Raw HTML inside Markdown is read by the same reader as an HTML body.
    return text.contains(QLatin1Char('<')) && slowAsHtml(text);
}

QString CMessageBody::wholeTextLink(const QString& messageId)
{
    return kWholeTextScheme + QString::fromLatin1(messageId.toUtf8().toHex());
}

bool CMessageBody::isWholeTextLink(const QString& href)
{
    return href.startsWith(kWholeTextScheme);
}

QString CMessageBody::messageIdFromWholeTextLink(const QString& href)
{
    if (!isWholeTextLink(href))
        return {};
    return QString::fromUtf8(QByteArray::fromHex(href.mid(kWholeTextScheme.size()).toLatin1()));
}
