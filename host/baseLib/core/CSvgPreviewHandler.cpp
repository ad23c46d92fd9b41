#include "CSvgPreviewHandler.h"

#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

QStringList CSvgPreviewHandler::mimeTypes() const
{
    return {QStringLiteral("image/svg+xml"), QStringLiteral("image/svg+xml-compressed")};
}

QPixmap CSvgPreviewHandler::getThumbnail(unsigned size, const VantrelBrowser::CBrowserItemMetaData& item)
{
    QSvgRenderer renderer(item.path());
    if (!renderer.isValid() || size == 0)
        return QPixmap();

    QSizeF natural = renderer.viewBoxF().size();
    if (natural.isEmpty())
        natural = renderer.defaultSize();
    if (natural.isEmpty())
        return QPixmap();
    const QSize target =
        natural.scaled(QSizeF(size, size), Qt::KeepAspectRatio).toSize().expandedTo(QSize(1, 1));

    QImage image(target, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing, true);
    renderer.render(&painter, QRectF(QPointF(0, 0), QSizeF(target)));
    painter.end();
    return QPixmap::fromImage(image);
}
