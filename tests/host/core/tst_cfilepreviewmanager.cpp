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
};

HOST_TEST_MAIN(TestCFilePreviewManager)
#include "tst_cfilepreviewmanager.moc"
