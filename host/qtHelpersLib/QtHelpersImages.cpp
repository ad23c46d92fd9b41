#include "QtHelpersImages.h"

#include "SvgIconEngine.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QHash>
#include <QPainter>
#include <QPixmapCache>
#include <QScreen>
#include <QSvgRenderer>

namespace qtHelpers::images {

namespace {

const QString kImageFolder = QStringLiteral(":/qtHelpers/images");
const QString kSvgSuffix = QStringLiteral(".svg");
const QString kPngSuffix = QStringLiteral(".png");

QString svgPath(const QString& name)
{
    return kImageFolder + QLatin1Char('/') + name + kSvgSuffix;
}

QString pngPath(const QString& name)
{
    return kImageFolder + QLatin1Char('/') + name + kPngSuffix;
}

bool isSafeName(const QString& name)
{
    return !name.isEmpty() && !name.contains(QLatin1Char('/'));
}

qreal primaryScreenRatio()
{
    if (auto* gui = qobject_cast<QGuiApplication*>(QCoreApplication::instance())) {
        if (QScreen* screen = gui->primaryScreen())
            return screen->devicePixelRatio();
        return gui->devicePixelRatio();
    }
    return 1.0;
}

// Renders the image into `logicalSize` logical pixels at `ratio` device pixels per logical pixel.
QImage renderImage(const QString& name, QSize logicalSize, qreal ratio)
{
    const QByteArray svg = svgData(name);
    if (!svg.isEmpty()) {
        QSvgRenderer renderer(svg);
        if (!renderer.isValid())
            return QImage();
        if (logicalSize.isEmpty())
            logicalSize = renderer.defaultSize();
        QImage result((QSizeF(logicalSize) * ratio).toSize(), QImage::Format_ARGB32_Premultiplied);
        result.fill(Qt::transparent);
        QPainter painter(&result);
        painter.setRenderHint(QPainter::Antialiasing);
        renderer.render(&painter, QRectF(QPointF(0, 0), QSizeF(result.size())));
        painter.end();
        result.setDevicePixelRatio(ratio);
        return result;
    }
    QImage bitmap(pngPath(name));
    if (bitmap.isNull())
        return QImage();
    if (!logicalSize.isEmpty() || ratio != 1.0) {
        const QSize target = (QSizeF(logicalSize.isEmpty() ? bitmap.size() : logicalSize) * ratio).toSize();
        bitmap = bitmap.scaled(target, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    }
    bitmap.setDevicePixelRatio(ratio);
    return bitmap;
}

} // namespace

QIcon icon(const QString& name)
{
    if (!contains(name))
        return QIcon();
    if (QFileInfo::exists(svgPath(name)))
        return QIcon(new SvgIconEngine(name));
    return QIcon(pngPath(name));
}

QPixmap pixmap(const QString& name, int size, bool hiDpi)
{
    if (!contains(name))
        return QPixmap();
    const qreal ratio = hiDpi ? primaryScreenRatio() : 1.0;
    const QSize logical = size > 0 ? QSize(size, size) : QSize();
    const QString cacheKey = QStringLiteral("qtHelpersPixmap:%1:%2:%3").arg(name).arg(size).arg(ratio);
    QPixmap cached;
    if (QPixmapCache::find(cacheKey, &cached))
        return cached;
    cached = QPixmap::fromImage(renderImage(name, logical, ratio));
    QPixmapCache::insert(cacheKey, cached);
    return cached;
}

QImage image(const QString& name)
{
    if (!contains(name))
        return QImage();
    return renderImage(name, QSize(), 1.0);
}

QByteArray svgData(const QString& name)
{
    // The resources never change while the process runs, so each document is read once.
    static QHash<QString, QByteArray> cache;
    if (!isSafeName(name))
        return QByteArray();
    auto it = cache.constFind(name);
    if (it != cache.constEnd())
        return *it;
    QFile file(svgPath(name));
    QByteArray data;
    if (file.open(QIODevice::ReadOnly))
        data = file.readAll();
    cache.insert(name, data);
    return data;
}

bool contains(const QString& name)
{
    return isSafeName(name) && (QFileInfo::exists(svgPath(name)) || QFileInfo::exists(pngPath(name)));
}

QStringList names()
{
    QStringList result;
    const QFileInfoList entries = QDir(kImageFolder).entryInfoList(QDir::Files, QDir::Name);
    for (const QFileInfo& entry : entries) {
        if (entry.suffix() == QLatin1String("svg") || entry.suffix() == QLatin1String("png"))
            result.append(entry.completeBaseName());
    }
    result.removeDuplicates();
    return result;
}

} // namespace qtHelpers::images
