// Pictures and backgrounds that hostile content names, in the thread and in the composer: devices, pipes,
// kernel files and oversized files are never read and show the generic file icon; a small picture file or an
// embedded picture still shows; decoded sizes stay within the limits; no background comes from disk.
#include "HostTestMain.h"

#include "CComposerDocument.h"
#include "CMessageItemsDocument.h"
#include "CResourceGuard.h"

#include <QAbstractTextDocumentLayout>
#include <QBuffer>
#include <QFile>
#include <QPainter>
#include <QTemporaryDir>
#include <QTextBlock>
#include <QTextEdit>
#include <QTextTable>

#include <sys/stat.h>

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

class TestResourceGuard : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;

    QString path(const char* name) const { return m_dir.filePath(QString::fromLatin1(name)); }

private slots:
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

HOST_TEST_MAIN(TestResourceGuard)
#include "tst_resourceguard.moc"
