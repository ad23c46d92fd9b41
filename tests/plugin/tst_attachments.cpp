// Attachments of the shown thread, end to end through the simulated server and the host's scripted dialogs
// and recorded launches: the tile's menu, opening (downloaded once, then from the cache), saving elsewhere,
// failures, thumbnails, adding files to the composer, and names from the server that must not steer a path.
#include "HostTestMain.h"

#include "AttachmentLinks.h"
#include "CAttachmentOpener.h"
#include "CAttachmentsModel.h"
#include "CFilePreviewManager.h"
#include "CMessageBody.h"
#include "ConversationScreen.h"
#include "HostFiles.h"

#include <QAbstractTextDocumentLayout>
#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QDirIterator>
#include <QDropEvent>
#include <QJsonObject>
#include <QListView>
#include <QMenu>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTextBlock>

namespace {

const QString kPrinter = QStringLiteral("conv-printer");

QString cacheRoot()
{
    return QDir::cleanPath(GetAbsDirName(int(FolderDownloads), QString(), false));
}

int downloadsOf(const QString& attachmentId)
{
    const auto log = HostControl::requestLog();
    return int(std::count_if(log.cbegin(), log.cend(), [&](const HostControl::Request& request) {
        return request.verb == "GET" && request.path.endsWith(QStringLiteral("/attachments/") + attachmentId);
    }));
}

QStringList launched()
{
    QStringList paths;
    for (const HostControl::Event& event : HostControl::events(QStringLiteral("launchFile")))
        paths << event.details.value(QStringLiteral("path")).toString();
    return paths;
}

// The block whose picture is the image resource `name`.
QTextBlock blockShowing(const CMessageItemsDocument* document, const QString& name)
{
    for (QTextBlock block = document->begin(); block.isValid(); block = block.next()) {
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            const QTextCharFormat format = it.fragment().charFormat();
            if (format.isImageFormat() && format.toImageFormat().name() == name)
                return block;
        }
    }
    return {};
}

bool documentHasImage(const CMessageItemsDocument* document, const QString& name)
{
    return document->resource(QTextDocument::ImageResource, QUrl(name)).isValid();
}

} // namespace

class TestAttachments : public QObject
{
    Q_OBJECT

    // Clicks the attachment's link and picks the menu entry `entry` (0 "Open", 1 "Save as...").
    static bool choose(const ConversationScreen& screen, const QString& id, const QString& name, int entry)
    {
        CIncidentAttachment attachment;
        attachment.id = id;
        attachment.fileName = name;
        qDeleteAll(screen.thread()->findChildren<QMenu*>(QStringLiteral("attachmentMenu")));
        // The tile must be in view: a click on a tile scrolled away shows no menu.
        const QRectF tile = screen.document()->attachmentRect(id);
        if (tile.isValid())
            screen.thread()->verticalScrollBar()->setValue(int(tile.top()) - 20);
        emit screen.thread()->anchorClicked(QUrl(newsReader::attachLink(attachment)));
        auto* menu = screen.thread()->findChild<QMenu*>(QStringLiteral("attachmentMenu"));
        if (!menu || menu->actions().size() != 2)
            return false;
        menu->actions().at(entry)->trigger();
        menu->close();
        return true;
    }

private slots:
    void init()
    {
        HostControl::resetForTests();
        HostControl::setCanUseWebEngine(false);
        HostControl::setShowBalloons(false);
        HostControl::loadDefaultScenario();
        QDir(cacheRoot()).removeRecursively();
        HostControl::clearEvents();
    }

