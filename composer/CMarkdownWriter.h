#pragma once
// Writes the composer's document as the GitHub-dialect Markdown that is sent. The user sees formatting, not
// Markdown: every character typed as text is written so that a Markdown reader shows that very character
// (markup characters are escaped where a reader would take them for markup), and every bold, italic,
// strike-out, monospaced, heading and list run the user set is written with the same extent, white space
// at the edges of a run staying outside its markers. Underlining has no Markdown form and is dropped.

#include <QString>

class QTextBlock;
class QTextDocument;

class CMarkdownWriter
{
public:
    static QString write(const QTextDocument* document);

private:
    static QString inlineText(const QTextBlock& block, bool heading = false);
    static QString escaped(const QString& text, bool atLineStart, bool inHeading);
    static QString codeSpan(const QString& text);
};
