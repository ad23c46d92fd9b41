// A support conversation on the page, end to end through the simulated server: the header, the thread as
// loaded, the draft, the composer's availability, a selection that changes while a fetch runs, and the live
// updates that keep the shown thread current.
#include "HostTestMain.h"

#include "ConversationScreen.h"

#include <QScrollBar>
#include <QSignalSpy>

namespace {

const QString kPrinter = QStringLiteral("conv-printer");
const QString kInvoice = QStringLiteral("conv-invoice");

int threadFetches()
{
    const auto log = HostControl::requestLog();
    return int(std::count_if(log.cbegin(), log.cend(), [](const HostControl::Request& request) {
        return request.verb == "GET" && request.path.contains("/threads/");
    }));
}

} // namespace

class TestConversationView : public QObject
{
    Q_OBJECT

private slots:
    void init() { QVERIFY(loadSampleServer()); }

    void loadsTheWholeThreadInServerOrderWithItsHeader()
    {
        ConversationScreen screen;
        screen.select(kPrinter);
        QVERIFY(screen.busy());
        // The title is cut with an ellipsis to the width it has; its name keeps the whole.
        const QString title = QStringLiteral("Scanner blocks my printer driver after the update");
        auto* titleLabel = screen.control<QLabel>("issueTitle");
        QCOMPARE(titleLabel->accessibleName(), title);
        QTRY_VERIFY(titleLabel->isVisible());
        QVERIFY(title.startsWith(titleLabel->text().chopped(1)));
        QVERIFY(titleLabel->fontMetrics().horizontalAdvance(titleLabel->text()) <=
                titleLabel->contentsRect().width());
        QCOMPARE(screen.control<QToolButton>("issueStateButton")->text(),
                 screen.control<QLabel>("issueState")->text());

        QTRY_VERIFY(!screen.busy());
        // The opening message, then every message as the server lists it (drafts and old versions left out).
        QCOMPARE(screen.messageCount(), 6);
        const QString text = screen.threadText();
        qsizetype previous = -1;
        for (const char* part : {"HP LaserJet", "false positive", "the exception works", "detection team",
                                 "Message is deleted", "step-by-step guide"}) {
            QVERIFY2(text.indexOf(part) > previous, part);
            previous = text.indexOf(part);
        }
        QVERIFY(text.contains("(edited)") && !text.contains("wrong product"));
        QScrollBar* scrollBar = screen.thread()->verticalScrollBar();
        QTRY_VERIFY(scrollBar->maximum() > 0 && scrollBar->value() == scrollBar->maximum());
    }

    void composerFollowsTheConversation()
    {
        ConversationScreen screen;
        QVERIFY(screen.open(kInvoice));
        // The draft comes back into the composer and is not saved back.
        QCOMPARE(screen.editor()->toPlainText(), "Hi Lena, the new address is Lindenstraße 12, 10969 Berlin");
        QVERIFY(
            !screen.model()->indexForKey(kInvoice).data(CCommunicationObjectModel::DraftBusyRole).toBool());
        QVERIFY(screen.canSend());
        // A closed conversation takes no more messages.
        QSignalSpy compose(screen.plugin.get(), &CNewsReaderPlugin::notifyCanComposeNewMessage);
        QVERIFY(screen.open("conv-license"));
        QVERIFY(!screen.control<QWidget>("inputAreaFrame")->isVisible());
        QVERIFY(!compose.last().first().toBool());
        // A conversation without a thread asks the server for nothing.
        HostControl::clearRequestLog();
        screen.select("conv-darkmode");
        QTest::qWait(50);
        QCOMPARE(threadFetches(), 0);
        QCOMPARE(screen.messageCount(), 0);
    }