    void openDownloadsOnceWithAProgressRingAndLaunchesTheCachedFileAfterwards()
    {
        ConversationScreen screen;
        QVERIFY(screen.open(kPrinter));
        HostControl::clearRequestLog();
        HostControl::setHoldRequests(true);
        QVERIFY(choose(screen, QStringLiteral("att-scan-log"), QStringLiteral("scan-log.txt"), 0));
        // While the file is on its way the tile shows the ring, which cancels on click.
        QVERIFY(screen.document()->toHtml().contains(QStringLiteral("progress0-cancellable")));
        screen.document()->setAttachProgress(QStringLiteral("att-scan-log"), 40);
        const QTextBlock ring = blockShowing(screen.document(), QStringLiteral("progress40-cancellable"));
        QVERIFY(ring.isValid());
        const QRectF ringRect = screen.document()->documentLayout()->blockBoundingRect(ring);
        const QPoint onRing =
            ringRect.center().toPoint() - QPoint(0, screen.thread()->verticalScrollBar()->value());
        QCOMPARE(screen.thread()->anchorAt(onRing), QStringLiteral("abort://att-scan-log"));
        if (!qEnvironmentVariableIsEmpty("NEWSREADER_GRAB"))
            screen.thread()->grab().save(qEnvironmentVariable("NEWSREADER_GRAB"));
        QVERIFY(launched().isEmpty());
        HostControl::releaseAllRequests();
        QTRY_COMPARE(launched().size(), 1);
        const QString path = launched().first();
        QCOMPARE(path, cacheRoot() + QStringLiteral("/%1/%2/att-scan-log/scan-log.txt")
                                         .arg(QCoreApplication::applicationName(), kPrinter));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(file.readAll().startsWith("2024-06-11 09:14:02 BLOCK"));
        QVERIFY(!screen.document()->toHtml().contains(QStringLiteral("progress")));
        HostControl::setHoldRequests(false);

        // The second time the cached file opens at once.
        QVERIFY(choose(screen, QStringLiteral("att-scan-log"), QStringLiteral("scan-log.txt"), 0));
        QCOMPARE(launched(), QStringList({path, path}));
        QCOMPARE(downloadsOf(QStringLiteral("att-scan-log")), 1);

        // Any other link goes to the system browser; an abort link and an unknown tile do nothing.
        emit screen.thread()->anchorClicked(QUrl(QStringLiteral("https://example.com/help")));
        emit screen.thread()->anchorClicked(QUrl(QStringLiteral("abort://att-scan-log")));
        emit screen.thread()->anchorClicked(QUrl(QStringLiteral("abort://{a b}")));
        QVERIFY(choose(screen, QStringLiteral("att-unknown"), QStringLiteral("x.txt"), 0) == false);
        const auto links = HostControl::events(QStringLiteral("openLink"));
        QCOMPARE(links.size(), 1);
        QCOMPARE(links.first().details.value(QStringLiteral("url")).toString(),
                 QStringLiteral("https://example.com/help"));
    }

    void theThreadsLinksWorkByKeyboard()
    {
        ConversationScreen screen;
        QVERIFY(screen.open(kPrinter));
        QTextBrowser* thread = screen.thread();
        // Once the pictures are in, no download ring (whose link cancels) is left in the thread.
        QTRY_VERIFY(documentHasImage(screen.document(), QStringLiteral("att-exceptions-photo-thumbnail")));
        QTRY_VERIFY(!screen.document()->toHtml().contains(QStringLiteral("abort://")));
        thread->setFocus();
        thread->moveCursor(QTextCursor::Start);
        QSignalSpy clicked(thread, &QTextBrowser::anchorClicked);
        // Tab moves to the first link; Return follows it as a click would.
        QTest::keyClick(thread, Qt::Key_Tab);
        QVERIFY(thread->textCursor().hasSelection());
        const QString href = thread->textCursor().charFormat().anchorHref();
        QVERIFY(!href.isEmpty());
        QTest::keyClick(thread, Qt::Key_Return);
        QCOMPARE(clicked.size(), 1);
        QCOMPARE(clicked.first().first().toUrl(), QUrl(href));
        QVERIFY2(newsReader::isAttachLink(href), qPrintable(href));
        QVERIFY(thread->findChild<QMenu*>(QStringLiteral("attachmentMenu")));
        // Page Down scrolls.
        thread->verticalScrollBar()->setValue(0);
        QTest::keyClick(thread, Qt::Key_PageDown);
        QVERIFY(thread->verticalScrollBar()->value() > 0);
    }

