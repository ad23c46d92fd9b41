// Thumbnails of downloaded files: which types get one, their size and content.

#include "CBrowserItemMetaData.h"
#include "CFilePreviewManager.h"
#include "HostTestMain.h"

#include <QFile>
#include <QImage>
#include <QPainter>
#include <QPdfWriter>
#include <QTemporaryDir>

namespace {

constexpr unsigned thumbnailSize = 200;
const QSize pictureSize(640, 320);
const QColor pictureColor(200, 40, 40);
constexpr int lossyTolerance = 30;

bool sameColour(const QColor& a, const QColor& b, int tolerance)
{
    return qAbs(a.red() - b.red()) <= tolerance && qAbs(a.green() - b.green()) <= tolerance &&
           qAbs(a.blue() - b.blue()) <= tolerance;
}

// Qt reads GIF but cannot write it: a one-colour GIF written by hand. The LZW stream sends a clear code
// before every pixel, so every code stays 3 bits wide and no dictionary is needed.
QByteArray oneColourGif(const QSize& size, const QColor& color)
{
    constexpr int minimumCodeSize = 2;
    constexpr quint32 clearCode = 4;
    constexpr quint32 endCode = 5;
    constexpr int codeBits = 3;
    constexpr int maxSubBlock = 255;

    QByteArray gif("GIF89a");
    const auto add16 = [&gif](int value) {
        gif.append(char(value & 0xff));
        gif.append(char((value >> 8) & 0xff));
    };
    add16(size.width());
    add16(size.height());
    gif.append("\x80\0\0", 3); // global colour table of two entries
    gif.append(char(color.red())).append(char(color.green())).append(char(color.blue()));
    gif.append("\0\0\0\x2c", 4);
    add16(0);
    add16(0);
    add16(size.width());
    add16(size.height());
    gif.append(char(0)).append(char(minimumCodeSize));

    QByteArray stream;
    quint32 bits = 0;
    int bitCount = 0;
    const auto put = [&](quint32 code) {
        bits |= code << bitCount;
        bitCount += codeBits;
        while (bitCount >= 8) {
            stream.append(char(bits & 0xff));
            bits >>= 8;
            bitCount -= 8;
        }
    };
    for (int pixel = 0; pixel < size.width() * size.height(); ++pixel) {
        put(clearCode);
        put(0);
    }
    put(endCode);
    if (bitCount > 0)
        stream.append(char(bits & 0xff));

    for (int offset = 0; offset < stream.size(); offset += maxSubBlock) {
        const QByteArray block = stream.mid(offset, maxSubBlock);
        gif.append(char(block.size())).append(block);
    }
    gif.append("\0\x3b", 2);
    return gif;
}

} // namespace

class TestCFilePreviewManager : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_folder;

    QString writeRaster(const QString& name, const char* format, const QSize& size = pictureSize)
    {
        QImage image(size, QImage::Format_RGB32);
        image.fill(pictureColor);
        const QString path = m_folder.filePath(name);
        return image.save(path, format) ? path : QString();
    }

    QString writeFile(const QString& name, const QByteArray& content)
    {
        const QString path = m_folder.filePath(name);
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
            return QString();
        return path;
    }

    QString writePdf()
    {
        const QString path = m_folder.filePath(QStringLiteral("document.pdf"));
        QPdfWriter writer(path);
        writer.setPageSize(QPageSize(QPageSize::A4));
        QPainter painter(&writer);
        const QRect page = painter.viewport();
        painter.fillRect(
            page.adjusted(page.width() / 4, page.height() / 4, -page.width() / 4, -page.height() / 4),
            pictureColor);
        painter.end();
        return path;
    }

