// A support conversation on the page, end to end through the simulated server: the header, the thread as
// loaded, the draft, the composer's availability, a selection that changes while a fetch runs, and the live
// updates that keep the shown thread current.
#include "HostTestMain.h"

#include "CNewsFetcher.h"
#include "ConversationScreen.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTextDocumentFragment>

namespace {

const QString kPrinter = QStringLiteral("conv-printer");
const QString kInvoice = QStringLiteral("conv-invoice");
const QString kLicense = QStringLiteral("conv-license");
const QString kDarkMode = QStringLiteral("conv-darkmode");

int requestsFor(const QString& pathPart)
{
    int count = 0;
    for (const HostControl::Request& request : HostControl::requestLog())
        count += request.verb == "GET" && request.path.contains(pathPart) ? 1 : 0;
    return count;
}

} // namespace

class TestConversationView : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        HostControl::resetSwitches();
        HostControl::setCanUseWebEngine(false);
        HostControl::setHoldRequests(false);
        HostControl::loadDefaultScenario();
        QTRY_VERIFY(vantrelApp->getNewsFetcher()->hasAny(CNewsFetcher::FilterIssues));
        HostControl::clearRequestLog();
        HostControl::clearEvents();
    }

    void loadsTheWholeThreadInServerOrderWithItsHeader()
    {
        ConversationScreen screen;
        screen.select(kPrinter);
        QVERIFY(screen.busy());
        // The title is cut with an ellipsis to the width it has; its name and tool tip keep the whole.
        const QString title = QStringLiteral("Scanner blocks my printer driver after the update");
        auto* titleLabel = screen.control<QLabel>("issueTitle");
        QCOMPARE(titleLabel->accessibleName(), title);
        QTRY_VERIFY(titleLabel->isVisible());
        const QString shown = titleLabel->text();
        QVERIFY2(shown == title || (shown.endsWith(QChar(0x2026)) && title.startsWith(shown.chopped(1))),
                 qPrintable(shown));
        QVERIFY(titleLabel->fontMetrics().horizontalAdvance(shown) <= titleLabel->contentsRect().width());
        const QRect stateRect = screen.control<QLabel>("issueState")->geometry();
        QVERIFY(titleLabel->geometry().right() < stateRect.left());

        QVERIFY(!screen.control<QLabel>("issueCreateDate")->text().isEmpty());
        const QString state = screen.control<QLabel>("issueState")->text();
        QVERIFY(!state.isEmpty() && state != QStringLiteral("OPEN"));
        QCOMPARE(screen.control<QToolButton>("issueStateButton")->text(), state);

        QTRY_VERIFY(!screen.busy());
        // The opening message, then every message as the server lists it (drafts and old versions left out).
        QCOMPARE(screen.messageCount(), 6);
        const QString text = screen.threadText();
        const QStringList inOrder = {
            QStringLiteral("HP LaserJet"),         QStringLiteral("false positive"),
            QStringLiteral("the exception works"), QStringLiteral("detection team"),
            QStringLiteral("Message is deleted"),  QStringLiteral("step-by-step guide")};
        qsizetype previous = -1;
        for (const QString& part : inOrder) {
            const qsizetype at = text.indexOf(part);
            QVERIFY2(at > previous, qPrintable(part));
            previous = at;
        }
        QVERIFY(text.contains(QStringLiteral("(edited)")));
        QVERIFY(!text.contains(QStringLiteral("wrong product")));
        QVERIFY(text.contains(QStringLiteral("exceptions-guide.pdf")));
        // Once idle, the newest message is in view.
        QScrollBar* scrollBar = screen.thread()->verticalScrollBar();
        QTRY_VERIFY(scrollBar->maximum() > 0 && scrollBar->value() == scrollBar->maximum());
    }

    void composerFollowsTheConversation()
    {
        ConversationScreen screen;
        QVERIFY(screen.open(kInvoice));
        // The draft comes back into the composer and is not saved back.
        QCOMPARE(screen.editor()->toPlainText(),
                 QStringLiteral("Hi Lena, the new address is Lindenstraße 12, 10969 Berlin"));
        const QModelIndex invoice = screen.model()->indexForKey(kInvoice);
        QVERIFY(!invoice.data(CCommunicationObjectModel::DraftBusyRole).toBool());
        QVERIFY(screen.control<QWidget>("inputAreaFrame")->isVisible());
        QVERIFY(screen.canSend());

        // A closed conversation takes no more messages.
        QSignalSpy compose(screen.plugin.get(), &CNewsReaderPlugin::notifyCanComposeNewMessage);
        QVERIFY(screen.open(kLicense));
        QVERIFY(!screen.control<QWidget>("inputAreaFrame")->isVisible());
        QVERIFY(!screen.control<QWidget>("inputAreaFrame")->isEnabled());
        QVERIFY(!compose.isEmpty() && !compose.last().first().toBool());
        QVERIFY(!screen.threadText().contains(QStringLiteral("Lindenstraße")));

        // A conversation without a thread asks the server for nothing.
        HostControl::clearRequestLog();
        screen.select(kDarkMode);
        QTest::qWait(50);
        QCOMPARE(requestsFor(QStringLiteral("/threads/")), 0);
        QCOMPARE(screen.messageCount(), 0);
        QVERIFY(!screen.busy());
    }

    void aLateAnswerForAnotherConversationIsIgnored()
    {
        ConversationScreen screen;
        HostControl::setHoldRequests(true);
        screen.select(kPrinter);
        screen.select(kInvoice);
        QTRY_COMPARE(HostControl::pendingRequests().size(), 2);
        const QList<HostControl::Request> held = HostControl::pendingRequests();
        // The printer thread answers last but one, the invoice thread last.
        for (const HostControl::Request& request : held) {
            if (request.path.contains(kPrinter))
                QVERIFY(HostControl::releaseRequest(request.id));
        }
        QTest::qWait(50);
        QCOMPARE(screen.messageCount(), 0);
        QVERIFY(screen.busy());
        HostControl::releaseAllRequests();
        QTRY_VERIFY(!screen.busy());
        QVERIFY(screen.threadText().contains(QStringLiteral("VAT")));
        QVERIFY(!screen.threadText().contains(QStringLiteral("LaserJet")));

        // A failed fetch ends the busy bar and keeps what was shown.
        const int shown = screen.messageCount();
        HostControl::setHoldRequests(false);
        HostControl::failNextRequest(QStringLiteral("/threads/"), 500, QStringLiteral("Server error"));
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
        const QString liveId = HostControl::postMessage(kInvoice, QStringLiteral("Live answer"));
        HostControl::postMessage(kPrinter, QStringLiteral("Meant for the printer"));
        QTRY_COMPARE(screen.messageCount(), loaded + 1);
        CNewsFetcher* fetcher = vantrelApp->getNewsFetcher().get();
        emit fetcher->communicationReceived(screen.document()->messageIndex(liveId).message);
        QTest::qWait(20);
        QCOMPARE(screen.messageCount(), loaded + 1);
        QCOMPARE(screen.threadText().count(QStringLiteral("Live answer")), 1);
        QVERIFY(!screen.threadText().contains(QStringLiteral("printer")));

        // Edited: the new version takes the old one's place.
        HostControl::editMessage(liveId, QStringLiteral("Live answer, amended"));
        QTRY_VERIFY(screen.threadText().contains(QStringLiteral("amended")));
        QCOMPARE(screen.messageCount(), loaded + 1);
        QCOMPARE(screen.threadText().count(QStringLiteral("(edited)")), 1);
        QVERIFY(screen.threadText().trimmed().endsWith(QStringLiteral("(edited)")));

        // Deleted: shown as deleted in its place.
        HostControl::deleteMessage(QStringLiteral("msg-invoice-1"));
        QTRY_VERIFY(screen.threadText().contains(QStringLiteral("Message is deleted")));
        QVERIFY(!screen.threadText().contains(QStringLiteral("Netherlands")));
        QCOMPARE(screen.messageCount(), loaded + 1);

        // New messages for the shown conversation (or for whichever is shown) reload it without doubles.
        for (const QString& incident : {kInvoice, QString(), kPrinter}) {
            HostControl::clearRequestLog();
            screen.plugin->onUpdateCurrentIssueMessages(incident);
            QTest::qWait(50);
            QCOMPARE(requestsFor(QStringLiteral("/threads/")), incident == kPrinter ? 0 : 1);
            QTRY_VERIFY(!screen.busy());
            QCOMPARE(screen.messageCount(), loaded + 1);
        }
    }

    void typingAndParticipantNamesFollowTheServer()
    {
        ConversationScreen screen;
        QVERIFY(screen.open(kInvoice));
        auto* typing = screen.control<QLabel>("typingLabel");
        HostControl::setTyping(kPrinter, QStringLiteral("s-anna"), true);
        QTest::qWait(50);
        QVERIFY(typing->text().isEmpty());
        HostControl::setTyping(kInvoice, QStringLiteral("s-lena"), true);
        QTRY_VERIFY(typing->text().contains(QStringLiteral("Lena")));
        HostControl::setTyping(kInvoice, QStringLiteral("s-lena"), false);
        QTRY_VERIFY(typing->text().isEmpty());

        // A newcomer's message has no name until the participant becomes known; the view stays put.
        const auto fetches = [] {
            const auto log = HostControl::requestLog();
            return std::count_if(log.cbegin(), log.cend(), [](const HostControl::Request& request) {
                return request.verb == "GET" && request.path.contains(QStringLiteral("/threads/"));
            });
        };
        const qsizetype fetchesBefore = fetches();
        for (int i = 0; i < 12; ++i)
            HostControl::postMessage(kInvoice, QStringLiteral("Filler %1").arg(i));
        HostControl::postMessage(kInvoice, QStringLiteral("Hello from a colleague"),
                                 QStringLiteral("s-nora"));
        QTRY_VERIFY(screen.threadText().contains(QStringLiteral("colleague")));
        // The posts make the conversation reload once it has them all; that ends at the newest message.
        QTRY_VERIFY(fetches() > fetchesBefore && !screen.busy());
        QTest::qWait(20); // the move to the end waits for an idle pass
        QTRY_COMPARE(screen.thread()->verticalScrollBar()->value(),
                     screen.thread()->verticalScrollBar()->maximum());
        screen.thread()->verticalScrollBar()->setValue(10);
        HostControl::addParticipant({{QStringLiteral("id"), QStringLiteral("s-nora")},
                                     {QStringLiteral("firstName"), QStringLiteral("Nora")},
                                     {QStringLiteral("lastName"), QStringLiteral("Brandt")}});
        QTRY_VERIFY(screen.threadText().contains(QStringLiteral("Nora")));
        QCOMPARE(screen.thread()->verticalScrollBar()->value(), 10);
    }

    // Names and titles are the server's text: markup in them shows as written, a name in its colour, in the
    // header, the typing line and on the bubbles, and nothing they name is ever loaded; neither is anything a
    // restored draft names.
    void namesShowAsThePlainTextTheyAre_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("markup") << QStringLiteral("<b>Bold</b> <i>Eve</i>");
        QTest::newRow("closes the name's span")
            << QStringLiteral("Eve</span> has left. <b>Your session expired</b>");
        QTest::newRow("picture of a device") << QStringLiteral("Eve <img src=\"/dev/zero\">");
        QTest::newRow("picture of a file") << QStringLiteral("<img src=\"file:///etc/passwd\"> Eve");
        QTest::newRow("entities") << QStringLiteral("Tom &amp; Jerry &lt;3 & co");
    }
    void namesShowAsThePlainTextTheyAre()
    {
        QFETCH(QString, name);
        const QColor colour(QStringLiteral("#2a9d8f"));
        const QString key = QStringLiteral("conv-eve");
        HostControl::addParticipant({{"id", "s-eve"},
                                     {"firstName", name},
                                     {"lastName", QString()},
                                     {"displayName", name},
                                     {"nameColor", colour.name()}});
        HostControl::addConversation(
            {{"id", key},
             {"subject", name},
             {"agent", "s-eve"},
             {"messages", QJsonArray{QJsonObject{{"id", "msg-eve"}, {"sender", "s-eve"}, {"text", "Hello"}}}},
             {"draft",
              QJsonObject{{"id", "draft-eve"}, {"text", QStringLiteral("![x](/dev/zero) %1").arg(name)}}}});
        ConversationScreen screen;
        QTRY_VERIFY(screen.model()->indexForKey(key).isValid());
        QVERIFY(screen.open(key));
        HostControl::setTyping(key, QStringLiteral("s-eve"), true);

        auto* title = screen.control<QLabel>("issueTitle");
        QCOMPARE(title->accessibleName(), name);
        QVERIFY(title->text() == name || name.startsWith(title->text().chopped(1)));
        QCOMPARE(QTextDocumentFragment::fromHtml(title->toolTip()).toPlainText(), name);

        auto* typing = screen.control<QLabel>("typingLabel");
        QTRY_VERIFY(!typing->text().isEmpty());
        // Parsed without a resource provider, so that a name that does get through as markup loads nothing.
        QTextDocument line;
        QTextCursor(&line).insertFragment(QTextDocumentFragment::fromHtml(typing->text()));
        const QString shown = line.toPlainText();
        QVERIFY2(shown.contains(name), qPrintable(shown));
        QCOMPARE(shown.count(QChar::ObjectReplacementCharacter), 1); // the dots, and no other picture
        QTextCursor inName(&line);
        inName.setPosition(int(shown.indexOf(name)) + 1);
        QCOMPARE(inName.charFormat().foreground().color(), colour);

        QTRY_VERIFY2(screen.threadText().contains(name + QLatin1Char('\n')), qPrintable(screen.threadText()));
        QTRY_VERIFY(screen.editor()->toPlainText().contains(QChar::ObjectReplacementCharacter));
        QVERIFY(!screen.view->grab().isNull());
    }
};

HOST_TEST_MAIN(TestConversationView)
#include "tst_conversationview.moc"
