#pragma once
// A Markdown body as it goes into a bubble: read by the toolkit's GitHub-dialect reader, with its tables
// given single, collapsed borders and padded cells. Left to the reader, a table has a border around every
// cell with a gap between them, and its text touches the lines.

#include <QString>
#include <QTextDocumentFragment>

class CMarkdownFragment
{
public:
    // Cell padding and border width of a table in a bubble.
    static constexpr qreal CellPadding = 4.0;
    static constexpr qreal BorderWidth = 1.0;

    // `markdown` must already have passed CMessageBody's limits.
    static QTextDocumentFragment fromMarkdown(const QString& markdown);
};
