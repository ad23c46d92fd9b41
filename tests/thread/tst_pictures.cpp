// Pictures in the thread and the composer. Inline images: pictures from files, resources and data at their
// natural or asked-for size, high-resolution variants, drawing off the main thread, tinted SVG renderings and
// their cache, and the fallbacks. Pictures and backgrounds that hostile content names: devices, pipes, kernel
// files and oversized files are never read and show the generic file icon; a small picture file or an
// embedded picture still shows; decoded sizes stay within the limits; no background comes from disk.
#include "HostTestMain.h"

#include "CComposerDocument.h"
#include "CMessageItemsDocument.h"
#include "CResourceGuard.h"
#include "MessageFormatProperties.h"
#include "QTextDocumentLayout.h"
#include "TextImageHandler.h"

#include <QAbstractTextDocumentLayout>
#include <QBuffer>
#include <QFile>
#include <QPainter>
#include <QTemporaryDir>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextEdit>
#include <QTextTable>
#include <QThread>
#include <sys/stat.h>

using namespace newsReader::MessageFormatProperties;

namespace {

const QByteArray kTintable = "<svg xmlns='http://www.w3.org/2000/svg' width='10' height='10'>"
                             "<rect width='10' height='10' fill='currentColor'/></svg>";
const QByteArray kFixed = "<svg xmlns='http://www.w3.org/2000/svg' width='10' height='10'>"
                          "<rect width='10' height='10' fill='#00ff00'/></svg>";

} // namespace

namespace {

const QSize kFileIcon(16, 16);
const QSize kPicture(40, 30);

QByteArray pictureBytes()
{
    QImage picture(kPicture, QImage::Format_RGB32);
    picture.fill(Qt::red);
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    picture.save(&buffer, "PNG");
    return png;
}

bool write(const QString& path, const QByteArray& data)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(data) == data.size();
}

CIncidentCommunication message(const QString& body)
{
    CIncidentCommunication m;
    m.id = QStringLiteral("m");
    m.fromOtherParty = true;
    m.text = body;
    m.time = QDateTime(QDate(2024, 1, 2), QTime(3, 4));
    return m;
}

// The document shows `body` the way the page does: as a message in the thread, or as a draft in the composer.
struct Shown
{
    CMessageItemsDocument thread;
    QTextEdit editor;
    QTextDocument* document = nullptr;

    Shown(bool inComposer, const QString& body, bool markdown)
    {
        if (inComposer) {
            editor.setDocument(new CComposerDocument(&editor));
            document = editor.document();
            if (markdown)
                document->setMarkdown(body);
            else
                document->setHtml(body);
        } else {
            thread.appendMessage(message(body));
            document = &thread;
        }
        document->setTextWidth(600);
    }

    // The size the document gives to the picture named `source`; invalid when there is none.
    QSizeF pictureSize(const QString& source) const
    {
        for (QTextBlock block = document->begin(); block.isValid(); block = block.next()) {
            for (auto it = block.begin(); !it.atEnd(); ++it) {
                const QTextFormat format = it.fragment().charFormat();
                if (format.isImageFormat() && format.toImageFormat().name() == source)
                    return document->documentLayout()
                        ->handlerForObject(QTextFormat::ImageObject)
                        ->intrinsicSize(document, it.fragment().position(), format);
            }
        }
        return {};
    }

    void paint() const
    {
        QImage target(600, 400, QImage::Format_ARGB32_Premultiplied);
        QPainter painter(&target);
        document->drawContents(&painter);
    }
};

} // namespace

class TestPictures : public QObject
{
    Q_OBJECT

private:
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

    QTemporaryDir m_dir;