private slots:
    void initTestCase() { QVERIFY(m_folder.isValid()); }

    void previewableTypesGetAThumbnail_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QSize>("expectedSize");
        QTest::addColumn<int>("tolerance");
        QTest::newRow("png") << "png" << QSize(200, 100) << 0;
        QTest::newRow("jpeg") << "jpeg" << QSize(200, 100) << lossyTolerance;
        QTest::newRow("bmp") << "bmp" << QSize(200, 100) << 0;
        QTest::newRow("gif") << "gif" << QSize(200, 100) << 0;
        QTest::newRow("webp") << "webp" << QSize(200, 100) << lossyTolerance;
        QTest::newRow("svg, scaled up") << "svg" << QSize(200, 100) << 2;
        // A4 is 595 x 842 points: the page's long side becomes 200.
        QTest::newRow("pdf") << "pdf" << QSize(141, 200) << 2;
    }
    void previewableTypesGetAThumbnail()
    {
        QFETCH(QString, kind);
        QFETCH(QSize, expectedSize);
        QFETCH(int, tolerance);

        QString path;
        if (kind == QLatin1String("svg"))
            path = writeFile(QStringLiteral("drawing.svg"),
                             "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"40\" height=\"20\">"
                             "<rect width=\"40\" height=\"20\" fill=\"#c82828\"/></svg>");
        else if (kind == QLatin1String("pdf"))
            path = writePdf();
        else if (kind == QLatin1String("gif"))
            path = writeFile(QStringLiteral("picture.gif"), oneColourGif(pictureSize, pictureColor));
        else
            path = writeRaster(QStringLiteral("picture.") + kind, qPrintable(kind));
        QVERIFY2(!path.isEmpty(), "could not write the sample file");

        CFilePreviewManager manager;
        const VantrelBrowser::CBrowserItemMetaData item(path);
        const std::shared_ptr<CFilePreviewHandler> handler = manager.getPreviewHandlerForPath(item);
        QVERIFY2(handler, qPrintable(item.mimeType()));

        const QPixmap thumbnail = handler->getThumbnail(thumbnailSize, item);
        QVERIFY(!thumbnail.isNull());
        QVERIFY(qAbs(thumbnail.width() - expectedSize.width()) <= 1);
        QVERIFY(qAbs(thumbnail.height() - expectedSize.height()) <= 1);

        const QImage image = thumbnail.toImage();
        const QColor centre = image.pixelColor(image.width() / 2, image.height() / 2);
        QVERIFY2(sameColour(centre, pictureColor, tolerance), qPrintable(centre.name()));
        if (kind == QLatin1String("pdf")) // the margin of the page is white paper
            QVERIFY(sameColour(image.pixelColor(2, 2), Qt::white, 2));
    }

    void smallPicturesAreNotEnlargedAndTypeIsJudgedByContent()
    {
        // A PNG saved under a misleading name is still an image.
        const QString source = writeRaster(QStringLiteral("small.png"), "png", QSize(50, 30));
        const QString path = m_folder.filePath(QStringLiteral("photo.dat"));
        QVERIFY(QFile::copy(source, path));
        const VantrelBrowser::CBrowserItemMetaData item(path);
        QCOMPARE(item.mimeType(), QStringLiteral("image/png"));
        QCOMPARE(item.size(), QFileInfo(source).size());
        CFilePreviewManager manager;
        const auto handler = manager.getPreviewHandlerForPath(item);
        QVERIFY(handler);
        QCOMPARE(handler->getThumbnail(thumbnailSize, item).size(), QSize(50, 30));
    }

    void otherFilesHaveNoThumbnail_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<bool>("hasHandler");
        QTest::newRow("zip") << "archive.zip" << QByteArray("PK\x03\x04\x14\x00\x00\x00\x08\x00", 10)
                             << false;
        QTest::newRow("text") << "notes.txt" << QByteArray("just some words\n") << false;
        QTest::newRow("missing file") << "never-written.png" << QByteArray() << false;
        QTest::newRow("broken image") << "broken.png" << QByteArray("\x89PNG\r\n\x1a\n garbage", 16) << true;
    }
    void otherFilesHaveNoThumbnail()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, content);
        QFETCH(bool, hasHandler);
        const QString path = content.isEmpty() ? m_folder.filePath(name) : writeFile(name, content);
        const VantrelBrowser::CBrowserItemMetaData item(path);
        QCOMPARE(item.exists(), !content.isEmpty());
        CFilePreviewManager manager;
        const auto handler = manager.getPreviewHandlerForPath(item);
        QCOMPARE(bool(handler), hasHandler);
        if (handler)
            QVERIFY(handler->getThumbnail(thumbnailSize, item).isNull());
    }
};

HOST_TEST_MAIN(TestCFilePreviewManager)
#include "tst_cfilepreviewmanager.moc"
