// Sending and files in the shown conversation, end to end through the simulated server, the host's scripted
// dialogs and recorded launches. The composer: when sending is possible, its keys, paste and height, the
// checks before anything leaves, the outgoing message and its delivery mark, refusals, and typed text that
// must read the same in the thread and in a GitHub Markdown reader (cmark-gfm). Attachments: the tile's menu,
// opening (downloaded once, then from the cache), saving elsewhere, failures, thumbnails, adding files to the
// composer, and names from the server that must not steer a path.
#include "HostTestMain.h"

#include "AttachmentLinks.h"
#include "CAttachmentOpener.h"
#include "CAttachmentsModel.h"
#include "CFilePreviewManager.h"
#include "CMessageBody.h"
#include "CMessageGroups.h"
#include "CMessageSender.h"
#include "ChatServiceApi.h"
#include "ConversationScreen.h"
#include "HostFiles.h"

#include <QAbstractTextDocumentLayout>
#include <QApplication>
#include <QClipboard>
#include <QDialog>
#include <QDir>
#include <QJsonArray>
#include <QListView>
#include <QMenu>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QProcess>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTextBlock>
#include <QTextDocumentFragment>
#include <QTextTable>

namespace {

const QString kPrinter = QStringLiteral("conv-printer");
const QString kInvoice = QStringLiteral("conv-invoice");

// The resource name of the delivery image at the end of the last own message's footer.
QString lastDeliveryMark(const CMessageItemsDocument* document)
{
    QString mark;
    for (QTextBlock block = document->begin(); block.isValid(); block = block.next()) {
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            const QTextCharFormat format = it.fragment().charFormat();
            if (format.isImageFormat() && format.toImageFormat().width() == 16.0)
                mark = format.toImageFormat().name();
        }
    }
    return mark;
}

// While requests are held: lets every thread fetch through, so that only the send waits.
void releaseFetches()
{
    for (const HostControl::Request& request : HostControl::pendingRequests()) {
        if (request.verb == "GET")
            HostControl::releaseRequest(request.id);
    }
}

QList<HostControl::Event> balloons()
{
    return HostControl::events("balloon");
}

QString counterFor(const QString& text)
{
    QString counter;
    ChatServiceApi::checkCommunicationLength(text, counter);
    return counter;
}

QString normalized(QString text)
{
    return text.replace(QChar::Nbsp, QLatin1Char(' ')).simplified();
}

// What cmark-gfm shows of `markdown`, as plain text.
QString readByGitHubReader(const QString& markdown)
{
    QProcess reader;
    reader.start("cmark-gfm", {"-e", "strikethrough", "-e", "autolink", "-e", "table"});
    if (!reader.waitForStarted())
        return QStringLiteral("<cmark-gfm is missing>");
    reader.write(markdown.toUtf8());
    reader.closeWriteChannel();
    reader.waitForFinished();
    return QTextDocumentFragment::fromHtml(QString::fromUtf8(reader.readAllStandardOutput())).toPlainText();
}

QString bubbleText(const CMessageItemsDocument* document)
{
    QTextTable* last = CMessageGroups::messages(document).constLast();
    QTextCursor cursor(const_cast<CMessageItemsDocument*>(document));
    cursor.setPosition(last->cellAt(0, 1).firstPosition());
    cursor.setPosition(last->cellAt(0, 1).lastPosition(), QTextCursor::KeepAnchor);
    return cursor.selectedText().replace(QChar::ParagraphSeparator, QLatin1Char('\n'));
}

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

