#include "CBubbleShadowCache.h"

#include <QHashFunctions>
#include <QPainter>
#include <QtWidgets/qtwidgetsglobal.h>

QT_BEGIN_NAMESPACE
extern Q_WIDGETS_EXPORT void qt_blurImage(QImage& blurImage, qreal radius, bool quality, int transposed);
QT_END_NAMESPACE

namespace {

const QColor kShadowColor(QStringLiteral("#ccd1d1"));

} // namespace

bool CBubbleShadowCache::Key::operator==(const Key& other) const
{
    return width == other.width && height == other.height && radii == other.radii && page == other.page;
}

size_t qHash(const CBubbleShadowCache::Key& key, size_t seed)
{
    return qHashMulti(seed, key.width, key.height, key.radii[0], key.radii[1], key.radii[2], key.radii[3],
                      key.page);
}

CBubbleShadowCache::CBubbleShadowCache(int maxBytes)
    : m_images(maxBytes)
{}

QImage CBubbleShadowCache::render(const QSizeF& size, const QColor& page, const ShapePainter& paintShape)
{
    const QRectF shadowArea(QPointF(0, 0), size.grownBy(QMarginsF(Margin, Margin, Margin, Margin)));
    QImage image(shadowArea.size().toSize(), QImage::Format_ARGB32_Premultiplied);
    image.fill(page);
    {
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        QRectF shape(QPointF(0, 0), size);
        shape.moveCenter(QRectF(image.rect()).center());
        paintShape(&painter, shape, kShadowColor);
    }
    qt_blurImage(image, BlurRadius, false, 0);
    return image;
}

QImage CBubbleShadowCache::shadow(const QSizeF& size, const Radii& radii, const QColor& page,
                                  const ShapePainter& paintShape)
{
    const Key key{size.width(), size.height(), radii, page.rgba()};
    if (const QImage* cached = m_images.object(key))
        return *cached;
    ++m_misses;
    QImage image = render(size, page, paintShape);
    const qsizetype bytes = image.sizeInBytes();
    auto* stored = new QImage(image);
    // An image larger than the whole cache is simply not kept; QCache deletes it.
    m_images.insert(key, stored, int(qMin<qsizetype>(bytes, std::numeric_limits<int>::max())));
    return image;
}
