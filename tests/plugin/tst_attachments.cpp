// Attachments of the shown thread, end to end through the simulated server and the host's scripted dialogs
// and recorded launches: the tile's menu, opening (downloaded once, then from the cache), saving elsewhere,
// failures, thumbnails, adding files to the composer, and names from the server that must not steer a path.
#include "HostTestMain.h"

#include "AttachmentLinks.h"
#include "CAttachmentOpener.h"
#include "CFilePreviewManager.h"
#include "CMessageBody.h"
#include "ConversationScreen.h"
#include "HostFiles.h"

#include <QAbstractTextDocumentLayout>
#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QListView>
#include <QMenu>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTemporaryDir>

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
        return request.verb == "GET" && request.path.endsWith("/attachments/" + attachmentId);
    }));
}

QStringList launched()
{
    QStringList paths;
    for (const HostControl::Event& event : HostControl::events("launchFile"))
        paths << event.details.value("path").toString();
    return paths;
}

bool hasImage(const CMessageItemsDocument* document, const QString& name)
{
    return document->resource(QTextDocument::ImageResource, QUrl(name)).isValid();
}

// Clicks the attachment's link and picks the menu entry `entry` (0 "Open", 1 "Save as...").
bool choose(const ConversationScreen& screen, const QString& id, const QString& name, int entry)
{
    CIncidentAttachment attachment;
    attachment.id = id;
    attachment.fileName = name;
    qDeleteAll(screen.thread()->findChildren<QMenu*>("attachmentMenu"));
    // The tile must be in view: a click on a tile scrolled away shows no menu.
    const QRectF tile = screen.document()->attachmentRect(id);
    if (tile.isValid())
        screen.thread()->verticalScrollBar()->setValue(int(tile.top()) - 20);
    emit screen.thread()->anchorClicked(QUrl(newsReader::attachLink(attachment)));
    auto* menu = screen.thread()->findChild<QMenu*>("attachmentMenu");
    if (!menu || menu->actions().size() != 2)
        return false;
    menu->actions().at(entry)->trigger();
    menu->close();
    return true;
}

} // namespace

