#include "CListNumberPainter.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QTextLayout>
#include <QTextList>
#include <QTextTable>
#include <QtGui/private/qtextdocument_p.h>
#include <QtGui/private/qtextformat_p.h>

#include <algorithm>

CListNumberPainter::CListNumberPainter(const QAbstractTextDocumentLayout& layout,
                                       const QList<QTextTable*>& tables)
    : m_layout(layout)
{
    for (QTextTable* table : tables) {
        const QTextDocument* document = table->document();
        for (QTextBlock block = document->findBlock(table->firstPosition());
             block.isValid() && block.position() < table->lastPosition(); block = block.next()) {
            const QTextList* list = block.textList();
            if (list && isNumbered(list->format().style()) && block.layout() &&
                block.layout()->lineCount() > 0)
                m_items.append(block);
        }
    }
}

CListNumberPainter::~CListNumberPainter()
{
    restore();
}

bool CListNumberPainter::isNumbered(int style)
{
    switch (style) {
    case QTextListFormat::ListDecimal:
    case QTextListFormat::ListLowerAlpha:
    case QTextListFormat::ListUpperAlpha:
    case QTextListFormat::ListLowerRoman:
    case QTextListFormat::ListUpperRoman:
        return true;
    default:
        return false;
    }
}

void CListNumberPainter::hide()
{
    if (m_items.isEmpty())
        return;
    QList<QTextFormat>& formats = QTextDocumentPrivate::get(m_layout.document())->formatCollection()->formats;
    for (const QTextBlock& item : std::as_const(m_items)) {
        const int index = item.textList()->formatIndex();
        const bool known = std::any_of(m_hidden.cbegin(), m_hidden.cend(),
                                       [index](const auto& hidden) { return hidden.first == index; });
        if (known || index < 0 || index >= formats.size())
            continue;
        m_hidden.append({index, formats.at(index)});
        formats[index].setProperty(QTextFormat::ListStyle, int(QTextListFormat::ListStyleUndefined));
    }
}

void CListNumberPainter::restore()
{
    if (m_hidden.isEmpty())
        return;
    QList<QTextFormat>& formats = QTextDocumentPrivate::get(m_layout.document())->formatCollection()->formats;
    for (const auto& [index, format] : std::as_const(m_hidden))
        formats[index] = format;
    m_hidden.clear();
}

void CListNumberPainter::paint(QPainter* painter,
                               const QAbstractTextDocumentLayout::PaintContext& context) const
{
    for (const QTextBlock& item : m_items) {
        const QTextLayout* textLayout = item.layout();
        const QTextLine line = textLayout->lineAt(0);
        // The block's rectangle starts where its layout's own coordinates do.
        const QPointF origin = m_layout.blockBoundingRect(item).topLeft();
        const QTextCharFormat charFormat = item.charFormat();
        QFont font = charFormat.font();
        if (m_layout.paintDevice())
            font = QFont(font, m_layout.paintDevice());
        const QFontMetricsF metrics(font);
        const QString number = item.textList()->itemText(item);
        const qreal width = metrics.horizontalAdvance(number);
        const qreal space = metrics.horizontalAdvance(QLatin1Char(' '));
        const QRectF text = line.naturalTextRect().translated(origin);
        const bool rightToLeft = item.textDirection() == Qt::RightToLeft;
        const qreal x = rightToLeft ? text.right() + space : text.left() - space - width;
        const qreal baseline = origin.y() + line.y() + line.ascent();

        QBrush pen = charFormat.foreground();
        if (pen.style() == Qt::NoBrush)
            pen = context.palette.text();
        // A selection that takes in the start of the item takes in its number, as in the toolkit's drawing.
        for (const QAbstractTextDocumentLayout::Selection& selection : context.selections) {
            if (selection.cursor.selectionStart() <= item.position() &&
                selection.cursor.selectionEnd() > item.position()) {
                pen = selection.format.foreground();
                painter->fillRect(QRectF(x, baseline - metrics.ascent(), width, metrics.height()),
                                  selection.format.background());
            }
        }
        painter->save();
        painter->setFont(font);
        painter->setPen(QPen(pen, 0));
        painter->drawText(QPointF(x, baseline), number);
        painter->restore();
    }
}
