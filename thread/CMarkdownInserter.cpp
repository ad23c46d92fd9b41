#include "CMarkdownInserter.h"

#include "CColorIndexes.h"
#include "CVantrelApp.h"

#include <QTextCursor>
#include <QtGui/private/qtextdocument_p.h>
#include <QtGui/private/qtextformat_p.h>

void CMarkdownInserter::insert(QTextCursor& cursor, const QString& markdown)
{
    QTextDocumentPrivate* document = QTextDocumentPrivate::get(cursor.document());
    // Every table, list and frame the insertion makes gets the next free object number. They are looked up
    // by number: inside the edit block of a message the document's tree of frames may not be current yet.
    // Call inside an edit block.
    const int firstNew = int(document->formatCollection()->objFormats.size());
    cursor.insertMarkdown(markdown, QTextDocument::MarkdownDialectGitHub);
    // Without a table cell marker there is no table.
    if (!markdown.contains(QLatin1Char('|')))
        return;
    QTextFormatCollection* formats = document->formatCollection();
    const int end = int(formats->objFormats.size());
    const QBrush border = CVantrelApp::GetColor(clrSecondaryText);
    for (int index = firstNew; index < end; ++index) {
        const QTextFormat made = formats->objectFormat(index);
        if (!made.isTableFormat())
            continue;
        QTextTableFormat format = made.toTableFormat();
        format.setBorderCollapse(true);
        format.setBorder(BorderWidth);
        format.setBorderStyle(QTextFrameFormat::BorderStyle_Solid);
        format.setBorderBrush(border);
        format.setCellSpacing(0);
        format.setCellPadding(CellPadding);
        // Given to the table directly: the range it covers was just inserted, so whoever lays the document
        // out has yet to hear of it, and telling of a change to it as well would only cost time.
        formats->setObjectFormat(index, format);
    }
}
