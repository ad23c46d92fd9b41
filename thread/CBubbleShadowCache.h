#pragma once
// Keeps small blurred shadow tiles of message bubbles. Away from its corners a blurred rounded rectangle is
// the same along each edge, so one tile per corner radii, page colour, bubble colour and device pixel ratio
// serves bubbles of every size: it is drawn in nine pieces (CNinePatch) and its middle row and column are
// stretched. A tile may carry the bubble itself on its shadow, so that painting a bubble costs the nine
// pieces and nothing more.
// Only a bubble smaller than a tile gets a tile of its own size. The tile holds exactly the area painted
// around a bubble of its size (the bubble grown by `reach`), as a fresh computation would give it; blurring
// an image as large as the bubble made tall messages cost seconds and gigabytes per paint.
// Owned by the document layout.

#include <QCache>
#include <QColor>
#include <QImage>
#include <QMarginsF>
#include <QSizeF>

#include <array>
#include <functional>

class CBubbleShadowCache
{
public:
    using Radii = std::array<qreal, 4>;
    // Fills the bubble's shape into the rectangle with the brush (the layout's rounded-background painter).
    using ShapePainter = std::function<void(QPainter*, const QRectF&, const QBrush&)>;

    // Room around the bubble while blurring, so that the blur fades out before the image's edge.
    static constexpr qreal Margin = 50.0;
    static constexpr qreal BlurRadius = 6.0;
    // How far from its corners an edge of the blurred shape no longer changes along its length.
    static constexpr qreal SettledDistance = 4 * BlurRadius;

    // `reach`: how far the painted shadow area extends beyond the bubble on each side.
    explicit CBubbleShadowCache(const QMarginsF& reach, int maxBytes = DefaultMaxBytes);

    // The tile for a bubble of `size`: the painted area of a bubble of tileBubbleSize(size, radii), with the
    // given device pixel ratio; with the bubble filled in `bubble` on its shadow when that is valid.
    QImage tile(const QSizeF& size, const Radii& radii, const QColor& page, const QColor& bubble,
                qreal devicePixelRatio, const ShapePainter& paintShape);

    // The bubble size whose shadow a tile holds: `size`, limited in each direction to twice the largest
    // corner radius plus the distance it takes the blur to settle (and the fraction of a pixel of `size`).
    static QSizeF tileBubbleSize(const QSizeF& size, const Radii& radii);

    // Computes the painted area of a bubble of `size` afresh: the shape, blurred, offset by the reach, and
    // the bubble filled in `bubble` on it when that is valid.
    static QImage render(const QSizeF& size, const QMarginsF& reach, const QColor& page, const QColor& bubble,
                         qreal devicePixelRatio, const ShapePainter& paintShape);

    int count() const { return m_tiles.count(); }
    int misses() const { return m_misses; }
    // Bytes held by the kept tiles.
    qsizetype bytes() const { return m_tiles.totalCost(); }
    void clear() { m_tiles.clear(); }

private:
    static constexpr int DefaultMaxBytes = 2 * 1024 * 1024;

    struct Key
    {
        qreal width;
        qreal height;
        Radii radii;
        QRgb page;
        QRgb bubble; // 0 for a shadow alone
        qreal devicePixelRatio;
        bool operator==(const Key& other) const;
    };
    friend size_t qHash(const Key& key, size_t seed);

    QMarginsF m_reach;
    QCache<Key, QImage> m_tiles;
    int m_misses = 0;
};
