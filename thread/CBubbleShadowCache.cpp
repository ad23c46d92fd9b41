#include "CBubbleShadowCache.h"

#include <QHashFunctions>
#include <QPainter>
#include <QtWidgets/qtwidgetsglobal.h>

#include <algorithm>
#include <cmath>

QT_BEGIN_NAMESPACE
extern Q_WIDGETS_EXPORT void qt_blurImage(QImage& blurImage, qreal radius, bool quality, int transposed);
QT_END_NAMESPACE

namespace {

const QColor kShadowColor(QStringLiteral("#ccd1d1"));

// The shortest side, in one direction, of a bubble whose middle row or column lies where the blur has
// settled, that many pixels away from the corners on both sides.
qreal settledSide(qreal corner)
{
    return 2 * (std::ceil(corner) + CBubbleShadowCache::SettledDistance) + 2;
}

} // namespace

bool CBubbleShadowCache::Key::operator==(const Key& other) const
{
    return width == other.width && height == other.height && radii == other.radii && page == other.page &&
           bubble == other.bubble && devicePixelRatio == other.devicePixelRatio;
}

size_t qHash(const CBubbleShadowCache::Key& key, size_t seed)
{
    return qHashMulti(seed, key.width, key.height, key.radii[0], key.radii[1], key.radii[2], key.radii[3],
                      key.page, key.bubble, key.devicePixelRatio);
}

CBubbleShadowCache::CBubbleShadowCache(const QMarginsF& reach, int maxBytes)
    : m_reach(reach)
    , m_tiles(maxBytes)
{}

QSizeF CBubbleShadowCache::tileBubbleSize(const QSizeF& size, const Radii& radii)
{
    const qreal side = settledSide(*std::max_element(radii.cbegin(), radii.cend()));
    // A cut-down side keeps the fraction of a pixel of the real one, so that its far edge is drawn as
    // smoothly as the real bubble's.
    auto limit = [side](qreal length) { return std::min(length, side + (length - std::floor(length))); };
    return QSizeF(limit(size.width()), limit(size.height()));
}

QImage CBubbleShadowCache::render(const QSizeF& size, const QMarginsF& reach, const QColor& page,
                                  const QColor& bubble, qreal devicePixelRatio,
                                  const ShapePainter& paintShape)
{
    const QSizeF blurredSize = size.grownBy(QMarginsF(Margin, Margin, Margin, Margin));
    QImage blurred((blurredSize * devicePixelRatio).toSize(), QImage::Format_ARGB32_Premultiplied);
    blurred.setDevicePixelRatio(devicePixelRatio);
    blurred.fill(page);
    const QPointF centre = QRectF(QPointF(0, 0), blurred.deviceIndependentSize()).center();
    {
        QPainter painter(&blurred);
        painter.setRenderHint(QPainter::Antialiasing);
        QRectF shape(QPointF(0, 0), size);
        shape.moveCenter(centre);
        paintShape(&painter, shape, kShadowColor);
    }
    qt_blurImage(blurred, BlurRadius * devicePixelRatio, false, 0);

    // The painted area is taken centred on the blurred image while it extends unevenly around the bubble:
    // that is what moves the shadow to the right and down.
    const QSizeF paintedSize = size.grownBy(reach);
    QImage tile((paintedSize * devicePixelRatio).toSize(), QImage::Format_ARGB32_Premultiplied);
    tile.setDevicePixelRatio(devicePixelRatio);
    tile.fill(page);
    QRectF source(QPointF(0, 0), paintedSize);
    source.moveCenter(centre);
    QPainter painter(&tile);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.drawImage(QRectF(QPointF(0, 0), paintedSize), blurred,
                      QRectF(source.topLeft() * devicePixelRatio, source.size() * devicePixelRatio));
    if (bubble.isValid())
        paintShape(&painter, QRectF(QPointF(reach.left(), reach.top()), size), bubble);
    return tile;
}

QImage CBubbleShadowCache::tile(const QSizeF& size, const Radii& radii, const QColor& page,
                                const QColor& bubble, qreal devicePixelRatio, const ShapePainter& paintShape)
{
    const QSizeF tileSize = tileBubbleSize(size, radii);
    const Key key{
        tileSize.width(), tileSize.height(), radii, page.rgba(), bubble.isValid() ? bubble.rgba() : 0,
        devicePixelRatio};
    if (const QImage* cached = m_tiles.object(key))
        return *cached;
    ++m_misses;
    QImage image = render(tileSize, m_reach, page, bubble, devicePixelRatio, paintShape);
    const qsizetype bytes = image.sizeInBytes();
    // A tile larger than the whole cache is simply not kept; QCache deletes it.
    m_tiles.insert(key, new QImage(image), qMin<qsizetype>(bytes, std::numeric_limits<int>::max()));
    return image;
}
