#pragma once
// Puts a Markdown body into a bubble: the toolkit's GitHub-dialect reader, with the tables it makes given
// single, collapsed borders and padded cells. Left to the reader, a table has a border around every cell with
// a gap between them, and its text touches the lines.

#include <QString>

class QTextCursor;

class CMarkdownInserter
{
public:
    // Cell padding and border width of a table in a bubble.
    static constexpr qreal CellPadding = 4.0;
    static constexpr qreal BorderWidth = 1.0;

    // Inserts `markdown`, which must already have passed CMessageBody's limits, at `cursor`.
    static void insert(QTextCursor& cursor, const QString& markdown);
};
