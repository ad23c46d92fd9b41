#include "TextImageHandler.h"

#include "CResourceGuard.h"
#include "MessageFormatProperties.h"

#include <QCoreApplication>
#include <QIcon>
#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>
#include <QTextDocument>
#include <QTextFormat>
#include <QThread>
#include <QUrl>

extern Q_GUI_EXPORT int qt_defaultDpi();

namespace {

const QLatin1String kResourcePrefix(":/");
const QLatin1String kResourceScheme("qrc");
const QLatin1String kFileScheme("file");
const QByteArray kCurrentColor("currentColor");

bool onMainThread()
{
    return QCoreApplication::instance() && QCoreApplication::instance()->thread() == QThread::currentThread();
}

} // namespace

struct TextImageHandler::Description
{
    QString name;
    QUrl url;
    QString fileName;
    QVariant resource;
    qreal sourceDevicePixelRatio = 1.0;
    bool tint = false;
    QColor tintColor;
    bool hasWidth = false;
    int width = 0;
    bool hasHeight = false;
    int height = 0;
    QUrl tintedUrl;
};

TextImageHandler::TextImageHandler(QObject* parent)
    : QObject(parent)
    , m_renderer(std::make_unique<QSvgRenderer>())
{}

TextImageHandler::~TextImageHandler() = default;

QString TextImageHandler::fallbackImageName()
{
    return QStringLiteral(":/qt-project.org/styles/commonstyle/images/file-16.png");
}

TextImageHandler::Description TextImageHandler::describe(QTextDocument* doc, const QTextImageFormat& format,
                                                         qreal devicePixelRatio) const
{
    Description d;
    d.name = format.name();
    if (d.name.startsWith(kResourcePrefix))
        d.name.prepend(kResourceScheme);
    d.url = QUrl(d.name);

    d.fileName = d.name;
    if (d.url.isValid()) {
        if (d.url.scheme() == kResourceScheme)
            d.fileName = d.name.mid(kResourceScheme.size());
        else if (d.url.scheme() == kFileScheme)
            d.fileName = d.url.toLocalFile();
    }
    if (devicePixelRatio > 1.0)
        d.fileName = qt_findAtNxFile(d.fileName, devicePixelRatio, &d.sourceDevicePixelRatio);

    using namespace newsReader::MessageFormatProperties;
    d.tint = format.boolProperty(Tint);
    d.tintColor = format.colorProperty(TintColor);
    d.hasWidth = format.hasProperty(QTextFormat::ImageWidth);
    d.width = qRound(format.width());
    d.hasHeight = format.hasProperty(QTextFormat::ImageHeight);
    d.height = qRound(format.height());
    if (d.tint)
        d.tintedUrl = QUrl(QStringLiteral("%1_%2").arg(d.name, d.tintColor.name()));

    if (d.tint && d.tintedUrl.isValid())
        d.resource = doc->resource(QTextDocument::ImageResource, d.tintedUrl);
    if (d.resource.isNull())
        d.resource = doc->resource(QTextDocument::ImageResource, d.url);
    return d;
}

QImage TextImageHandler::renderTinted(const Description& d, const QByteArray& svg)
{
    if (!d.hasWidth || !d.hasHeight || d.width <= 0 || d.height <= 0)
        return {};
    QByteArray tinted = svg;
    tinted.replace(kCurrentColor, d.tintColor.name().toLatin1());
    if (!m_renderer->load(tinted))
        return {};
    // The size comes from the format, which content can set: the rendering never grows beyond the picture
    // limit, and the painter scales it up to whatever size is asked.
    QSize size(d.width, d.height);
    if (size.width() > CResourceGuard::MaxImageSide || size.height() > CResourceGuard::MaxImageSide)
        size.scale(CResourceGuard::MaxImageSide, CResourceGuard::MaxImageSide, Qt::KeepAspectRatio);
    QImage rendered(size, QImage::Format_ARGB32_Premultiplied);
    rendered.fill(Qt::transparent);
    QPainter painter(&rendered);
    m_renderer->render(&painter);
    return rendered;
}

QPixmap TextImageHandler::pixmap(QTextDocument* doc, const QTextImageFormat& format, qreal devicePixelRatio)
{
    const Description d = describe(doc, format, devicePixelRatio);
    QPixmap result;
    if (d.resource.userType() != QMetaType::QByteArray) {
        result = qvariant_cast<QPixmap>(d.resource);
    } else if (!d.tint) {
        result = QPixmap::fromImage(CResourceGuard::decodeImage(d.resource.toByteArray()));
    } else {
        const QImage rendered = renderTinted(d, d.resource.toByteArray());
        if (!rendered.isNull()) {
            result = QPixmap::fromImage(rendered);
            doc->addResource(QTextDocument::ImageResource, d.tintedUrl, result);
        }
    }

    if (result.isNull()) {
        const QImage loaded = CResourceGuard::readImage(d.fileName);
        if (loaded.isNull())
            return QPixmap(fallbackImageName());
        result = QPixmap::fromImage(loaded);
        // Kept with its pixel ratio: a picture found only as "@2x" is measured at its own size later too.
        result.setDevicePixelRatio(d.sourceDevicePixelRatio);
        doc->addResource(QTextDocument::ImageResource, d.url, result);
    }
    if (d.sourceDevicePixelRatio != 1.0)
        result.setDevicePixelRatio(d.sourceDevicePixelRatio);
    return result;
}

