// The composer and sending into the shown conversation, end to end through the simulated server: when it is
// possible, its keys, paste and height, the checks before anything leaves, the outgoing message and its
// delivery mark, refusals, and typed text that must read the same in the thread and in a GitHub Markdown
// reader (cmark-gfm).
#include "HostTestMain.h"

#include "CAttachmentsModel.h"
#include "CMessageSender.h"
#include "ChatServiceApi.h"
#include "ConversationScreen.h"

#include <QAbstractTextDocumentLayout>
#include <QClipboard>
#include <QJsonArray>
#include <QListView>
#include <QProcess>
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
    auto* last = qobject_cast<QTextTable*>(document->rootFrame()->childFrames().constLast());
    QTextCursor cursor(const_cast<CMessageItemsDocument*>(document));
    cursor.setPosition(last->cellAt(0, 1).firstPosition());
    cursor.setPosition(last->cellAt(0, 1).lastPosition(), QTextCursor::KeepAnchor);
    return cursor.selectedText().replace(QChar::ParagraphSeparator, QLatin1Char('\n'));
}

} // namespace

class TestMessageSender : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        QVERIFY(loadSampleServer());
        QGuiApplication::clipboard()->clear();
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
};

HOST_TEST_MAIN(TestMessageSender)
#include "tst_messagesender.moc"
