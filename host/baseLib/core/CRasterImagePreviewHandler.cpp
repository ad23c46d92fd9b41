#include "CRasterImagePreviewHandler.h"

#include <QImageReader>

CRasterImagePreviewHandler::CRasterImagePreviewHandler()
{
    // Only the formats that an image plugin of this installation can actually decode.
    const QList<QByteArray> decodable = QImageReader::supportedMimeTypes();
    for (const char* type : {"image/png", "image/jpeg", "image/bmp", "image/gif", "image/webp"}) {
        if (decodable.contains(QByteArray(type)))
            m_mimeTypes << QString::fromLatin1(type);
    }
}

QStringList CRasterImagePreviewHandler::mimeTypes() const
{
    return m_mimeTypes;
}

QPixmap CRasterImagePreviewHandler::getThumbnail(unsigned size,
                                                 const VantrelBrowser::CBrowserItemMetaData& item)
{
    if (size == 0)
        return QPixmap();
    const QSize bounds{int(size), int(size)};

    QImageReader reader(item.path());
    reader.setAutoTransform(true);
    const QSize original = reader.size();
    const bool canScaleWhileReading =
        original.isValid() && reader.supportsOption(QImageIOHandler::ScaledSize);
    if (canScaleWhileReading && (original.width() > bounds.width() || original.height() > bounds.height()))
        reader.setScaledSize(original.scaled(bounds, Qt::KeepAspectRatio));

    QImage image = reader.read();
    if (image.isNull())
        return QPixmap();
    if (image.width() > bounds.width() || image.height() > bounds.height())
        image = image.scaled(bounds, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    return QPixmap::fromImage(image);
}