QImage TextImageHandler::image(QTextDocument* doc, const QTextImageFormat& format, qreal devicePixelRatio)
{
    const Description d = describe(doc, format, devicePixelRatio);
    QImage result;
    if (d.resource.userType() != QMetaType::QByteArray) {
        result = qvariant_cast<QImage>(d.resource);
    } else if (!d.tint) {
        result = CResourceGuard::decodeImage(d.resource.toByteArray());
    } else {
        result = renderTinted(d, d.resource.toByteArray());
        if (!result.isNull())
            doc->addResource(QTextDocument::ImageResource, d.tintedUrl, result);
    }

    if (result.isNull()) {
        result = CResourceGuard::readImage(d.fileName);
        if (result.isNull())
            return QImage(fallbackImageName());
        result.setDevicePixelRatio(d.sourceDevicePixelRatio);
        doc->addResource(QTextDocument::ImageResource, d.url, result);
    }
    if (d.sourceDevicePixelRatio != 1.0)
        result.setDevicePixelRatio(d.sourceDevicePixelRatio);
    return result;
}

QSize TextImageHandler::pixmapSize(QTextDocument* doc, const QTextImageFormat& format)
{
    const bool hasWidth = format.hasProperty(QTextFormat::ImageWidth);
    const int width = qRound(format.width());
    const bool hasHeight = format.hasProperty(QTextFormat::ImageHeight);
    const int height = qRound(format.height());

    QPixmap pm;
    QSize size(width, height);
    if (!hasWidth || !hasHeight) {
        pm = pixmap(doc, format, 1.0);
        const int pmWidth = pm.width() / pm.devicePixelRatio();
        const int pmHeight = pm.height() / pm.devicePixelRatio();
        if (!hasWidth)
            size.setWidth(hasHeight ? qRound(height * (pmWidth / qreal(pmHeight))) : pmWidth);
        if (!hasHeight)
            size.setHeight(hasWidth ? qRound(width * (pmHeight / qreal(pmWidth))) : pmHeight);
    }

    qreal scale = 1.0;
    if (QPaintDevice* device = doc->documentLayout()->paintDevice()) {
        if (pm.isNull())
            pm = pixmap(doc, format, 1.0);
        if (!pm.isNull())
            scale = qreal(device->logicalDpiY()) / qreal(qt_defaultDpi());
    }
    return size * scale;
}

QSize TextImageHandler::imageSize(QTextDocument* doc, const QTextImageFormat& format)
{
    const bool hasWidth = format.hasProperty(QTextFormat::ImageWidth);
    const int width = qRound(format.width());
    const bool hasHeight = format.hasProperty(QTextFormat::ImageHeight);
    const int height = qRound(format.height());

    QImage img;
    QSize size(width, height);
    if (!hasWidth || !hasHeight) {
        img = image(doc, format, 1.0);
        const int imgWidth = img.width() / img.devicePixelRatio();
        const int imgHeight = img.height() / img.devicePixelRatio();
        if (!hasWidth)
            size.setWidth(hasHeight ? qRound(height * (imgWidth / qreal(imgHeight))) : imgWidth);
        if (!hasHeight)
            size.setHeight(hasWidth ? qRound(width * (imgHeight / qreal(imgWidth))) : imgHeight);
    }

    qreal scale = 1.0;
    if (QPaintDevice* device = doc->documentLayout()->paintDevice()) {
        if (img.isNull())
            img = image(doc, format, 1.0);
        if (!img.isNull())
            scale = qreal(device->logicalDpiY()) / qreal(qt_defaultDpi());
    }
    return size * scale;
}

QSizeF TextImageHandler::intrinsicSize(QTextDocument* doc, int, const QTextFormat& format)
{
    const QTextImageFormat imageFormat = format.toImageFormat();
    if (!onMainThread())
        return imageSize(doc, imageFormat);
    return pixmapSize(doc, imageFormat);
}

void TextImageHandler::drawObject(QPainter* painter, const QRectF& rect, QTextDocument* doc, int,
                                  const QTextFormat& format)
{
    const QTextImageFormat imageFormat = format.toImageFormat();
    const qreal devicePixelRatio = painter->device() ? painter->device()->devicePixelRatioF() : 1.0;
    if (!onMainThread()) {
        const QImage img = image(doc, imageFormat, devicePixelRatio);
        painter->drawImage(rect, img, img.rect());
    } else {
        const QPixmap pm = pixmap(doc, imageFormat, devicePixelRatio);
        painter->drawPixmap(rect, pm, pm.rect());
    }
}