class TestConversationFiles : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        QVERIFY(loadSampleServer());
        QGuiApplication::clipboard()->clear();
        QDir(cacheRoot()).removeRecursively();
    }

    void sendsAndMarksTheMessageDelivered()
    {
        ConversationScreen screen;
        QVERIFY(screen.open(kPrinter));
        QVERIFY(!screen.canSend());
        QVERIFY(screen.control("attachmentsList")->isHidden());
        QCOMPARE(screen.labelText("charsTypedLabel"), counterFor(QString()));
        // White space alone is nothing to send.
        screen.type(QStringLiteral("  "));
        QVERIFY(!screen.canSend());
        screen.editor()->clear();
        QSignalSpy canSend(screen.plugin.get(), &CNewsReaderPlugin::notifyCanSendMessage);
        screen.type(QStringLiteral("Thanks, that helped"));
        QVERIFY(screen.canSend());
        QVERIFY(canSend.last().first().toBool());
        QCOMPARE(screen.labelText("charsTypedLabel"), counterFor(QStringLiteral("Thanks, that helped")));
        // Return breaks the line; Ctrl+Enter (here on the keypad) sends.
        QTest::keyClick(screen.editor(), Qt::Key_Return);
        QCOMPARE(screen.editor()->document()->blockCount(), 2);

        HostControl::setHoldRequests(true);
        const int before = screen.messageCount();
        QTest::keyClick(screen.editor(), Qt::Key_Enter, Qt::ControlModifier | Qt::KeypadModifier);
        // At once: the composer is empty, the message is shown as being delivered, sending is blocked here.
        QCOMPARE(screen.editor()->toPlainText(), QString());
        QCOMPARE(screen.messageCount(), before + 1);
        QVERIFY(screen.threadText().contains(QStringLiteral("Alex Morgan")));
        QCOMPARE(lastDeliveryMark(screen.document()), CMessageItemsDocument::NotDeliveredImage);
        screen.type(QStringLiteral("More"));
        QVERIFY(!screen.canSend());

        // Another conversation is not blocked by it.
        screen.select(kInvoice);
        releaseFetches();
        QTRY_VERIFY(!screen.busy() && screen.messageCount() > 0);
        QVERIFY(screen.canSend());
        screen.select(kPrinter);
        releaseFetches();
        QTRY_VERIFY(!screen.busy() && screen.messageCount() > 0);
        QVERIFY(!screen.canSend());
        // The waiting message is shown again with its thread.
        QVERIFY(screen.threadText().contains(QStringLiteral("that helped")));

        HostControl::setHoldRequests(false);
        HostControl::releaseAllRequests();
        QTRY_COMPARE(lastDeliveryMark(screen.document()), CMessageItemsDocument::DeliveredImage);
        QTRY_VERIFY(screen.canSend());
        QCOMPARE(screen.threadText().count(QStringLiteral("that helped")), 1);
        QVERIFY(
            HostControl::threadMessages(kPrinter).last().value("text").toString().contains("that helped"));
    }

    void theComposerGrowsWithItsTextUpToAboutTenLines()
    {
        ConversationScreen screen;
        QVERIFY(screen.open(kPrinter));
        const auto heightFor = [&screen](int lines) {
            QStringList text;
            for (int i = 1; i <= lines; ++i)
                text << QStringLiteral("line %1").arg(i);
            screen.editor()->setPlainText(text.join('\n'));
            screen.editor()->document()->documentLayout()->documentSize();
            QCoreApplication::processEvents();
            return screen.editor()->maximumHeight();
        };
        // At least room for three lines of the placeholder; at most about ten lines.
        const int floor = heightFor(0);
        QCOMPARE(heightFor(1), floor);
        QVERIFY(heightFor(6) > floor);
        const int lineSpacing = QFontMetrics(screen.editor()->font()).lineSpacing();
        const int thirty = heightFor(30);
        QVERIFY2(thirty >= 9 * lineSpacing && thirty <= 13 * lineSpacing,
                 qPrintable(QString::number(thirty)));
        QCOMPARE(heightFor(60), thirty);
    }

    void pastingAPictureAttachesIt_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("modifiers");
        QTest::addColumn<bool>("picture");
        QTest::newRow("Ctrl+V picture") << int(Qt::Key_V) << int(Qt::ControlModifier) << true;
        QTest::newRow("Shift+Insert picture") << int(Qt::Key_Insert) << int(Qt::ShiftModifier) << true;
        QTest::newRow("Ctrl+V text") << int(Qt::Key_V) << int(Qt::ControlModifier) << false;
    }

    void pastingAPictureAttachesIt()
    {
        QFETCH(int, key);
        QFETCH(int, modifiers);
        QFETCH(bool, picture);
        ConversationScreen screen;
        QVERIFY(screen.open(kPrinter));
        screen.editor()->clear();
        screen.editor()->setFocus();
        QImage image(40, 30, QImage::Format_ARGB32);
        image.fill(Qt::darkCyan);
        if (picture)
            QGuiApplication::clipboard()->setImage(image);
        else
            QGuiApplication::clipboard()->setText("pasted words");
        QTest::keyClick(screen.editor(), Qt::Key(key), Qt::KeyboardModifiers(modifiers));
        QCOMPARE(screen.control<QListView>("attachmentsList")->model()->rowCount(), picture ? 1 : 0);
        QCOMPARE(screen.editor()->toPlainText(), picture ? QString() : "pasted words");
    }

    void checksNamesAndLengthBeforeAnythingLeaves()
    {
        ConversationScreen screen;
        QVERIFY(screen.open(kPrinter));
        auto* attachments =
            qobject_cast<CAttachmentsModel*>(screen.control<QListView>("attachmentsList")->model());
        QTemporaryDir dir;
        const QString badFile = dir.filePath("report=final.txt");

        // A file alone can be sent, but not under a forbidden name.
        attachments->addFiles({badFile});
        QVERIFY(screen.canSend());
        screen.plugin->onSendMessageClicked();
        QCOMPARE(balloons().size(), 1);
        QCOMPARE(
            balloons().first().details.value(QStringLiteral("text")).toString(),
            QStringLiteral("The following files cannot be used as attachments: report=final.txt. Attachment "
                           "name can't contain any of the following characters: [<>:\"/\\\\|?*%=]"));
        QCOMPARE(attachments->rowCount(), 1);

        // Too long a text stays in the composer.
        attachments->removeAll();
        HostControl::clearEvents();
        const int before = screen.messageCount();
        screen.editor()->setPlainText(QString(HostControl::messageLengthLimit() + 1, QLatin1Char('x')));
        screen.plugin->onSendMessageClicked();
        QCOMPARE(balloons().size(), 1);
        QCOMPARE(balloons().first().details.value(QStringLiteral("text")).toString(),
                 QStringLiteral("The message is too long, please make it shorter."));
        QCOMPARE(screen.editor()->toPlainText().size(), HostControl::messageLengthLimit() + 1);
        QCOMPARE(screen.messageCount(), before);

        screen.editor()->clear();
        // The files stay with their conversation.
        attachments->addFiles({badFile});
        QVERIFY(screen.open(kInvoice));
        QCOMPARE(attachments->rowCount(), 0);
        QVERIFY(screen.open(kPrinter));
        QCOMPARE(attachments->rowCount(), 1);
        attachments->removeAll();
    }

    void aRefusedMessageStaysMarkedFailed_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("reason");
        QTest::addColumn<QString>("shown");
        QTest::newRow("too large") << 413 << "Internal trouble" << CMessageSender::tooLargeText();
        QTest::newRow("server error") << 500 << "Internal trouble" << QStringLiteral("Internal trouble");
        QTest::newRow("no reason given") << 500 << " "
                                         << "The message could not be sent. Please try again later.";
    }

    void aRefusedMessageStaysMarkedFailed()
    {
        QFETCH(int, status);
        QFETCH(QString, reason);
        QFETCH(QString, shown);
        ConversationScreen screen;
        QVERIFY(screen.open(kPrinter));
        HostControl::clearEvents();
        HostControl::failNextRequest(QStringLiteral("/communications"), status, reason);
        QTemporaryDir dir;
        const QString log = dir.filePath(QStringLiteral("scan.log"));
        QFile file(log);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("scan log");
        file.close();
        qobject_cast<CAttachmentsModel*>(screen.control<QListView>("attachmentsList")->model())
            ->addFiles({log});
        screen.type(QStringLiteral("Will this arrive?"));
        screen.plugin->onSendMessageClicked();
        QTRY_COMPARE(lastDeliveryMark(screen.document()), CMessageItemsDocument::DeliveryFailedImage);
        QTRY_COMPARE(balloons().size(), 1);
        const QVariantMap balloon = balloons().first().details;
        QCOMPARE(balloon.value(QStringLiteral("text")).toString(), shown);
        QVERIFY(screen.threadText().contains(QStringLiteral("Will this arrive?")));
        QTRY_VERIFY(!screen.canSend() && screen.editor()->toPlainText().isEmpty());

        // Shown again, still failed, when the conversation comes back.
        QVERIFY(screen.open(kInvoice));
        QVERIFY(screen.open(kPrinter));
        QTRY_VERIFY(screen.threadText().contains(QStringLiteral("Will this arrive?")));
        QCOMPARE(lastDeliveryMark(screen.document()), CMessageItemsDocument::DeliveryFailedImage);
        screen.type(QStringLiteral("Again"));
        QVERIFY(screen.canSend());

        // The bubble says so and offers to send it again; its link is reached and followed by keyboard.
        QVERIFY(screen.threadText().contains(QStringLiteral("Not sent")));
        QTextBrowser* thread = screen.thread();
        thread->setFocus();
        thread->moveCursor(QTextCursor::End);
        QTest::keyClick(thread, Qt::Key_Backtab, Qt::ShiftModifier);
        QCOMPARE(thread->textCursor().selectedText(), QStringLiteral("Send again"));
        const int bubbles = screen.messageCount();
        QTest::keyClick(thread, Qt::Key_Return);
        QCOMPARE(lastDeliveryMark(screen.document()), CMessageItemsDocument::NotDeliveredImage);
        QVERIFY(!screen.threadText().contains(QStringLiteral("Not sent")));
        // The same bubble is delivered, with its text and file, once; what was typed since stays.
        QTRY_COMPARE(lastDeliveryMark(screen.document()), CMessageItemsDocument::DeliveredImage);
        QCOMPARE(screen.messageCount(), bubbles);
        QCOMPARE(screen.threadText().count(QStringLiteral("Will this arrive?")), 1);
        QCOMPARE(screen.editor()->toPlainText(), QStringLiteral("Again"));
        int copies = 0;
        for (const QJsonObject& message : HostControl::threadMessages(kPrinter)) {
            if (!message.value(QStringLiteral("text"))
                     .toString()
                     .contains(QStringLiteral("Will this arrive?")))
                continue;
            ++copies;
            const QJsonArray files = message.value(QStringLiteral("attachments")).toArray();
            QCOMPARE(files.size(), 1);
            QCOMPARE(files.first().toObject().value(QStringLiteral("fileName")).toString(),
                     QStringLiteral("scan.log"));
        }
        QCOMPARE(copies, 1);
    }

    void typedTextArrivesAsTyped_data()
    {
        QTest::addColumn<QString>("typed");
        const char* samples[] = {"2*3*4 = 24",
                                 "snake_case_name and __init__",
                                 "# not a heading",
                                 "- not a list",
                                 "> not a quote",
                                 "[link](http://x) typed literally",
                                 "a <b>tag</b> typed",
                                 "C:\\Users\\alex\\new_folder",
                                 "&copy; is not a symbol",
                                 "~~not struck~~",
                                 "| looks | like | a table |",
                                 "Grüße aus Köln: 10 € für *alles*"};
        for (const char* sample : samples)
            QTest::newRow(sample) << QString::fromUtf8(sample);
    }

    void typedTextArrivesAsTyped()
    {
        QFETCH(QString, typed);
        ConversationScreen screen;
        QVERIFY(screen.open(kPrinter));
        screen.editor()->clear();
        const bool ascii =
            std::all_of(typed.cbegin(), typed.cend(), [](QChar c) { return c.unicode() < 0x80; });
        if (ascii) {
            screen.type(typed);
        } else {
            // What an input method does with letters the keyboard cannot send as keys.
            screen.editor()->setFocus();
            screen.editor()->textCursor().insertText(typed);
        }
        QTest::keyClick(screen.editor(), Qt::Key_Return, Qt::ControlModifier);
        QTRY_COMPARE(HostControl::threadMessages(kPrinter).last().value("sender").toString(), "u-self");
        const QString sent = HostControl::threadMessages(kPrinter).last().value("text").toString();
        QCOMPARE(normalized(readByGitHubReader(sent)), normalized(typed));
        QVERIFY(bubbleText(screen.document()).contains(typed));
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

HOST_TEST_MAIN(TestConversationFiles)
#include "tst_conversationfiles.moc"
