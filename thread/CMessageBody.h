#pragma once
// What of a message body the thread shows, and how. Bodies are written by the server and by anyone in the
// conversation; the toolkit's rich-text reader and layout take far longer than a moment on some of them
// (hundreds of kilobytes of Markdown, tables nested twenty deep, thousands of pictures, one word of half a
// megabyte). A body longer than the thread shows at once is shortened; one whose shape would be slow to lay
// out is shown as plain text; control characters other than line breaks and tabs are shown as U+FFFD. The
// message keeps its whole body: a note under a shortened one links to all of it, and later versions of the
// message replace it as usual.

#include <QString>

class CMessageBody
{
public:
    enum Kind
    {
        Html,
        Markdown,
        PlainText,
    };

    // The thread shows at most this many characters of one body.
    static constexpr int MaxCharacters = 20000;
    // Beyond these a body is shown as plain text: nesting of HTML elements or Markdown lists and quotes,
    // nesting of tables, pictures, table rows.
    static constexpr int MaxNesting = 24;
    static constexpr int MaxTableNesting = 3;
    static constexpr int MaxPictures = 200;
    static constexpr int MaxTableRows = 400;

    // `html`: the body counts as HTML (the document decides).
    CMessageBody(const QString& body, bool html);

    Kind kind() const { return m_kind; }
    // The text to insert: HTML, Markdown or plain text as kind() says.
    const QString& text() const { return m_text; }
    // Whether only the beginning of the body is shown.
    bool shortened() const { return m_shortened; }

    // The link of the note under a shortened body, naming the message whatever its id holds.
    static QString wholeTextLink(const QString& messageId);
    static bool isWholeTextLink(const QString& href);
    // The message id a whole-text link names; empty for any other href.
    static QString messageIdFromWholeTextLink(const QString& href);

private:
    static QString cut(const QString& body, bool html);
    static bool slowAsHtml(QStringView text);
    static bool slowAsMarkdown(QStringView text);

    Kind m_kind = PlainText;
    QString m_text;
    bool m_shortened = false;
};
