#pragma once
// The thread document's layout: the toolkit's rich-text document layout in every respect (lazy layout, hit
// testing, selections, lists, tables, images) except that it paints the backgrounds of frames and table
// cells itself, with individually rounded corners and a soft shadow where the format asks for them (this
// is what turns message tables into chat bubbles), and draws images through TextImageHandler.
// Lives in our namespace so that it never collides with the toolkit's private class of the same name,
// from which it derives. Created and installed by CMessageItemsDocument, which then owns it.

#include "CBubbleShadowCache.h"

#include <QBasicTimer>

#include <QtGui/private/qtextdocumentlayout_p.h>
#include <functional>

class QTextTable;
class TextImageHandler;

namespace newsReader {

// Deliberately without Q_OBJECT: the layout presents itself to the meta-object system exactly as the
// toolkit's own ("QTextDocumentLayout", with its properties), so anything that looks a layout up by its
// class name finds it.
class QTextDocumentLayout : public ::QTextDocumentLayout
{
public:
    explicit QTextDocumentLayout(QTextDocument* document);
    ~QTextDocumentLayout() override;

    void draw(QPainter* painter, const PaintContext& context) override;
    int hitTest(const QPointF& point, Qt::HitTestAccuracy accuracy) const override;
    int pageCount() const override;
    QSizeF documentSize() const override;
    QRectF frameBoundingRect(QTextFrame* frame) const override;
    QRectF blockBoundingRect(const QTextBlock& block) const override;

    // True while changes to a document without a text width wait to be laid out.
    bool layoutPending() const { return m_layoutPending; }

    // Runs `change`, which must leave every line where it is (an inline picture swapped for one of the same
    // size, say a download's progress ring): the changed blocks are repainted, not laid out again. A long
    // thread would otherwise be walked from the change to its end. Returns false, running nothing, when the
    // layout is not current (then the ordinary way is as cheap).
    bool changeInPlace(const std::function<void()>& change);

    TextImageHandler* imageHandler() const { return m_imageHandler; }
    const CBubbleShadowCache& shadowCache() const { return m_shadows; }

    // How far a shadow reaches beyond its background: left, top, right, bottom.
    static constexpr qreal ShadowLeft = 2.0;
    static constexpr qreal ShadowTop = 1.0;
    static constexpr qreal ShadowRight = 5.0;
    static constexpr qreal ShadowBottom = 5.0;

protected:
    void documentChanged(int from, int oldLength, int length) override;
    void timerEvent(QTimerEvent* event) override;

private:
    struct Background;

    void catchUpLayout() const;
    void repaintListNumbersOnceDone() const;
    QRectF boundsOf(QTextFrame* frame) const;
    // The message tables that reach into `area`; none while the layout is lazy.
    QList<QTextTable*> messageTablesIn(const QRectF& area);
    void collectTables(QTextFrame* frame, const QRectF& area, QList<QTextTable*>& out) const;
    void captureBackgrounds(QPainter* painter, const PaintContext& context, const QRectF& visible,
                            std::vector<Background>& out);

    void collectFrame(QTextFrame* frame, const QRectF& visible, qreal scale,
                      std::vector<Background>& out) const;
    void collectTable(QTextTable* table, const QRectF& visible, qreal scale,
                      std::vector<Background>& out) const;
    void collectChildFrames(QTextFrame* frame, const QRectF& visible, qreal scale,
                            std::vector<Background>& out) const;

    void drawBackground(const QTextFormat& format, QPainter* painter, const QRectF& rect,
                        const QBrush& brush);
    // Only what lies within `visible`, when that is valid, need be painted.
    void fillRoundedBackground(const QTextFormat& format, QPainter* painter, const QRectF& rect,
                               const QBrush& brush, const QRectF& visible = QRectF()) const;

    TextImageHandler* m_imageHandler = nullptr;
    CBubbleShadowCache m_shadows;
    // The area being painted: a shadow stretched along a tall bubble is drawn only where it can be seen.
    QRectF m_paintArea;
    mutable bool m_layoutPending = false;
    bool m_inPlace = false;
    // A paint left the list numbers to the toolkit because the layout was not finished.
    mutable bool m_listNumbersPending = false;
    mutable QBasicTimer m_catchUpTimer;
};

} // namespace newsReader
