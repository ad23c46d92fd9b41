#pragma once
// Keeps the blurred shadow images of message bubbles. A shadow depends only on the bubble's size, its four
// corner radii and the page colour behind it, so one blurred image serves every bubble of that shape;
// blurring afresh on each paint made scrolling a long thread many times slower. Owned by the document
// layout; the images are exactly those a fresh computation would give.

#include <QCache>
#include <QColor>
#include <QImage>
#include <QSizeF>

#include <array>
#include <functional>

class CBubbleShadowCache
{
public:
    using Radii = std::array<qreal, 4>;
    // Fills the bubble's shape into the rectangle with the brush (the layout's rounded-background painter).
    using ShapePainter = std::function<void(QPainter*, const QRectF&, const QBrush&)>;

    // Room around the bubble inside the shadow image, so that the blur fades out before the image's edge.
    static constexpr qreal Margin = 50.0;
    static constexpr qreal BlurRadius = 6.0;

    explicit CBubbleShadowCache(int maxBytes = DefaultMaxBytes);

    // The blurred image for a bubble of `size` with `radii`, on a page of colour `page`.
    QImage shadow(const QSizeF& size, const Radii& radii, const QColor& page, const ShapePainter& paintShape);

    // Computes the image without looking into the cache.
    static QImage render(const QSizeF& size, const QColor& page, const ShapePainter& paintShape);

    int count() const { return m_images.count(); }
    int misses() const { return m_misses; }
    void clear() { m_images.clear(); }

private:
    static constexpr int DefaultMaxBytes = 64 * 1024 * 1024;

    struct Key
    {
        qreal width;
        qreal height;
        Radii radii;
        QRgb page;
        bool operator==(const Key& other) const;
    };
    friend size_t qHash(const Key& key, size_t seed);

    QCache<Key, QImage> m_images;
    int m_misses = 0;
};
