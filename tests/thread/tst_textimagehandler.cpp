// Inline images of the thread document: pictures from files, resources and data at their natural or
// asked-for size, high-resolution variants, drawing off the main thread, tinted SVG renderings and their
// cache, and the fallbacks.
#include "HostTestMain.h"

#include "CResourceGuard.h"
#include "MessageFormatProperties.h"
#include "QTextDocumentLayout.h"
#include "TextImageHandler.h"

#include <QPainter>
#include <QTemporaryDir>
#include <QTextDocument>
#include <QThread>

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

    QImage draw(const QTextImageFormat& format, qreal devicePixelRatio = 1.0)
    {
        QImage target(QSize(10, 10) * devicePixelRatio, QImage::Format_ARGB32_Premultiplied);
        target.setDevicePixelRatio(devicePixelRatio);
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

    void picturesTakeTheirSizeFromTheFormatOrThemselves_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("width"); // 0: not given
        QTest::addColumn<int>("height");
        QTest::addColumn<qreal>("devicePixelRatio");
        QTest::addColumn<bool>("offThread");
        QTest::addColumn<QSizeF>("size");
        QTest::addColumn<QColor>("drawn");
        // pic.png is 20 x 10 and red; hi.png exists only as its high-resolution variant hi@2x.png, 40 x 20
        // and blue; "png" is pic.png's data. Off the main thread the handler works without pixmaps.
        const auto row = [](const char* name, const QString& source, int width, int height, qreal ratio,
                            bool offThread, QSizeF size, QColor drawn) {
            QTest::newRow(name) << source << width << height << ratio << offThread << size << drawn;
        };
        for (bool off : {false, true}) {
            const char* const names[] = {"file", "width given", "height given", "2x screen", "data"};
            const QString sources[] = {"pic.png", "pic.png", "pic.png", "hi.png", "png"};
            const QSizeF sizes[] = {{20, 10}, {10, 5}, {40, 20}, {10, 10}, {20, 10}};
            const int widths[] = {0, 10, 0, 10, 0}, heights[] = {0, 0, 20, 10, 0};
            for (int i = 0; i < 5; ++i)
                row(qPrintable(QStringLiteral("%1%2").arg(names[i], off ? ", off the main thread" : "")),
                    sources[i], widths[i], heights[i], i == 3 ? 2.0 : 1.0, off, sizes[i],
                    i == 3 ? QColor(Qt::blue) : QColor(Qt::red));
        }
        row("resource file", TextImageHandler::fallbackImageName(), 0, 0, 1.0, false, {16, 16}, {});
        row("missing file off the main thread", "nothing.png", 10, 10, 1.0, true, {10, 10}, {});
    }

    void picturesTakeTheirSizeFromTheFormatOrThemselves()
    {
        QFETCH(QString, name);
        QFETCH(int, width);
        QFETCH(int, height);
        QFETCH(qreal, devicePixelRatio);
        QFETCH(bool, offThread);
        QFETCH(QSizeF, size);
        QFETCH(QColor, drawn);
        QTemporaryDir dir;
        QImage picture(20, 10, QImage::Format_RGB32);
        picture.fill(Qt::red);
        QVERIFY(picture.save(dir.filePath("pic.png")));
        picture = QImage(40, 20, QImage::Format_RGB32);
        picture.fill(Qt::blue);
        QVERIFY(picture.save(dir.filePath("hi@2x.png")));
        QFile png(dir.filePath("pic.png"));
        QVERIFY(png.open(QIODevice::ReadOnly));
        m_doc.addResource(QTextDocument::ImageResource, QUrl("png"), png.readAll());
        QTextImageFormat format;
        format.setName(name.endsWith(".png") ? QUrl::fromLocalFile(dir.filePath(name)).toString() : name);
        if (width)
            format.setWidth(width);
        if (height)
            format.setHeight(height);
        QSizeF measured;
        QImage image;
        const auto run = [&] {
            image = draw(format, devicePixelRatio);
            measured = m_handler->intrinsicSize(&m_doc, 0, format);
        };
        if (offThread) {
            std::unique_ptr<QThread> thread(QThread::create(run));
            thread->start();
            QVERIFY(thread->wait(10000));
        } else {
            run();
        }
        QCOMPARE(measured, size);
        if (drawn.isValid())
            QCOMPARE(image.pixelColor(image.width() / 2, image.height() / 2), drawn);
    }

    void tintedOffTheMainThreadAndFarTooLarge()
    {
        QImage image;
        std::unique_ptr<QThread> thread(
            QThread::create([&] { image = draw(tinted("shape", QColor("#3a7bd5"))); }));
        thread->start();
        QVERIFY(thread->wait(10000));
        QCOMPARE(image.pixelColor(5, 5), QColor("#3a7bd5"));
        QVERIFY(!resourceOf("shape_#3a7bd5").isNull());
        // However large the format asks for, the rendering stays within the picture limit.
        QTextImageFormat huge = tinted("shape", Qt::green);
        huge.setWidth(100000);
        huge.setHeight(50000);
        QCOMPARE(draw(huge).pixelColor(5, 5), QColor(Qt::green));
        QVERIFY(resourceOf("shape_#00ff00").value<QPixmap>().width() <= CResourceGuard::MaxImageSide);
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
