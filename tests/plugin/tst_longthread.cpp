// A long conversation opens with its newest messages and shows the older ones as the reader scrolls up:
// every message arrives, in order, without the view jumping, and changes to messages not shown yet are not
// lost.
#include "ConversationScreen.h"
#include "HostTestMain.h"

#include <QAbstractTextDocumentLayout>
#include <QJsonArray>
#include <QRegularExpression>
#include <QScrollBar>

namespace {

constexpr int kMessages = 400;
const QString kConversation = QStringLiteral("conv-long");

QString textOf(int n)
{
    return QStringLiteral("Numbered message %1").arg(n, 4, 10, QLatin1Char('0'));
}

QJsonObject longConversation()
{
    QJsonArray messages;
    for (int n = 1; n <= kMessages; ++n)
        messages.append(QJsonObject{
            {QStringLiteral("id"), QStringLiteral("long-%1").arg(n)},
            {QStringLiteral("text"), textOf(n)},
            {QStringLiteral("sender"), n % 3 ? QStringLiteral("s-anna") : QStringLiteral("u-self")},
            {QStringLiteral("time"), QStringLiteral("-%1m").arg(kMessages - n + 1)}});
    return {{QStringLiteral("id"), kConversation},
            {QStringLiteral("subject"), QStringLiteral("Long")},
            {QStringLiteral("agent"), QStringLiteral("s-anna")},
            {QStringLiteral("created"), QStringLiteral("-2d")},
            {QStringLiteral("firstMessage"), QStringLiteral("Opening words")},
            {QStringLiteral("messages"), messages}};
}

// The numbers of the numbered messages in the order the thread shows them.
QList<int> shownNumbers(const ConversationScreen& screen)
{
    static const QRegularExpression numbered(QStringLiteral("Numbered message (\\d{4})"));
    QList<int> numbers;
    for (auto it = numbered.globalMatch(screen.threadText()); it.hasNext();)
        numbers << it.next().captured(1).toInt();
    return numbers;
}

} // namespace

class TestLongThread : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        HostControl::loadDefaultScenario();
        HostControl::setCanUseWebEngine(false);
        HostControl::addConversation(longConversation());
    }

    void scrollingUpShowsEveryMessageInOrderWithoutJumping()
    {
        ConversationScreen screen;
        QTRY_VERIFY(screen.model()->indexForKey(kConversation).isValid());
        QVERIFY(screen.open(kConversation));
        // Only the newest part is in the document; the newest message is in view.
        QVERIFY(screen.messageCount() < kMessages / 2);
        QScrollBar* scrollBar = screen.thread()->verticalScrollBar();
        QTRY_COMPARE(scrollBar->value(), scrollBar->maximum());
        QCOMPARE(shownNumbers(screen).last(), kMessages);

        // Changes to messages not shown yet wait with them.
        HostControl::editMessage(QStringLiteral("long-5"),
                                 QStringLiteral("Numbered message 0005, corrected"));
        HostControl::deleteMessage(QStringLiteral("long-7"));
        QTest::qWait(50);

        QAbstractTextDocumentLayout* layout = screen.document()->documentLayout();
        while (!screen.threadText().contains(QStringLiteral("Opening words"))) {
            const int before = screen.messageCount();
            QTextFrame* first = screen.document()->firstMessageFrame();
            scrollBar->setValue(0);
            const qreal seenAt = layout->frameBoundingRect(first).top() - scrollBar->value();
            QTRY_VERIFY(screen.messageCount() > before);
            // The message that was first stays where the reader saw it.
            QVERIFY(qAbs(layout->frameBoundingRect(first).top() - scrollBar->value() - seenAt) <= 1.0);
        }

        QList<int> expected;
        for (int n = 1; n <= kMessages; ++n) {
            if (n != 7)
                expected << n;
        }
        QCOMPARE(shownNumbers(screen), expected);
        QVERIFY(screen.threadText().contains(QStringLiteral("0005, corrected")));
        QCOMPARE(screen.threadText().count(QStringLiteral("Message is deleted")), 1);
    }
};

HOST_TEST_MAIN(TestLongThread)
#include "tst_longthread.moc"
