#pragma once
// The numbers of ordered lists in the thread, drawn on the baseline of their item's first line. The toolkit's
// layout draws them at the top of that line in the block's font, so they float above the text whenever the
// line holds something taller (a larger font, a picture, an emoji). Used by the thread layout around its own
// drawing: the numbers of the items about to be painted are hidden from the toolkit's drawing while it runs,
// then painted here.

#include <QAbstractTextDocumentLayout>
#include <QList>
#include <QTextBlock>
#include <QTextFormat>

#include <utility>

class QPainter;
class QTextTable;

class CListNumberPainter
{
public:
    // The numbered items of lists inside `tables`, as `layout` has placed them.
    CListNumberPainter(const QAbstractTextDocumentLayout& layout, const QList<QTextTable*>& tables);
    ~CListNumberPainter();
    CListNumberPainter(const CListNumberPainter&) = delete;
    CListNumberPainter& operator=(const CListNumberPainter&) = delete;

    bool isEmpty() const { return m_items.isEmpty(); }

    // Until restore(), the lists of these items tell the toolkit's drawing that they have no numbers.
    void hide();
    void restore();

    // Call after restore().
    void paint(QPainter* painter, const QAbstractTextDocumentLayout::PaintContext& context) const;

    static bool isNumbered(int style);

private:
    const QAbstractTextDocumentLayout& m_layout;
    QList<QTextBlock> m_items;
    // Format index and format of each list whose numbers are hidden.
    QList<std::pair<int, QTextFormat>> m_hidden;
};
