#include "QTextDocumentLayout.h"

#include "CBackgroundCapture.h"
#include "CColorIndexes.h"
#include "CListNumberPainter.h"
#include "CNinePatch.h"
#include "CVantrelApp.h"
#include "MessageFormatProperties.h"
#include "TextImageHandler.h"

#include <QPainter>
#include <QScopeGuard>
#include <QTextBlock>
#include <QTextTable>
#include <QTimerEvent>
#include <QVarLengthArray>
#include <QtGui/private/qtextdocument_p.h>
#include <QtGui/private/qtextformat_p.h>

#include <algorithm>

extern Q_GUI_EXPORT int qt_defaultDpi();

namespace newsReader {

namespace {

using namespace MessageFormatProperties;

constexpr int kRadiusProperties[] = {TopLeftRadius, TopRightRadius, BottomRightRadius, BottomLeftRadius};
// What layoutStatus() reports once nothing is left to lay out.
constexpr int kLayoutComplete = 100;
// Marker colours carry a format index in their red, green and blue bits.
constexpr QRgb kMarkerIndexMask = 0xffffff;

// A background that paints nothing is left to the base layout: taking it over would only cost time.
bool paintsSomething(const QBrush& brush)
{
    if (brush.style() == Qt::NoBrush)
        return false;
    return brush.style() != Qt::SolidPattern || brush.color().alpha() != 0;
}

bool hasAnyRadius(const QTextFormat& format)
{
    return std::any_of(std::begin(kRadiusProperties), std::end(kRadiusProperties),
                       [&](int property) { return format.hasProperty(property); });
}

CBubbleShadowCache::Radii radiiOf(const QTextFormat& format)
{
    CBubbleShadowCache::Radii radii{};
    for (int i = 0; i < 4; ++i)
        radii[i] = std::max(0.0, format.doubleProperty(kRadiusProperties[i]));
    return radii;
}

// The area a frame's background fills: its bounding rectangle less its margins and border.
QRectF insideMarginsAndBorder(const QTextFrameFormat& format, const QRectF& outer, qreal scale)
{
    const qreal border = format.border() * scale;
    return outer.adjusted(format.leftMargin() * scale + border, format.topMargin() * scale + border,
                          -(format.rightMargin() * scale + border),
                          -(format.bottomMargin() * scale + border));
}

} // namespace

struct QTextDocumentLayout::Background
{
    QTextFormat format;
    QRectF rect;
    QBrush brush;
    int formatIndex;
};

QTextDocumentLayout::QTextDocumentLayout(QTextDocument* document)
    : ::QTextDocumentLayout(document)
    , m_imageHandler(new TextImageHandler(this))
    , m_shadows(QMarginsF(ShadowLeft, ShadowTop, ShadowRight, ShadowBottom))
{
    registerHandler(QTextFormat::ImageObject, m_imageHandler);
}

QTextDocumentLayout::~QTextDocumentLayout() = default;

QRectF QTextDocumentLayout::boundsOf(QTextFrame* frame) const
{
    if (auto* table = qobject_cast<QTextTable*>(frame))
        return tableBoundingRect(table);
    return frameBoundingRect(frame);
}

void QTextDocumentLayout::collectChildFrames(QTextFrame* frame, const QRectF& visible, qreal scale,
                                             std::vector<Background>& out) const
{
    // The children of the root frame and of the frames that group messages follow one another downwards, so
    // the visible ones are found by bisection: a long thread is not walked from its top on every paint.
    const QList<QTextFrame*> children = frame->childFrames();
    const auto first = std::partition_point(children.cbegin(), children.cend(), [&](QTextFrame* child) {
        return boundsOf(child).bottom() < visible.top();
    });
    for (auto it = first; it != children.cend(); ++it) {
        if (boundsOf(*it).top() > visible.bottom())
            break;
        collectFrame(*it, visible, scale, out);
    }
}

void QTextDocumentLayout::collectFrame(QTextFrame* frame, const QRectF& visible, qreal scale,
                                       std::vector<Background>& out) const
{
    if (auto* table = qobject_cast<QTextTable*>(frame)) {
        collectTable(table, visible, scale, out);
        return;
    }
    const QRectF outer = frameBoundingRect(frame);
    if (!outer.intersects(visible))
        return;
    const QTextFrameFormat format = frame->frameFormat();
    const QBrush brush = format.background();
    if (paintsSomething(brush)) {
        out.push_back({format, insideMarginsAndBorder(format, outer, scale), brush, frame->formatIndex()});
    }
    collectChildFrames(frame, visible, scale, out);
}

void QTextDocumentLayout::collectTable(QTextTable* table, const QRectF& visible, qreal scale,
                                       std::vector<Background>& out) const
{
    const QRectF outer = tableBoundingRect(table);
    if (!outer.intersects(visible))
        return;
    const QTextTableFormat format = table->format();
    const QBrush brush = format.background();
    if (paintsSomething(brush)) {
        out.push_back({format, insideMarginsAndBorder(format, outer, scale), brush, table->formatIndex()});
    }

    const QList<QTextFrame*> nested = table->childFrames();
    for (int row = 0; row < table->rows(); ++row) {
        for (int column = 0; column < table->columns(); ++column) {
            const QTextTableCell cell = table->cellAt(row, column);
            if (cell.row() != row || cell.column() != column)
                continue; // covered by a spanning cell, handled at its origin
            const QTextCharFormat cellFormat = cell.format();
            const QBrush cellBrush = cellFormat.background();
            if (paintsSomething(cellBrush)) {
                const QRectF rect = tableCellBoundingRect(table, cell);
                if (rect.intersects(visible))
                    out.push_back({cellFormat, rect, cellBrush, cell.tableCellFormatIndex()});
            }
            for (QTextFrame* child : nested) {
                if (table->cellAt(child->firstPosition()) == cell)
                    collectFrame(child, visible, scale, out);
            }
        }
    }
}

// A document without a text width is not shown by any view yet (views give it their width), and building a
// thread appends to it message after message: laying out each insertion on its own cost more than building.
// Its changes are only noted, and the layout catches up in one lazy pass, as after setting new text, when
// anything asks for geometry or paints, when it gets a width, or at the latest once the event loop turns.
bool QTextDocumentLayout::changeInPlace(const std::function<void()>& change)
{
    if (m_layoutPending || document()->textWidth() < 0 ||
        QTextDocumentPrivate::get(document())->isInEditBlock())
        return false;
    m_inPlace = true;
    change();
    m_inPlace = false;
    return true;
}

void QTextDocumentLayout::documentChanged(int from, int oldLength, int length)
{
    QTextDocument* doc = document();
    if (m_inPlace && oldLength == length) {
        // The lines stay; the blocks' shaped text is made again when they are painted.
        QRectF changed;
        const QTextBlock last = doc->findBlock(std::max(from, from + length - 1));
        for (QTextBlock block = doc->findBlock(from); block.isValid(); block = block.next()) {
            changed |= blockBoundingRect(block);
            if (block == last)
                break;
        }
        emit update(changed);
        return;
    }
    if (doc->textWidth() < 0 && !doc->pageSize().isNull()) {
        // The lines of the changed blocks are stale whatever happens next; the base drops them first as well.
        QTextBlock block = doc->findBlock(from);
        QTextBlock end = doc->findBlock(std::max(0, from + length - 1));
        if (end.isValid())
            end = end.next();
        for (; block.isValid() && block != end; block = block.next())
            block.clearLayout();
        m_layoutPending = true;
        if (!m_catchUpTimer.isActive())
            m_catchUpTimer.start(0, this);
        return;
    }
    const bool wholeDocument = from == 0 && oldLength == 0 && length == doc->characterCount();
    if (!wholeDocument)
        catchUpLayout();
    m_layoutPending = false;
    m_catchUpTimer.stop();
    ::QTextDocumentLayout::documentChanged(from, oldLength, length);
}

void QTextDocumentLayout::catchUpLayout() const
{
    // Inside an edit block the toolkit's layout is not up to date either (it hears of the changes only when
    // the block ends), and cursors ask for block geometry on every move: catching up there would lay out the
    // document once per move.
    if (!m_layoutPending || QTextDocumentPrivate::get(document())->isInEditBlock())
        return;
    m_layoutPending = false;
    m_catchUpTimer.stop();
    auto* self = const_cast<QTextDocumentLayout*>(this);
    self->::QTextDocumentLayout::documentChanged(0, 0, document()->characterCount());
}

void QTextDocumentLayout::timerEvent(QTimerEvent* event)
{
    if (event->timerId() == m_catchUpTimer.timerId()) {
        catchUpLayout();
        return;
    }
    ::QTextDocumentLayout::timerEvent(event);
    repaintListNumbersOnceDone();
}

int QTextDocumentLayout::hitTest(const QPointF& point, Qt::HitTestAccuracy accuracy) const
{
    catchUpLayout();
    return ::QTextDocumentLayout::hitTest(point, accuracy);
}

int QTextDocumentLayout::pageCount() const
{
    catchUpLayout();
    return ::QTextDocumentLayout::pageCount();
}

QSizeF QTextDocumentLayout::documentSize() const
{
    catchUpLayout();
    const QSizeF size = ::QTextDocumentLayout::documentSize();
    repaintListNumbersOnceDone();
    return size;
}

// The layout finishes in its own time steps or when asked for the document's size.
void QTextDocumentLayout::repaintListNumbersOnceDone() const
{
    if (!m_listNumbersPending || layoutStatus() != kLayoutComplete)
        return;
    m_listNumbersPending = false;
    emit const_cast<QTextDocumentLayout*>(this)->update();
}

QRectF QTextDocumentLayout::frameBoundingRect(QTextFrame* frame) const
{
    catchUpLayout();
    return ::QTextDocumentLayout::frameBoundingRect(frame);
}

QRectF QTextDocumentLayout::blockBoundingRect(const QTextBlock& block) const
{
    catchUpLayout();
    return ::QTextDocumentLayout::blockBoundingRect(block);
}

// While the layout is still lazy, the toolkit's geometry calls would lay out the whole document before
// answering. Its own drawing knows where every laid-out background goes without that, so it is run once
// against a device that only records fills: every background this layout paints is given a marker brush
// carrying its format index for the duration.
void QTextDocumentLayout::captureBackgrounds(QPainter* painter, const PaintContext& context,
                                             const QRectF& visible, std::vector<Background>& out)
{
    QTextDocument* doc = document();
    QList<QTextFormat>& formats = QTextDocumentPrivate::get(doc)->formatCollection()->formats;
    const int rootIndex = doc->rootFrame()->formatIndex();
    QHash<int, QTextFormat> marked;
    auto restore = qScopeGuard([&] {
        for (auto it = marked.cbegin(); it != marked.cend(); ++it)
            formats[it.key()] = it.value();
    });
    for (int index = 0; index < formats.size(); ++index) {
        const QTextFormat& format = formats.at(index);
        if (index == rootIndex || !(format.isFrameFormat() || format.isTableCellFormat()))
            continue;
        if (!paintsSomething(format.background()) || QRgb(index) > kMarkerIndexMask)
            continue;
        marked.insert(index, format);
        formats[index].setBackground(QBrush(QColor::fromRgb(QRgb(index)), CBackgroundCapture::MarkerStyle));
    }
    if (marked.isEmpty())
        return;

    CBackgroundCapture capture(painter->device());
    {
        QPainter recorder(&capture);
        PaintContext recordContext = context;
        // A shadow reaches beyond its background, so the backgrounds just outside the area count as well.
        recordContext.clip = visible;
        ::QTextDocumentLayout::draw(&recorder, recordContext);
    }
    for (const CBackgroundCapture::Fill& fill : capture.fills()) {
        const int index = int(fill.colour & kMarkerIndexMask);
        const auto found = marked.constFind(index);
        if (found == marked.cend() || !fill.rect.intersects(visible))
            continue;
        out.push_back({*found, fill.rect, found->background(), index});
    }
}

void QTextDocumentLayout::draw(QPainter* painter, const PaintContext& context)
{
    catchUpLayout();
    QTextDocument* doc = document();
    if (doc->pageSize().isNull()) {
        ::QTextDocumentLayout::draw(painter, context);
        return;
    }
    if (context.clip.isValid())
        ensureLayouted(context.clip.bottom());

    const QRectF area = context.clip.isValid() ? context.clip : QRectF(QPointF(0, 0), dynamicDocumentSize());
    // A shadow reaches beyond its background, so a background just outside the area may still paint into it.
    const QRectF visible = area.adjusted(-ShadowRight, -ShadowBottom, ShadowLeft, ShadowTop);
    m_paintArea = area;
    const qreal scale =
        paintDevice() ? qreal(paintDevice()->logicalDpiY()) / qreal(qt_defaultDpi()) : qreal(1.0);

    std::vector<Background> backgrounds;
    QTextFrame* root = doc->rootFrame();
    const QTextFrameFormat rootFormat = root->frameFormat();
    // The root background lies beneath everything, so it must be painted before the bubbles, not by the base.
    if (paintsSomething(rootFormat.background()))
        backgrounds.push_back({rootFormat, area, rootFormat.background(), root->formatIndex()});
    if (layoutStatus() == kLayoutComplete)
        collectChildFrames(root, visible, scale, backgrounds);
    else
        captureBackgrounds(painter, context, visible, backgrounds);

    // The base layout paints everything else; it runs with the backgrounds we painted cleared from the
    // shared format collection, and the formats are restored as soon as it returns.
    QList<QTextFormat>& formats = QTextDocumentPrivate::get(doc)->formatCollection()->formats;
    QVarLengthArray<std::pair<int, QTextFormat>, 16> saved;
    auto restore = qScopeGuard([&] {
        for (const auto& [index, format] : saved)
            formats[index] = format;
    });
    for (const Background& background : backgrounds) {
        const int index = background.formatIndex;
        if (index < 0 || index >= formats.size())
            continue;
        const bool known = std::any_of(saved.cbegin(), saved.cend(),
                                       [index](const auto& entry) { return entry.first == index; });
        if (!known) {
            saved.append({index, formats.at(index)});
            formats[index].clearProperty(QTextFormat::BackgroundBrush);
        }
    }

    for (const Background& background : backgrounds)
        drawBackground(background.format, painter, background.rect, background.brush);
    CListNumberPainter numbers(*this, messageTablesIn(area));
    numbers.hide();
    ::QTextDocumentLayout::draw(painter, context);
    numbers.restore();
    numbers.paint(painter, context);
}

// Only a finished layout places every table without laying out more, and finds the first one in the area by
// bisection. While it is still lazy the toolkit draws the numbers its own way; the area is painted again once
// the layout has finished.
QList<QTextTable*> QTextDocumentLayout::messageTablesIn(const QRectF& area)
{
    QList<QTextTable*> tables;
    if (layoutStatus() != kLayoutComplete) {
        m_listNumbersPending = true;
        return tables;
    }
    collectTables(document()->rootFrame(), area, tables);
    return tables;
}

// Messages lie in frames that group them, so the search goes down through those, bisecting at every level.
void QTextDocumentLayout::collectTables(QTextFrame* frame, const QRectF& area, QList<QTextTable*>& out) const
{
    const QList<QTextFrame*> children = frame->childFrames();
    const auto first = std::partition_point(children.cbegin(), children.cend(), [&](QTextFrame* child) {
        return boundsOf(child).bottom() < area.top();
    });
    for (auto it = first; it != children.cend() && boundsOf(*it).top() <= area.bottom(); ++it) {
        if (auto* table = qobject_cast<QTextTable*>(*it))
            out.append(table);
        else
            collectTables(*it, area, out);
    }
}

void QTextDocumentLayout::drawBackground(const QTextFormat& format, QPainter* painter, const QRectF& rect,
                                         const QBrush& brush)
{
    if (!format.boolProperty(Shadow)) {
        fillRoundedBackground(format, painter, rect, brush, m_paintArea);
        return;
    }
    // A bubble of one opaque colour comes with its shadow in the tile; any other is filled over the shadow.
    const bool inTile = brush.style() == Qt::SolidPattern && brush.isOpaque();
    const QColor page = CVantrelApp::GetColor(clrThreadBackground);
    const qreal ratio = painter->device() ? painter->device()->devicePixelRatioF() : qreal(1.0);
    const QImage tile =
        m_shadows.tile(rect.size(), radiiOf(format), page, inTile ? brush.color() : QColor(), ratio,
                       [&](QPainter* p, const QRectF& shape, const QBrush& shapeBrush) {
                           fillRoundedBackground(format, p, shape, shapeBrush);
                       });
    painter->save();
    painter->setClipping(false);
    const QRectF target = rect.adjusted(-ShadowLeft, -ShadowTop, ShadowRight, ShadowBottom);
    CNinePatch(tile).draw(painter, target, m_paintArea,
                          inTile || !brush.isOpaque() ? CNinePatch::WithCentre : CNinePatch::Hollow);
    painter->restore();
    if (!inTile)
        fillRoundedBackground(format, painter, rect, brush, m_paintArea);
}

void QTextDocumentLayout::fillRoundedBackground(const QTextFormat& format, QPainter* painter,
                                                const QRectF& rect, const QBrush& brush,
                                                const QRectF& visible) const
{
    painter->save();
    auto restore = qScopeGuard([painter] { painter->restore(); });
    if (!hasAnyRadius(format)) {
        painter->fillRect(rect, brush);
        return;
    }

    const auto [r1, r2, r3, r4] = radiiOf(format);
    const qreal left = std::max(r1, r4);
    const qreal right = std::max(r2, r3);
    const qreal top = std::max(r1, r2);
    const qreal bottom = std::max(r3, r4);
    const qreal l = rect.left();
    const qreal t = rect.top();
    const qreal r = rect.right();
    const qreal b = rect.bottom();
    const qreal w = rect.width();
    const qreal h = rect.height();

    struct Piece
    {
        QRectF rect;
        qreal radius;
    };
    // Each corner piece reaches its radius beyond its own row and column, so that only its outer corner
    // shows rounded and its inner corners lie under the neighbouring edges and the middle band. The middle
    // band runs the full width: a tall bubble seen in a strip is then one rectangle.
    const Piece pieces[] = {
        {{l, t, left + r1, top + r1}, r1},
        {{l + left, t, w - left - right, top}, 0.0},
        {{r - right - r2, t, right + r2, top + r2}, r2},
        {{r - right - r3, b - bottom - r3, right + r3, bottom + r3}, r3},
        {{l + left, b - bottom, w - left - right, bottom}, 0.0},
        {{l, b - bottom - r4, left + r4, bottom + r4}, r4},
    };
    painter->setPen(Qt::NoPen);
    painter->setBrush(brush);
    // A bubble smaller than its corners would show them sticking out.
    if (std::any_of(std::cbegin(pieces), std::cend(pieces),
                    [&rect](const Piece& piece) { return !rect.contains(piece.rect); }))
        painter->setClipRect(rect, Qt::IntersectClip);
    for (const Piece& piece : pieces) {
        if (piece.rect.width() <= 0 || piece.rect.height() <= 0)
            continue; // a bubble narrower than its corners: the edge has nothing to paint
        if (visible.isValid() && !piece.rect.intersects(visible))
            continue;
        if (piece.radius > 0)
            painter->drawRoundedRect(piece.rect, piece.radius, piece.radius, Qt::AbsoluteSize);
        else
            painter->drawRect(piece.rect);
    }
    const QRectF middle(l, t + top, w, h - top - bottom);
    if (middle.height() > 0 && (!visible.isValid() || middle.intersects(visible)))
        painter->fillRect(middle, brush);
}

} // namespace newsReader
