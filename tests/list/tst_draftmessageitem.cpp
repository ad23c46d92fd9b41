// DraftMessageItem against the simulated server: when drafts are saved, replaced and deleted, how a send
// that overtakes a draft being created is handled, and how the real message is posted.
#include "HostTestMain.h"

#include "CCommunicationObjectModel.h"
#include "DraftMessageItem.h"
#include "ListTestSupport.h"

#include <QJsonDocument>
#include <QSignalSpy>

using listTest::conversation;

namespace {

const QString kConversation = QStringLiteral("c-draft");
// Far beyond any save or retry delay of the keeper.
constexpr int kPatienceMs = 6000;

std::shared_ptr<Messenger::MessageEntry> conversationEntry()
{
    for (const auto& entry : listTest::fetcher()->getNewsList(CNewsFetcher::FilterIssues)) {
        if (entry->id == kConversation)
            return entry;
    }
    return nullptr;
}

QList<HostControl::Request> draftRequests()
{
    QList<HostControl::Request> result;
    for (const HostControl::Request& request : HostControl::requestLog()) {
        if (request.path.contains(QStringLiteral("/communications")) ||
            request.path == QStringLiteral("/entities"))
            result << request;
    }
    return result;
}

QJsonObject bodyOf(const HostControl::Request& request)
{
    return QJsonDocument::fromJson(request.body).object();
}

QString draftText()
{
    const QList<QJsonObject> drafts = HostControl::drafts(kConversation);
    return drafts.size() == 1 ? drafts.first().value(QStringLiteral("text")).toString() : QString();
}

} // namespace

