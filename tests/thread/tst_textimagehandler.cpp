// Inline images of the thread document: tinted SVG renderings and their cache, and the fallbacks.
#include "HostTestMain.h"

#include "MessageFormatProperties.h"
#include "QTextDocumentLayout.h"
#include "TextImageHandler.h"

#include <QPainter>
#include <QTextDocument>

using namespace newsReader::MessageFormatProperties;

namespace {

const QByteArray kTintable = "<svg xmlns='http://www.w3.org/2000/svg' width='10' height='10'>"
                             "<rect width='10' height='10' fill='currentColor'/></svg>";
const QByteArray kFixed = "<svg xmlns='http://www.w3.org/2000/svg' width='10' height='10'>"
                          "<rect width='10' height='10' fill='#00ff00'/></svg>";

} // namespace

class TestTextImageHandler : public QObject
{
    Q_OBJECT

    QTextDocument m_doc;
    TextImageHandler* m_handler = nullptr;

    static QTextImageFormat tinted(const QString& name, const QColor& colour, bool withHeight = true)
    {
        QTextImageFormat format;
        format.setName(name);
        format.setWidth(10);
        if (withHeight)
            format.setHeight(10);
        format.setProperty(Tint, true);
        format.setProperty(TintColor, colour);
        return format;
    }

    QImage draw(const QTextImageFormat& format)
    {
        QImage target(10, 10, QImage::Format_ARGB32_Premultiplied);
        target.fill(Qt::transparent);
        QPainter painter(&target);
        m_handler->drawObject(&painter, QRectF(0, 0, 10, 10), &m_doc, 0, format);
        return target;
    }

    QVariant resourceOf(const QString& name) const
    {
        return m_doc.resource(QTextDocument::ImageResource, QUrl(name));
    }

private slots:
    void init()
    {
        m_doc.clear();
        auto* layout = new newsReader::QTextDocumentLayout(&m_doc);
        m_doc.setDocumentLayout(layout);
        m_handler = layout->imageHandler();
        m_doc.addResource(QTextDocument::ImageResource, QUrl("shape"), kTintable);
        m_doc.addResource(QTextDocument::ImageResource, QUrl("fixed"), kFixed);
        m_doc.addResource(QTextDocument::ImageResource, QUrl("broken"), QByteArray("<svg <<< not xml"));
    }

    void rendersOncePerColourAndKeepsTheSvg()
    {
        QCOMPARE(draw(tinted("shape", QColor("#3a7bd5"))).pixelColor(5, 5), QColor("#3a7bd5"));
        const QVariant first = resourceOf("shape_#3a7bd5");
        QCOMPARE(first.userType(), QMetaType::QPixmap);

        draw(tinted("shape", QColor("#3a7bd5")));
        QCOMPARE(resourceOf("shape_#3a7bd5").value<QPixmap>().cacheKey(), first.value<QPixmap>().cacheKey());

        QCOMPARE(draw(tinted("shape", QColor("#c0392b"))).pixelColor(5, 5), QColor("#c0392b"));
        QVERIFY(!resourceOf("shape_#c0392b").isNull());
        QCOMPARE(resourceOf("shape").userType(), QMetaType::QByteArray);
        QCOMPARE(resourceOf("shape").toByteArray(), kTintable);
    }

    void unusableImagesShowTheGenericFileIcon_data()
    {
        QTest::addColumn<QTextImageFormat>("format");
        QTest::newRow("tinted with only a width") << tinted("shape", Qt::red, false);
        QTest::newRow("svg that does not parse") << tinted("broken", Qt::red);
        QTextImageFormat unknown;
        unknown.setName("neither-a-resource-nor-a-file");
        QTest::newRow("unknown name") << unknown;
    }
    void unusableImagesShowTheGenericFileIcon()
    {
        QFETCH(QTextImageFormat, format);
        const QImage expectedIcon(TextImageHandler::fallbackImageName());
        QImage expected(10, 10, QImage::Format_ARGB32_Premultiplied);
        expected.fill(Qt::transparent);
        {
            QPainter painter(&expected);
            painter.drawPixmap(QRectF(0, 0, 10, 10), QPixmap::fromImage(expectedIcon),
                               QRectF(expectedIcon.rect()));
        }
        QCOMPARE(draw(format), expected);
        if (!format.hasProperty(QTextFormat::ImageHeight) && !format.hasProperty(QTextFormat::ImageWidth))
            QCOMPARE(m_handler->intrinsicSize(&m_doc, 0, format), QSizeF(expectedIcon.size()));
    }
};

HOST_TEST_MAIN(TestTextImageHandler)
#include "tst_textimagehandler.moc"