    void aFailedDownloadLeavesNoFileAndTellsTheUser()
    {
        ConversationScreen screen;
        QVERIFY(screen.open(kPrinter));
        HostControl::failNextRequest(QStringLiteral("/attachments/"), 500, QStringLiteral("Disk on fire"));
        QVERIFY(choose(screen, QStringLiteral("att-scan-log"), QStringLiteral("scan-log.txt"), 0));
        QTRY_VERIFY(!HostControl::events(QStringLiteral("balloon")).isEmpty());
        QVERIFY(HostControl::events(QStringLiteral("balloon"))
                    .last()
                    .details.value(QStringLiteral("text"))
                    .toString()
                    .contains(QStringLiteral("could not be downloaded")));
        QVERIFY(launched().isEmpty());
        QDir cache(cacheRoot());
        QVERIFY(!cache.exists() ||
                QDirIterator(cacheRoot(), QDir::Files, QDirIterator::Subdirectories).hasNext() == false);
        // Trying again works.
        QVERIFY(choose(screen, QStringLiteral("att-scan-log"), QStringLiteral("scan-log.txt"), 0));
        QTRY_COMPARE(launched().size(), 1);
    }

    void saveAsWritesTheChosenFileWithTheExtensionFilter()
    {
        ConversationScreen screen;
        QVERIFY(screen.open(kPrinter));
        QTemporaryDir elsewhere;
        const QString target = elsewhere.filePath(QStringLiteral("kept.txt"));
        HostControl::scriptSaveAsDialog(target);
        QVERIFY(choose(screen, QStringLiteral("att-scan-log"), QStringLiteral("scan-log.txt"), 1));
        QTRY_VERIFY(QFileInfo(target).isFile());
        QFile file(target);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(file.readAll().startsWith("2024-06-11"));
        const auto dialogs = HostControl::events(QStringLiteral("fileDialog"));
        QCOMPARE(dialogs.size(), 1);
        QCOMPARE(dialogs.first().details.value(QStringLiteral("kind")).toString(), QStringLiteral("save"));
        QVERIFY(dialogs.first()
                    .details.value(QStringLiteral("path"))
                    .toString()
                    .endsWith(QStringLiteral("/scan-log.txt")));
        QVERIFY(dialogs.first()
                    .details.value(QStringLiteral("filters"))
                    .toString()
                    .contains(QStringLiteral("Txt files")));
        QVERIFY(launched().isEmpty());
    }

    void picturesAndDocumentsGetThumbnailsOtherFilesKeepTheirTiles()
    {
        ConversationScreen screen;
        QVERIFY(screen.open(kPrinter));
        const CMessageItemsDocument* document = screen.document();
        QTRY_VERIFY(documentHasImage(document, QStringLiteral("att-block-screenshot-thumbnail")));
        QTRY_VERIFY(documentHasImage(document, QStringLiteral("att-guide-thumbnail")));
        QTRY_VERIFY(documentHasImage(document, QStringLiteral("att-exceptions-photo-thumbnail")));
        QVERIFY(!documentHasImage(document, QStringLiteral("att-diagtool-thumbnail")));
        QVERIFY(!documentHasImage(document, QStringLiteral("att-scan-log-thumbnail")));
        QCOMPARE(downloadsOf(QStringLiteral("att-diagtool")), 0);
        // The pictures grew the thread above the newest message, which is still in view.
        const QScrollBar* bar = screen.thread()->verticalScrollBar();
        QCOMPARE(bar->value(), bar->maximum());
        // A thumbnail still opens its menu.
        QVERIFY(document->attachmentRect(QStringLiteral("att-guide")).isValid());
        QVERIFY(choose(screen, QStringLiteral("att-guide"), QStringLiteral("exceptions-guide.pdf"), 0));
        QTRY_COMPARE(launched().size(), 1);
        QVERIFY(launched().first().endsWith(QStringLiteral("/att-guide/exceptions-guide.pdf")));
    }

