#include "SvgIconEngine.h"

#include "QtHelpersImages.h"

#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>

namespace {

// The sizes tool kits ask for most; offered as "available" so that size pickers see a sensible list.
constexpr int kStandardSizes[] = {16, 24, 32, 48, 64, 128};
// Disabled icons are the normal image at this opacity: quiet but still recognisable.
constexpr qreal kDisabledOpacity = 0.38;

QImage render(const QString& name, const QSize& pixelSize, QIcon::Mode mode)
{
    QImage result(pixelSize, QImage::Format_ARGB32_Premultiplied);
    result.fill(Qt::transparent);
    QSvgRenderer renderer(qtHelpers::images::svgData(name));
    if (!renderer.isValid())
        return result;
    QPainter painter(&result);
    painter.setRenderHint(QPainter::Antialiasing);
    if (mode == QIcon::Disabled)
        painter.setOpacity(kDisabledOpacity);
    const QSizeF natural =
        renderer.defaultSize().isEmpty() ? QSizeF(pixelSize) : QSizeF(renderer.defaultSize());
    const QSizeF fitted = natural.scaled(QSizeF(pixelSize), Qt::KeepAspectRatio);
    const QPointF origin((pixelSize.width() - fitted.width()) / 2.0,
                         (pixelSize.height() - fitted.height()) / 2.0);
    renderer.render(&painter, QRectF(origin, fitted));
    return result;
}

} // namespace

SvgIconEngine::SvgIconEngine(const QString& name)
    : m_name(name)
{}

SvgIconEngine::~SvgIconEngine() = default;

void SvgIconEngine::paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state)
{
    const qreal dpr = painter->device() ? painter->device()->devicePixelRatioF() : 1.0;
    QPixmap pm = pixmap((QSizeF(rect.size()) * dpr).toSize(), mode, state);
    pm.setDevicePixelRatio(dpr);
    painter->drawPixmap(rect, pm);
}

// `size` is in device pixels here: QIcon already multiplied the logical size by the target's pixel ratio
// and sets the ratio on the result itself.
QPixmap SvgIconEngine::pixmap(const QSize& size, QIcon::Mode mode, QIcon::State)
{
    if (size.isEmpty())
        return QPixmap();
    const QString cacheKey = QStringLiteral("qtHelpersIcon:%1:%2x%3:%4")
                                 .arg(m_name)
                                 .arg(size.width())
                                 .arg(size.height())
                                 .arg(int(mode));
    QPixmap cached;
    if (QPixmapCache::find(cacheKey, &cached))
        return cached;
    cached = QPixmap::fromImage(render(m_name, size, mode));
    QPixmapCache::insert(cacheKey, cached);
    return cached;
}

QSize SvgIconEngine::actualSize(const QSize& size, QIcon::Mode, QIcon::State)
{
    return size;
}

QList<QSize> SvgIconEngine::availableSizes(QIcon::Mode, QIcon::State)
{
    QList<QSize> sizes;
    for (int side : kStandardSizes)
        sizes.append(QSize(side, side));
    return sizes;
}

QIconEngine* SvgIconEngine::clone() const
{
    return new SvgIconEngine(m_name);
}

QString SvgIconEngine::key() const
{
    return QStringLiteral("qtHelpersSvg");
}

QString SvgIconEngine::iconName()
{
    return m_name;
}

bool SvgIconEngine::isNull()
{
    return !qtHelpers::images::contains(m_name);
}