    QString path(const char* name) const { return m_dir.filePath(QString::fromLatin1(name)); }

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

    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        const QByteArray png = pictureBytes();
        QVERIFY(write(path("small.png"), png));
        // A picture followed by 20 MB of padding still decodes when read whole: only the size limit refuses
        // it.
        QVERIFY(write(path("oversized.png"), png + QByteArray(20 * 1024 * 1024, '\0')));
        QVERIFY(write(path("passwd.png"), "root:x:0:0:root:/root:/bin/sh\n"));
        QCOMPARE(::mkfifo(QFile::encodeName(path("pipe.png")).constData(), 0600), 0);
        QVERIFY(QFile::link(QStringLiteral("/dev/zero"), path("zero.png")));
        QVERIFY(QFile::link(QStringLiteral("/proc/self/mem"), path("memory.png")));
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
            // A picture found only as "@2x" keeps its own size when it is measured later at 1x.
            const char* const names[] = {"file",      "width given", "height given",
                                         "2x screen", "data",        "2x screen, its own size"};
            const QString sources[] = {"pic.png", "pic.png", "pic.png", "hi.png", "png", "hi.png"};
            const QSizeF sizes[] = {{20, 10}, {10, 5}, {40, 20}, {10, 10}, {20, 10}, {20, 10}};
            const int widths[] = {0, 10, 0, 10, 0, 0}, heights[] = {0, 0, 20, 10, 0, 0};
            for (int i = 0; i < 6; ++i) {
                const bool high = sources[i] == QLatin1String("hi.png");
                row(qPrintable(QStringLiteral("%1%2").arg(names[i], off ? ", off the main thread" : "")),
                    sources[i], widths[i], heights[i], high ? 2.0 : 1.0, off, sizes[i],
                    high ? QColor(Qt::blue) : QColor(Qt::red));
            }
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

    void hostilePicturesShowTheFileIconAndNothingIsRead_data()
    {
        QTest::addColumn<bool>("inComposer");
        QTest::addColumn<QString>("source");
        QTest::addColumn<QSize>("shown");
        const auto svg = [](const QByteArray& width) -> QString {
            const QByteArray source = "<svg xmlns='http://www.w3.org/2000/svg' width='" + width +
                                      "' height='100000'><rect width='10' height='10'/></svg>";
            return "data:image/svg+xml;base64," + QString::fromLatin1(source.toBase64());
        };
        const QList<std::tuple<const char*, QString, QSize>> sources = {
            {"device", QStringLiteral("/dev/zero"), kFileIcon},
            {"process memory", QStringLiteral("/proc/self/mem"), kFileIcon},
            {"text file named as a picture", path("passwd.png"), kFileIcon},
            {"pipe named as a picture", path("pipe.png"), kFileIcon},
            {"link to a device", path("zero.png"), kFileIcon},
            {"oversized file", path("oversized.png"), kFileIcon},
            {"small picture file", path("small.png"), kPicture},
            {"embedded picture",
             QStringLiteral("data:image/png;base64,") + QString::fromLatin1(pictureBytes().toBase64()),
             kPicture},
            {"embedded picture of a huge size", svg("100000"),
             QSize(CResourceGuard::MaxImageSide, CResourceGuard::MaxImageSide)},
            {"embedded picture far too high", svg("100"), QSize(4, CResourceGuard::MaxImageSide)},
        };
        for (bool inComposer : {false, true}) {
            for (const auto& [name, source, shown] : sources) {
                QTest::addRow("%s: %s", inComposer ? "composer" : "thread", name)
                    << inComposer << source << shown;
            }
        }
    }
    void hostilePicturesShowTheFileIconAndNothingIsRead()
    {
        QFETCH(bool, inComposer);
        QFETCH(QString, source);
        QFETCH(QSize, shown);
        for (bool markdown : {false, true}) {
            const QString body = markdown ? QStringLiteral("![picture](%1)").arg(source)
                                          : QStringLiteral("<p>A <img src=\"%1\"> picture</p>").arg(source);
            const Shown page(inComposer, body, markdown);
            QCOMPARE(page.pictureSize(source).toSize(), shown);
            page.paint();
        }
    }

    // Backgrounds are looked up while the message is parsed: none is ever read from disk, whatever it is.
    void noBackgroundIsLoadedFromDisk_data()
    {
        QTest::addColumn<QString>("body");
        const QString picture = path("small.png");
        QTest::newRow("table background")
            << QStringLiteral("<table background=\"%1\"><tr><td>cell</td></tr></table><p>text</p>")
                   .arg(picture);
        QTest::newRow("style background")
            << QStringLiteral("<p style=\"background-image: url(%1)\">text</p>").arg(picture);
        QTest::newRow("device background")
            << QStringLiteral("<table background=\"/dev/zero\"><tr><td>cell</td></tr></table><p>text</p>");
    }
    void noBackgroundIsLoadedFromDisk()
    {
        QFETCH(QString, body);
        const Shown page(false, body, false);
        page.paint();
        const QList<QTextFormat> formats = page.document->allFormats();
        for (const QTextFormat& format : formats)
            QVERIFY(format.background().style() != Qt::TexturePattern);
        QVERIFY(page.document->toPlainText().contains(QStringLiteral("text")));
    }
};

HOST_TEST_MAIN(TestPictures)
#include "tst_pictures.moc"