    // The server may send any id and name; a click on the tile, through the view's own link handling, names
    // that very attachment even when another one has the id the URL parser would make of it.
    void aClickOpensTheVeryAttachmentWhateverItsIdAndName_data()
    {
        QTest::addColumn<QString>("id");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("decoyId");
        QTest::newRow("user at host") << "user@host"
                                      << "a&b %41.txt"
                                      << "host";
        QTest::newRow("upper case, NUL") << "UPPER" << QStringLiteral("x%00y") + QChar(0) + ".txt"
                                         << "upper";
        QTest::newRow("number, hash") << "12345"
                                      << "#1? .txt"
                                      << "0.0.48.57";
        QTest::newRow("slash, braces") << "{a/b}" << QString::fromUtf8("отчёт=1.txt") << "a";
    }
    void aClickOpensTheVeryAttachmentWhateverItsIdAndName()
    {
        QFETCH(QString, id);
        QFETCH(QString, name);
        QFETCH(QString, decoyId);
        ConversationScreen screen;
        QVERIFY(screen.open(kPrinter));
        const auto file = [](const QString& fileId, const QString& fileName) {
            QJsonObject json;
            json.insert(QStringLiteral("id"), fileId);
            json.insert(QStringLiteral("fileName"), fileName);
            json.insert(QStringLiteral("text"), QString(QStringLiteral("content of ") + fileId));
            return json;
        };
        HostControl::postMessage(
            kPrinter, QStringLiteral("Two files"), QString(),
            QList<QJsonObject>{file(decoyId, QStringLiteral("decoy.txt")), file(id, name)});
        QTRY_VERIFY(screen.document()->attachmentRect(id).isValid());
        QVERIFY(screen.document()->attachmentRect(decoyId).isValid());

        QTextBrowser* thread = screen.thread();
        const QRectF tile = screen.document()->attachmentRect(id);
        thread->verticalScrollBar()->setValue(int(tile.top()) - 20);
        const QPoint onName = QPoint(int(tile.left()) + 4, int(tile.center().y())) -
                              QPoint(0, thread->verticalScrollBar()->value());
        QVERIFY(!thread->anchorAt(onName).isEmpty());
        QTest::mouseClick(thread->viewport(), Qt::LeftButton, Qt::NoModifier, onName);
        auto* menu = thread->findChild<QMenu*>(QStringLiteral("attachmentMenu"));
        QVERIFY(menu);
        QCOMPARE(menu->accessibleName(), name);
        menu->actions().at(0)->trigger();
        menu->close();

        QTRY_COMPARE(launched().size(), 1);
        const QString path = launched().first();
        QVERIFY2(path.startsWith(cacheRoot() + QLatin1Char('/')), qPrintable(path));
        QFile opened(path);
        QVERIFY(opened.open(QIODevice::ReadOnly));
        QCOMPARE(QString::fromUtf8(opened.readAll()), "content of " + id);
        QCOMPARE(downloadsOf(QString::fromLatin1(QUrl::toPercentEncoding(decoyId))), 0);
        QVERIFY(HostControl::events(QStringLiteral("openLink")).isEmpty());
    }

    void theAddDialogAddsEveryChosenFile()
    {
        ConversationScreen screen;
        QVERIFY(screen.open(kPrinter));
        QTemporaryDir dir;
        QStringList paths;
        for (const char* name : {"a.txt", "b.log", "c.png"}) {
            QFile file(dir.filePath(QString::fromLatin1(name)));
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write("x");
            paths << file.fileName();
        }
        HostControl::scriptOpenFileDialog(paths);
        screen.control<QToolButton>("addAttachment")->click();
        const auto* list = screen.control<QListView>("attachmentsList");
        QCOMPARE(list->model()->rowCount(), 3);
        HostControl::scriptOpenFileDialog({});
        screen.control<QToolButton>("addAttachment")->click();
        QCOMPARE(list->model()->rowCount(), 3);

        // By keyboard: the list is one Tab stop (its remove buttons are not), Delete removes the current
        // tile.
        auto* tiles = const_cast<QListView*>(list);
        const auto removers = tiles->findChildren<QToolButton*>(QStringLiteral("attachmentItem"));
        QCOMPARE(removers.size(), 3);
        for (QToolButton* remover : removers)
            QCOMPARE(remover->focusPolicy(), Qt::NoFocus);
        tiles->setFocus();
        tiles->setCurrentIndex(tiles->model()->index(1, 0));
        QTest::keyClick(tiles, Qt::Key_Delete);
        QCOMPARE(tiles->model()->rowCount(), 2);
        QVERIFY(!tiles->model()->index(0, 0).data().toString().contains(QStringLiteral("b.log")));
        QVERIFY(!tiles->model()->index(1, 0).data().toString().contains(QStringLiteral("b.log")));

        // Files dropped from a file manager onto the composer are attached too.
        QMimeData dropped;
        dropped.setUrls({QUrl::fromLocalFile(paths.at(1))});
        QWidget* target = screen.editor()->viewport();
        QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &dropped, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(target, &enter);
        QVERIFY(enter.isAccepted());
        QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &dropped, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(target, &drop);
        QCOMPARE(tiles->model()->rowCount(), 3);
        QVERIFY(screen.editor()->toPlainText().isEmpty());
    }