    void aLateAnswerForAnotherConversationIsIgnored()
    {
        ConversationScreen screen;
        HostControl::setHoldRequests(true);
        screen.select(kPrinter);
        screen.select(kInvoice);
        QTRY_COMPARE(HostControl::pendingRequests().size(), 2);
        for (const HostControl::Request& request : HostControl::pendingRequests()) {
            if (request.path.contains(kPrinter))
                QVERIFY(HostControl::releaseRequest(request.id));
        }
        QTest::qWait(50);
        QCOMPARE(screen.messageCount(), 0);
        HostControl::releaseAllRequests();
        QTRY_VERIFY(!screen.busy());
        QVERIFY(screen.threadText().contains("VAT") && !screen.threadText().contains("LaserJet"));
        // A failed fetch ends the busy bar and keeps what was shown.
        const int shown = screen.messageCount();
        HostControl::setHoldRequests(false);
        HostControl::failNextRequest("/threads/", 500, "Server error");
        screen.plugin->onUpdateCurrentIssueMessages(kInvoice);
        QVERIFY(screen.busy());
        QTRY_VERIFY(!screen.busy());
        QCOMPARE(screen.messageCount(), shown);
    }

    void liveUpdatesChangeOnlyTheShownThread()
    {
        ConversationScreen screen;
        QVERIFY(screen.open(kInvoice));
        const int loaded = screen.messageCount();
        // Received: appended once, even when it is reported twice; another conversation's stays out.
        const QString liveId = HostControl::postMessage(kInvoice, "Live answer");
        HostControl::postMessage(kPrinter, "Meant for the printer");
        QTRY_COMPARE(screen.messageCount(), loaded + 1);
        emit vantrelApp->getNewsFetcher()->communicationReceived(
            screen.document()->messageIndex(liveId).message);
        QTest::qWait(20);
        QCOMPARE(screen.threadText().count("Live answer"), 1);
        QVERIFY(!screen.threadText().contains("printer"));
        // Edited: the new version takes the old one's place.
        HostControl::editMessage(liveId, "Live answer, amended");
        QTRY_VERIFY(screen.threadText().contains("amended"));
        QCOMPARE(screen.messageCount(), loaded + 1);
        QVERIFY(screen.threadText().trimmed().endsWith("(edited)"));
        // Deleted: shown as deleted in its place.
        HostControl::deleteMessage("msg-invoice-1");
        QTRY_VERIFY(screen.threadText().contains("Message is deleted"));
        QVERIFY(!screen.threadText().contains("Netherlands"));
        // New messages for the shown conversation (or for whichever is shown) reload it without doubles.
        for (const QString& incident : {kInvoice, QString(), kPrinter}) {
            HostControl::clearRequestLog();
            screen.plugin->onUpdateCurrentIssueMessages(incident);
            QTest::qWait(50);
            QCOMPARE(threadFetches(), incident == kPrinter ? 0 : 1);
            QTRY_VERIFY(!screen.busy());
            QCOMPARE(screen.messageCount(), loaded + 1);
        }
    }

    void typingAndParticipantNamesFollowTheServer()
    {
        ConversationScreen screen;
        QVERIFY(screen.open(kInvoice));
        auto* typing = screen.control<QLabel>("typingLabel");
        HostControl::setTyping(kPrinter, "s-anna", true);
        QTest::qWait(50);
        QVERIFY(typing->text().isEmpty());
        HostControl::setTyping(kInvoice, "s-lena", true);
        QTRY_VERIFY(typing->text().contains("Lena"));
        HostControl::setTyping(kInvoice, "s-lena", false);
        QTRY_VERIFY(typing->text().isEmpty());
        // A newcomer's message has no name until the participant becomes known; the view stays put.
        const int fetchesBefore = threadFetches();
        for (int i = 0; i < 12; ++i)
            HostControl::postMessage(kInvoice, QStringLiteral("Filler %1").arg(i));
        HostControl::postMessage(kInvoice, "Hello from a colleague", "s-nora");
        QTRY_VERIFY(screen.threadText().contains("colleague"));
        QTRY_VERIFY(threadFetches() > fetchesBefore && !screen.busy());
        QTest::qWait(20); // the move to the end waits for an idle pass
        QTRY_COMPARE(screen.thread()->verticalScrollBar()->value(),
                     screen.thread()->verticalScrollBar()->maximum());
        screen.thread()->verticalScrollBar()->setValue(10);
        HostControl::addParticipant({{"id", "s-nora"}, {"firstName", "Nora"}, {"lastName", "Brandt"}});
        QTRY_VERIFY(screen.threadText().contains("Nora"));
        QCOMPARE(screen.thread()->verticalScrollBar()->value(), 10);
    }
};

HOST_TEST_MAIN(TestConversationView)
#include "tst_conversationview.moc"
