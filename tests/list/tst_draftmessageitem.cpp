// DraftMessageItem against the simulated server: when drafts are saved, replaced and deleted, how a send
// that overtakes a draft being created is handled, and how the real message is posted.
#include "HostTestMain.h"

#include "DraftMessageItem.h"
#include "ListTestSupport.h"

#include <QSignalSpy>

namespace {

const QString kConversation = QStringLiteral("c-draft");
// Far beyond any save or retry delay of the keeper.
constexpr int kPatienceMs = 6000;
constexpr int kKeystrokeGapMs = 150;

std::shared_ptr<Messenger::MessageEntry> conversationEntry()
{
    return listTest::fetcherEntry(kConversation);
}

QList<HostControl::Request> draftRequests()
{
    QList<HostControl::Request> result;
    for (const HostControl::Request& request : HostControl::requestLog()) {
        if (request.path.contains(QStringLiteral("/communications")) || request.path == "/entities")
            result << request;
    }
    return result;
}

QJsonValue bodyValue(const HostControl::Request& request, const QString& key)
{
    return QJsonDocument::fromJson(request.body).object().value(key);
}

QString savedDraftText()
{
    const QList<QJsonObject> drafts = HostControl::drafts(kConversation);
    return drafts.size() == 1 ? drafts.first().value("text").toString() : QString();
}

QString lastThreadMessage()
{
    const QList<QJsonObject> messages = HostControl::threadMessages(kConversation);
    return messages.isEmpty() ? QString() : messages.last().value("text").toString();
}

bool loadConversation(const QJsonObject& extra = {})
{
    HostControl::clearServer();
    const bool loaded = listTest::loadScenario(
        {}, {listTest::conversation(kConversation, QStringLiteral("Printer blocked"), extra)});
    HostControl::clearRequestLog();
    return loaded;
}

} // namespace