class TestAttachments : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        QVERIFY(loadSampleServer());
        QDir(cacheRoot()).removeRecursively();
    }

    void openDownloadsOnceWithAProgressRingThenUsesTheCache()
    {
        ConversationScreen screen;
        QVERIFY(screen.open(kPrinter));
        HostControl::clearRequestLog();
        HostControl::setHoldRequests(true);
        QVERIFY(choose(screen, "att-scan-log", "scan-log.txt", 0));
        // While the file is on its way the tile shows the ring, which cancels on click.
        screen.document()->setAttachProgress("att-scan-log", 40);
        QVERIFY(screen.document()->toHtml().contains("progress40-cancellable"));
        QVERIFY(screen.document()->toHtml().contains("abort://att-scan-log"));
        QVERIFY(launched().isEmpty());
        HostControl::releaseAllRequests();
        QTRY_COMPARE(launched().size(), 1);
        const QString path = launched().first();
        QCOMPARE(path, cacheRoot() + QStringLiteral("/%1/%2/att-scan-log/scan-log.txt")
                                         .arg(QCoreApplication::applicationName(), kPrinter));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(file.readAll().startsWith("2024-06-11 09:14:02 BLOCK"));
        QVERIFY(!screen.document()->toHtml().contains("progress"));
        HostControl::setHoldRequests(false);
        QVERIFY(choose(screen, "att-scan-log", "scan-log.txt", 0));
        QCOMPARE(launched(), QStringList({path, path}));
        QCOMPARE(downloadsOf("att-scan-log"), 1);

        // Any other link goes to the system browser; an unknown tile has no menu.
        emit screen.thread()->anchorClicked(QUrl("https://example.com/help"));
        emit screen.thread()->anchorClicked(QUrl("abort://att-scan-log"));
        QVERIFY(!choose(screen, "att-unknown", "x.txt", 0));
        QCOMPARE(HostControl::events("openLink").size(), 1);
    }

    void aFailedDownloadLeavesNoFileAndTellsTheUser()
    {
        ConversationScreen screen;
        QVERIFY(screen.open(kPrinter));
        HostControl::failNextRequest("/attachments/", 500, "Disk on fire");
        QVERIFY(choose(screen, "att-scan-log", "scan-log.txt", 0));
        QTRY_VERIFY(!HostControl::events("balloon").isEmpty());
        QVERIFY(HostControl::events("balloon").last().details.value("text").toString().contains(
            "could not be downloaded"));
        QVERIFY(launched().isEmpty());
        QVERIFY(!QFileInfo::exists(cacheRoot() + QStringLiteral("/%1/%2/att-scan-log/scan-log.txt")
                                                     .arg(QCoreApplication::applicationName(), kPrinter)));
        QVERIFY(choose(screen, "att-scan-log", "scan-log.txt", 0));
        QTRY_COMPARE(launched().size(), 1);
    }

    void saveAsWritesTheChosenFile()
    {
        ConversationScreen screen;
        QVERIFY(screen.open(kPrinter));
        QTemporaryDir elsewhere;
        // Cancelled, the dialog saves nothing; a place that cannot be written is reported.
        HostControl::scriptSaveAsDialog(QString());
        QVERIFY(choose(screen, "att-scan-log", "scan-log.txt", 1));
        HostControl::scriptSaveAsDialog(elsewhere.filePath("missing/kept.txt"));
        QVERIFY(choose(screen, "att-scan-log", "scan-log.txt", 1));
        QTRY_COMPARE(HostControl::events("balloon").size(), 1);
        QVERIFY(HostControl::events("balloon").first().details.value("text").toString().startsWith(
            "The file could not be saved as"));
        QCOMPARE(downloadsOf("att-scan-log"), 1);
        HostControl::scriptSaveAsDialog(elsewhere.filePath("kept.txt"));
        QVERIFY(choose(screen, "att-scan-log", "scan-log.txt", 1));
        QTRY_VERIFY(QFileInfo(elsewhere.filePath("kept.txt")).isFile());
        const QVariantMap dialog = HostControl::events("fileDialog").first().details;
        QVERIFY(dialog.value("path").toString().endsWith("/scan-log.txt"));
        QVERIFY(dialog.value("filters").toString().contains("Txt files"));
        QVERIFY(launched().isEmpty());
    }

    void picturesAndDocumentsGetThumbnailsOtherFilesKeepTheirTiles()
    {
        ConversationScreen screen;
        QVERIFY(screen.open(kPrinter));
        const CMessageItemsDocument* document = screen.document();
        // Thumbnails are made off the event loop; a sanitized build takes its time.
        QTRY_VERIFY_WITH_TIMEOUT(hasImage(document, "att-block-screenshot-thumbnail"), 20000);
        QTRY_VERIFY_WITH_TIMEOUT(hasImage(document, "att-guide-thumbnail"), 20000);
        QVERIFY(!hasImage(document, "att-diagtool-thumbnail"));
        QCOMPARE(downloadsOf("att-diagtool"), 0);
        // The pictures grew the thread above the newest message, which is still in view.
        QTRY_COMPARE(screen.thread()->verticalScrollBar()->value(),
                     screen.thread()->verticalScrollBar()->maximum());
        QVERIFY(choose(screen, "att-guide", "exceptions-guide.pdf", 0));
        QTRY_COMPARE(launched().size(), 1);
    }

    void filesAreAddedByDialogAndDropAndRemovedByDelete()
    {
        ConversationScreen screen;
        QVERIFY(screen.open(kPrinter));
        QTemporaryDir dir;
        const QStringList paths{dir.filePath("a.txt"), dir.filePath("b.log"), dir.filePath("c.png")};
        for (const QString& path : paths) {
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write("x") == 1);
        }
        HostControl::scriptOpenFileDialog(paths);
        screen.control<QToolButton>("addAttachment")->click();
        auto* tiles = screen.control<QListView>("attachmentsList");
        QCOMPARE(tiles->model()->rowCount(), 3);
        // The list is one Tab stop (its remove buttons are not); Delete removes the current tile.
        QCOMPARE(tiles->findChild<QToolButton*>("attachmentItem")->focusPolicy(), Qt::NoFocus);
        tiles->setFocus();
        tiles->setCurrentIndex(tiles->model()->index(1, 0));
        QTest::keyClick(tiles, Qt::Key_Delete);
        QCOMPARE(tiles->model()->rowCount(), 2);
        QCOMPARE(tiles->model()->index(1, 0).data().toString(), "c.png");

        // Files dropped from a file manager onto the composer are attached too.
        QMimeData dropped;
        dropped.setUrls({QUrl::fromLocalFile(paths.at(1))});
        QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &dropped, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(screen.editor()->viewport(), &enter);
        QVERIFY(enter.isAccepted());
        QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &dropped, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(screen.editor()->viewport(), &drop);
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
        QVERIFY(screen.threadText().contains("only its beginning is shown"));
        emit screen.thread()->anchorClicked(QUrl(CMessageBody::wholeTextLink(id)));
        auto* window = screen.thread()->window()->findChild<QDialog*>("wholeMessageWindow");
        QVERIFY(window && window->isVisible());
        QCOMPARE(window->findChild<QPlainTextEdit*>()->toPlainText().trimmed(), body.trimmed());
        window->close();
    }

    void namesFromTheServerNeverLeaveTheCacheFolder_data()
    {
        QTest::addColumn<QString>("threadId");
        QTest::addColumn<QString>("attachmentId");
        QTest::addColumn<QString>("name");
        const QList<QStringList> rows{{"t1", "a1", "report.pdf"},
                                      {"t1", "a1", "a:b.txt"},
                                      {"t1", "a1", "../../.bashrc"},
                                      {"t1", "a1", "..\\..\\evil.bat"},
                                      {"t1", "a1", "/etc/passwd"},
                                      {"t1", "a1", ".."},
                                      {"t1", "a1", ""},
                                      {"t1", "a1", QString(300, 'x') + ".txt"},
                                      {"t1", "../../../../tmp", "x"},
                                      {"a/../../b", "C:", "x.txt"}};
        for (const QStringList& row : rows)
            QTest::newRow(qPrintable(row.join(' ').left(40))) << row.at(0) << row.at(1) << row.at(2);
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
        QCOMPARE(isValidFileName(QFileInfo(path).fileName()), FileNameValidationReasons(FileNameValid));
        // Exactly three folder levels below the cache root, none of them a way up.
        const QStringList levels = QDir(cacheRoot()).relativeFilePath(path).split('/');
        QCOMPARE(levels.size(), 4);
        for (const QString& level : levels)
            QVERIFY2(level != ".." && level != "." && !level.isEmpty(), qPrintable(path));
        QCOMPARE(CAttachmentOpener::safeFileName(name) == name, isValidFileName(name) == FileNameValid);
        QVERIFY(opener.cachePath(attachmentId + "x", name) != path);
    }
};

HOST_TEST_MAIN(TestAttachments)
#include "tst_attachments.moc"