class TestDraftMessageItem : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        HostControl::setHoldRequests(false);
        HostControl::clearServer();
        QVERIFY(listTest::loadScenario({}, {conversation(kConversation, QStringLiteral("Printer blocked"))}));
        HostControl::clearRequestLog();
    }

    void cleanup() { HostControl::setHoldRequests(false); }

    void aBurstOfTypingIsSavedOnceWithItsLastText()
    {
        DraftMessageItem keeper(nullptr, conversationEntry());
        keeper.setDraftText(QStringLiteral("a"));
        keeper.setDraftText(QStringLiteral("ab"));
        keeper.setDraftText(QStringLiteral("abc"));
        QVERIFY(keeper.isBusy());
        QVERIFY(draftRequests().isEmpty());
        QTRY_COMPARE(draftText(), QStringLiteral("abc"));
        QTRY_VERIFY(!keeper.isBusy());

        const QList<HostControl::Request> requests = draftRequests();
        QCOMPARE(requests.size(), 1);
        QCOMPARE(requests.first().verb, QByteArray("POST"));
        const QString threadId = DraftMessageItem::defaultThreadId(conversationEntry()->entity);
        QVERIFY(!threadId.isEmpty());
        QVERIFY(requests.first().path.contains(threadId));
        QCOMPARE(bodyOf(requests.first()).value(QStringLiteral("isDraft")), QJsonValue(true));
        QCOMPARE(DraftMessageItem::entityFrom(conversationEntry()->draftEntity).id,
                 HostControl::drafts(kConversation).first().value(QStringLiteral("id")).toString());
    }

    void typingThatNeverPausesIsStillSaved()
    {
        // The save falls due a second after the first keystroke of a burst, not after the last one.
        DraftMessageItem keeper(nullptr, conversationEntry());
        QString text;
        bool savedWhileTyping = false;
        for (int key = 0; key < 15 && !savedWhileTyping; ++key) {
            text += QLatin1Char('x');
            keeper.setDraftText(text);
            QTest::qWait(150);
            savedWhileTyping = !draftRequests().isEmpty();
        }
        QVERIFY(savedWhileTyping);
    }

    void sameTextSchedulesNothing()
    {
        auto entry = conversationEntry();
        entry->draftText = QStringLiteral("kept");
        DraftMessageItem keeper(nullptr, entry);
        keeper.setDraftText(QStringLiteral("kept"));
        QVERIFY(!keeper.isBusy());
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
        QTRY_COMPARE(draftText(), QStringLiteral("first"));
        QCOMPARE(draftRequests().size(), 1);

        // The retry replaces the created draft rather than creating another one.
        HostControl::setHoldRequests(false);
        QTRY_COMPARE_WITH_TIMEOUT(draftRequests().size(), 2, kPatienceMs);
        QCOMPARE(draftRequests().last().verb, QByteArray("PUT"));
        QTRY_COMPARE(draftText(), QStringLiteral("first and more"));
        QCOMPARE(HostControl::drafts(kConversation).size(), 1);
    }

    void clearingTheTextDeletesTheSavedDraft()
    {
        HostControl::clearServer();
        QVERIFY(listTest::loadScenario(
            {}, {conversation(kConversation, QStringLiteral("Printer blocked"),
                              {{QStringLiteral("draft"),
                                QJsonObject{{QStringLiteral("text"), QStringLiteral("Old")}}}})}));
        HostControl::clearRequestLog();
        auto entry = conversationEntry();
        QCOMPARE(entry->draftText, QStringLiteral("Old"));
        QVERIFY(entry->draftEntity.isValid());

        DraftMessageItem keeper(nullptr, entry);
        keeper.setDraftText(QString());
        QTRY_VERIFY(HostControl::drafts(kConversation).isEmpty());
        QCOMPARE(draftRequests().size(), 1);
        QCOMPARE(draftRequests().first().verb, QByteArray("DELETE"));
        QTRY_VERIFY(!entry->draftEntity.isValid());
    }

    void clearingANeverSavedDraftSendsNothing()
    {
        auto entry = conversationEntry();
        EntityDto::EntityDto unsaved;
        unsaved.id = QStringLiteral("local-only");
        entry->draftEntity = QVariant::fromValue(unsaved);
        entry->draftText = QStringLiteral("x");
        DraftMessageItem keeper(nullptr, entry);
        keeper.setDraftText(QString());
        QTRY_VERIFY(!keeper.isBusy());
        QVERIFY(draftRequests().isEmpty());
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
        QTRY_COMPARE(draftText(), QStringLiteral("Draft first"));
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
        QStringList verbs;
        for (const HostControl::Request& request : draftRequests())
            verbs << QString::fromLatin1(request.verb);
        QCOMPARE(verbs, (QStringList{"DELETE", "POST"}));
        QCOMPARE(bodyOf(draftRequests().last()).value(QStringLiteral("isDraft")), QJsonValue(false));
        QCOMPARE(bodyOf(draftRequests().last()).value(QStringLiteral("text")), QJsonValue("Draft first"));
        QTRY_VERIFY(!HostControl::threadMessages(kConversation).isEmpty());
        QCOMPARE(HostControl::threadMessages(kConversation).last().value(QStringLiteral("text")).toString(),
                 QStringLiteral("Draft first"));
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

        CommunicationEntityCreateHandler* handler = keeper.sendDraft({});
        QVERIFY(handler);
        QVERIFY(keeper.isDiscarding());
        QTRY_COMPARE(HostControl::pendingRequests().size(), 2);
        QCOMPARE(bodyOf(HostControl::pendingRequests().last()).value(QStringLiteral("isDraft")),
                 QJsonValue(false));

        // The draft is created after the send started: the keeper deletes it at once and keeps nothing.
        QVERIFY(HostControl::releaseRequest(draftCreation));
        HostControl::setHoldRequests(false);
        HostControl::releaseAllRequests();
        QTRY_VERIFY(HostControl::drafts(kConversation).isEmpty() &&
                    !HostControl::threadMessages(kConversation).isEmpty());
        QTRY_COMPARE(draftRequests().last().verb, QByteArray("DELETE"));
        QVERIFY(!entry->draftEntity.isValid());
        QVERIFY(entry->draftText.isEmpty());
        QCOMPARE(HostControl::threadMessages(kConversation).last().value(QStringLiteral("text")).toString(),
                 QStringLiteral("Quick"));
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
        QCOMPARE(draftRequests().first().path, QStringLiteral("/threads//communications"));
        QTRY_VERIFY(!keeper.isBusy());

        CommunicationEntityCreateHandler* handler = keeper.sendDraft({});
        QVERIFY(handler);
        QTRY_COMPARE(draftRequests().size(), 2);
        QCOMPARE(draftRequests().last().path, QStringLiteral("/threads//communications"));
    }

    void draftsSurviveARebuildOfTheList()
    {
        CCommunicationObjectModel model;
        model.populate();
        model.setDraftText(model.indexForKey(kConversation), QStringLiteral("Written before the refresh"));
        QPointer<DraftMessageItem> keeper = model.draftKeeper(kConversation);
        QVERIFY(keeper && keeper->isBusy());

        // The list is rebuilt while the save is still due: the same keeper saves the text.
        QSignalSpy populated(&model, &CCommunicationObjectModel::modelPopulated);
        HostControl::emitNewsChanged();
        QTRY_COMPARE(populated.size(), 1);
        QCOMPARE(model.draftKeeper(kConversation), keeper.data());
        QTRY_COMPARE(draftText(), QStringLiteral("Written before the refresh"));
        QCOMPARE(draftRequests().size(), 1);

        // A list built later shows the saved draft with its server identity.
        QTRY_VERIFY(!keeper->isBusy());
        CCommunicationObjectModel later;
        later.populate();
        const QModelIndex talk = later.indexForKey(kConversation);
        QCOMPARE(talk.data(CCommunicationObjectModel::DraftTextRole).toString(),
                 QStringLiteral("Written before the refresh"));
        QCOMPARE(talk.data(CCommunicationObjectModel::DraftIdRole).toString(),
                 HostControl::drafts(kConversation).first().value(QStringLiteral("id")).toString());
    }
};

HOST_TEST_MAIN(TestDraftMessageItem)
#include "tst_draftmessageitem.moc"
