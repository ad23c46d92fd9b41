#pragma once
// Draws every image of the thread document in place of the toolkit's own image handler, behaving as that
// handler does (resources, files, high-resolution variants, sizing) and adding SVG images tinted with a
// colour taken from the image format. Files and data are read and decoded only within CResourceGuard's
// limits: the names come from message content. A tinted SVG is rendered once per colour and kept as an image
// resource of the document under "<name>_<#rrggbb>"; the SVG data itself is never replaced.
// Owned by the document layout, which registers it for QTextFormat::ImageObject.

#include <QObject>
#include <QTextObjectInterface>

#include <memory>

class QSvgRenderer;
class QTextImageFormat;

class TextImageHandler : public QObject, public QTextObjectInterface
{
    Q_OBJECT
    Q_INTERFACES(QTextObjectInterface)

public:
    explicit TextImageHandler(QObject* parent);
    ~TextImageHandler() override;

    QSizeF intrinsicSize(QTextDocument* doc, int posInDocument, const QTextFormat& format) override;
    void drawObject(QPainter* painter, const QRectF& rect, QTextDocument* doc, int posInDocument,
                    const QTextFormat& format) override;

    // The toolkit's generic file icon, shown for anything that cannot be loaded.
    static QString fallbackImageName();

private:
    struct Description;

    Description describe(QTextDocument* doc, const QTextImageFormat& format, qreal devicePixelRatio) const;
    QPixmap pixmap(QTextDocument* doc, const QTextImageFormat& format, qreal devicePixelRatio);
    QImage image(QTextDocument* doc, const QTextImageFormat& format, qreal devicePixelRatio);
    QImage renderTinted(const Description& description, const QByteArray& svg);
    QSize pixmapSize(QTextDocument* doc, const QTextImageFormat& format);
    QSize imageSize(QTextDocument* doc, const QTextImageFormat& format);

    std::unique_ptr<QSvgRenderer> m_renderer;
};