class TestDraftMessageItem : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        HostControl::setHoldRequests(false);
        QVERIFY(loadConversation());
    }

    void cleanup() { HostControl::setHoldRequests(false); }

    void aBurstOfTypingIsSavedOnceWithItsLastText()
    {
        auto entry = conversationEntry();
        entry->draftText = QStringLiteral("kept");
        DraftMessageItem keeper(nullptr, entry);
        keeper.setDraftText(QStringLiteral("kept"));
        QVERIFY(!keeper.isBusy());

        keeper.setDraftText(QStringLiteral("a"));
        keeper.setDraftText(QStringLiteral("ab"));
        keeper.setDraftText(QStringLiteral("abc"));
        QVERIFY(keeper.isBusy());
        QVERIFY(draftRequests().isEmpty());
        QTRY_COMPARE(savedDraftText(), QStringLiteral("abc"));
        QTRY_VERIFY(!keeper.isBusy());

        const QList<HostControl::Request> requests = draftRequests();
        QCOMPARE(requests.size(), 1);
        QCOMPARE(requests.first().verb, QByteArray("POST"));
        const QString threadId = DraftMessageItem::defaultThreadId(entry->entity);
        QVERIFY(!threadId.isEmpty());
        QVERIFY(requests.first().path.contains(threadId));
        QCOMPARE(bodyValue(requests.first(), "isDraft"), QJsonValue(true));
        QCOMPARE(DraftMessageItem::entityFrom(entry->draftEntity).id,
                 HostControl::drafts(kConversation).first().value("id").toString());
    }

    void typingThatNeverPausesIsStillSaved()
    {
        // The save falls due a second after the first keystroke of a burst, not after the last one.
        DraftMessageItem keeper(nullptr, conversationEntry());
        QString text;
        for (int key = 0; key < 15 && draftRequests().isEmpty(); ++key) {
            keeper.setDraftText(text += QLatin1Char('x'));
            QTest::qWait(kKeystrokeGapMs);
        }
        QVERIFY(!draftRequests().isEmpty());
    }

    void aSaveDueWhileARequestIsInFlightWaitsThreeSeconds()
    {
        DraftMessageItem keeper(nullptr, conversationEntry());
        HostControl::setHoldRequests(true);
        keeper.setDraftText(QStringLiteral("first"));
        QTRY_COMPARE(HostControl::pendingRequests().size(), 1);

        keeper.setDraftText(QStringLiteral("first and more"));
        // The second save falls due after a second and finds the first still in flight: postponed.
        QTest::qWait(DraftMessageItem::kSaveDelayMs + 300);
        QCOMPARE(draftRequests().size(), 1);
        QVERIFY(keeper.isBusy());

        HostControl::releaseAllRequests();
        QTRY_COMPARE(savedDraftText(), QStringLiteral("first"));
        QCOMPARE(draftRequests().size(), 1);

        // The retry replaces the created draft rather than creating another one.
        HostControl::setHoldRequests(false);
        QTRY_COMPARE_WITH_TIMEOUT(draftRequests().size(), 2, kPatienceMs);
        QCOMPARE(draftRequests().last().verb, QByteArray("PUT"));
        QTRY_COMPARE(savedDraftText(), QStringLiteral("first and more"));
        QCOMPARE(HostControl::drafts(kConversation).size(), 1);
    }

    void clearingTheTextDeletesOnlyADraftTheServerHas()
    {
        auto entry = conversationEntry();
        EntityDto::EntityDto unsaved;
        unsaved.id = QStringLiteral("local-only");
        entry->draftEntity = QVariant::fromValue(unsaved);
        entry->draftText = QStringLiteral("x");
        DraftMessageItem unsavedKeeper(nullptr, entry);
        unsavedKeeper.setDraftText(QString());
        QTRY_VERIFY(!unsavedKeeper.isBusy());
        QVERIFY(draftRequests().isEmpty());

        QVERIFY(loadConversation({{"draft", QJsonObject{{"text", "Old"}}}}));
        entry = conversationEntry();
        QCOMPARE(entry->draftText, QStringLiteral("Old"));
        QVERIFY(entry->draftEntity.isValid());
        DraftMessageItem keeper(nullptr, entry);
        keeper.setDraftText(QString());
        QTRY_VERIFY(HostControl::drafts(kConversation).isEmpty());
        QCOMPARE(draftRequests().size(), 1);
        QCOMPARE(draftRequests().first().verb, QByteArray("DELETE"));
        QTRY_VERIFY(!entry->draftEntity.isValid());
    }

    void aFailedSaveChangesNothing()
    {
        auto entry = conversationEntry();
        DraftMessageItem keeper(nullptr, entry);
        HostControl::failNextRequest(QStringLiteral("/communications"), 500, QStringLiteral("Down"));
        keeper.setDraftText(QStringLiteral("lost?"));
        QTRY_COMPARE(draftRequests().size(), 1);
        QTRY_VERIFY(!keeper.isBusy());
        QCOMPARE(entry->draftText, QStringLiteral("lost?"));
        QVERIFY(!entry->draftEntity.isValid());
        QVERIFY(HostControl::drafts(kConversation).isEmpty());
    }

    void sendingPostsTheRealMessageAndDeletesTheDraft()
    {
        auto entry = conversationEntry();
        DraftMessageItem keeper(nullptr, entry);
        keeper.setDraftText(QStringLiteral("Draft first"));
        QTRY_COMPARE(savedDraftText(), QStringLiteral("Draft first"));
        QTRY_VERIFY(!keeper.isBusy());
        HostControl::clearRequestLog();

        CommunicationEntityCreateHandler* handler = keeper.sendDraft({});
        QVERIFY(handler);
        QSignalSpy finished(handler, &CAbstractRestApi::finished);
        QVERIFY(entry->draftText.isEmpty());
        QVERIFY(!entry->draftEntity.isValid());
        QVERIFY(finished.wait());
        QCOMPARE(finished.first().first(), QVariant(true));

        QTRY_VERIFY(HostControl::drafts(kConversation).isEmpty());
        const QList<HostControl::Request> requests = draftRequests();
        QCOMPARE(requests.size(), 2);
        QCOMPARE(requests.first().verb, QByteArray("DELETE"));
        QCOMPARE(requests.last().verb, QByteArray("POST"));
        QCOMPARE(bodyValue(requests.last(), "isDraft"), QJsonValue(false));
        QCOMPARE(bodyValue(requests.last(), "text"), QJsonValue("Draft first"));
        QTRY_COMPARE(lastThreadMessage(), QStringLiteral("Draft first"));
    }

    void aSendThatOvertakesACreatedDraftDiscardsIt()
    {
        auto entry = conversationEntry();
        DraftMessageItem keeper(nullptr, entry);
        HostControl::setHoldRequests(true);
        keeper.setDraftText(QStringLiteral("Quick"));
        QTRY_COMPARE(HostControl::pendingRequests().size(), 1);
        const int draftCreation = HostControl::pendingRequests().first().id;
        QVERIFY(!keeper.isDiscarding());

        QVERIFY(keeper.sendDraft({}));
        QVERIFY(keeper.isDiscarding());
        QTRY_COMPARE(HostControl::pendingRequests().size(), 2);
        QCOMPARE(bodyValue(HostControl::pendingRequests().last(), "isDraft"), QJsonValue(false));

        // The draft is created after the send started: the keeper deletes it at once and keeps nothing.
        QVERIFY(HostControl::releaseRequest(draftCreation));
        HostControl::setHoldRequests(false);
        HostControl::releaseAllRequests();
        QTRY_VERIFY(HostControl::drafts(kConversation).isEmpty() && !lastThreadMessage().isEmpty());
        QTRY_COMPARE(draftRequests().last().verb, QByteArray("DELETE"));
        QVERIFY(!entry->draftEntity.isValid());
        QVERIFY(entry->draftText.isEmpty());
        QCOMPARE(lastThreadMessage(), QStringLiteral("Quick"));
    }

    void withoutThreadAttributeTheThreadIdIsEmpty()
    {
        auto entry = std::make_shared<Messenger::MessageEntry>();
        entry->id = QStringLiteral("orphan");
        entry->entity = QVariant(42);
        QCOMPARE(DraftMessageItem::defaultThreadId(entry->entity), QString());
        DraftMessageItem keeper(nullptr, entry);
        keeper.setDraftText(QStringLiteral("Hello"));
        QTRY_COMPARE(draftRequests().size(), 1);
        QTRY_VERIFY(!keeper.isBusy());
        QVERIFY(keeper.sendDraft({}));
        QTRY_COMPARE(draftRequests().size(), 2);
        for (const HostControl::Request& request : draftRequests())
            QCOMPARE(request.path, QStringLiteral("/threads//communications"));
    }
};

HOST_TEST_MAIN(TestDraftMessageItem)
#include "tst_draftmessageitem.moc"
