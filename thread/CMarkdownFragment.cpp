#include "CMarkdownFragment.h"

#include "CColorIndexes.h"
#include "CVantrelApp.h"

#include <QTextDocument>
#include <QTextFrame>
#include <QTextTable>

namespace {

void styleTables(QTextFrame* frame, const QBrush& border)
{
    const QList<QTextFrame*> children = frame->childFrames();
    for (QTextFrame* child : children) {
        if (auto* table = qobject_cast<QTextTable*>(child)) {
            QTextTableFormat format = table->format();
            format.setBorderCollapse(true);
            format.setBorder(CMarkdownFragment::BorderWidth);
            format.setBorderStyle(QTextFrameFormat::BorderStyle_Solid);
            format.setBorderBrush(border);
            format.setCellSpacing(0);
            format.setCellPadding(CMarkdownFragment::CellPadding);
            table->setFormat(format);
        }
        styleTables(child, border);
    }
}

} // namespace

QTextDocumentFragment CMarkdownFragment::fromMarkdown(const QString& markdown)
{
    // Without a table cell marker there is no table: the reader's fragment is taken as it is.
    if (!markdown.contains(QLatin1Char('|')))
        return QTextDocumentFragment::fromMarkdown(markdown, QTextDocument::MarkdownDialectGitHub);
    QTextDocument document;
    document.setUndoRedoEnabled(false);
    document.setMarkdown(markdown, QTextDocument::MarkdownDialectGitHub);
    styleTables(document.rootFrame(), CVantrelApp::GetColor(clrSecondaryText));
    return QTextDocumentFragment(&document);
}