    void aShortenedMessageOpensWhole()
    {
        ConversationScreen screen;
        QVERIFY(screen.open(kPrinter));
        const QString body = QStringLiteral("A long line of the log that support pasted.\n").repeated(2000);
        const QString id = HostControl::postMessage(kPrinter, body);
        QTRY_VERIFY(screen.document()->messageIndex(id).isValid());
        QVERIFY(screen.threadText().contains(QStringLiteral("only its beginning is shown")));
        emit screen.thread()->anchorClicked(QUrl(CMessageBody::wholeTextLink(id)));
        auto* window = screen.thread()->window()->findChild<QDialog*>(QStringLiteral("wholeMessageWindow"));
        QVERIFY(window && window->isVisible());
        QCOMPARE(window->findChild<QPlainTextEdit*>()->toPlainText().trimmed(), body.trimmed());
        QVERIFY(HostControl::events(QStringLiteral("openLink")).isEmpty());
        window->close();
    }

    void namesFromTheServerNeverLeaveTheCacheFolder_data()
    {
        QTest::addColumn<QString>("threadId");
        QTest::addColumn<QString>("attachmentId");
        QTest::addColumn<QString>("name");
        QTest::newRow("plain") << "t1"
                               << "a1"
                               << "report.pdf";
        QTest::newRow("colon") << "t1"
                               << "a1"
                               << "a:b.txt";
        QTest::newRow("slashes") << "t1"
                                 << "a1"
                                 << "../../../.bashrc";
        QTest::newRow("backslashes") << "t1"
                                     << "a1"
                                     << "..\\..\\evil.bat";
        QTest::newRow("absolute") << "t1"
                                  << "a1"
                                  << "/etc/passwd";
        QTest::newRow("drive") << "t1"
                               << "a1"
                               << "C:\\Windows\\evil.dll";
        QTest::newRow("dots") << "t1"
                              << "a1"
                              << "..";
        QTest::newRow("nul") << "t1"
                             << "a1" << QStringLiteral("a%1b.txt").arg(QChar(0));
        QTest::newRow("long") << "t1"
                              << "a1" << QString(300, QLatin1Char('x')) + QStringLiteral(".txt");
        QTest::newRow("empty") << "t1"
                               << "a1"
                               << "";
        QTest::newRow("id up") << "t1"
                               << "../../../../tmp"
                               << "x.txt";
        QTest::newRow("id absolute") << "t1"
                                     << "/tmp"
                                     << "x.txt";
        QTest::newRow("thread up") << ".."
                                   << "a1"
                                   << "x.txt";
        QTest::newRow("thread nested") << "a/../../b"
                                       << "C:"
                                       << "x.txt";
    }

    void namesFromTheServerNeverLeaveTheCacheFolder()
    {
        QFETCH(QString, threadId);
        QFETCH(QString, attachmentId);
        QFETCH(QString, name);
        CMessageItemsDocument document;
        CFilePreviewManager previews;
        CAttachmentOpener opener(document, previews, nullptr);
        opener.setThreadId(threadId);
        const QString path = opener.cachePath(attachmentId, name);
        QVERIFY(!path.isEmpty());
        const QFileInfo file(path);
        QCOMPARE(isValidFileName(file.fileName()), FileNameValidationReasons(FileNameValid));
        // Exactly three folder levels below the cache root, none of them a way up.
        const QString relative = QDir(cacheRoot()).relativeFilePath(path);
        const QStringList levels = relative.split(QLatin1Char('/'));
        QCOMPARE(levels.size(), 4);
        for (const QString& level : levels)
            QVERIFY2(level != QStringLiteral("..") && level != QStringLiteral(".") && !level.isEmpty(),
                     qPrintable(relative));
        QCOMPARE(CAttachmentOpener::safeFileName(name) == name, isValidFileName(name) == FileNameValid);
        if (name == QStringLiteral("a:b.txt"))
            QCOMPARE(file.fileName(), QStringLiteral("a_b.txt.txt"));
        // Different ids never share a folder.
        QVERIFY(opener.cachePath(attachmentId + QStringLiteral("x"), name) != path);
    }
};

HOST_TEST_MAIN(TestAttachments)
#include "tst_attachments.moc"
