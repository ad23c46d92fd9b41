// The simulated support server: its answers to requests of any shape (sends stored or refused with their
// status and limits), scripted failures and latency, the control surface that changes its data, and as the
// request handlers and service facades see it: drafts, thread order and threads assigned later.
#include "ChatServiceApi.h"
#include "CommunicationEntityUpdateHandler.h"
#include "GeneratedConversation.h"
#include "HostTestMain.h"
#include "SimulatedServer.h"
#include "TicketServiceApi.h"

#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QNetworkReply>
#include <QSignalSpy>

namespace {

constexpr int kWaitMs = 3000;
constexpr int kMessageLengthLimit = 10;
constexpr int kAttachmentLimit = 1000;
constexpr int kMessagesInConvA = 3;

const QByteArray kScenario = R"({
  "news": [{"id": "n-pinned", "title": "Terms", "pinned": true}],
  "participants": [{"id": "s-anna", "firstName": "Anna", "lastName": "Keller", "nameColor": "#3366cc"}],
  "conversations": [
    {"id": "conv-a", "subject": "Printer", "agent": "s-anna", "created": "-3d",
     "messages": [
       {"id": "m-late", "text": "third", "time": "-1h"},
       {"id": "m-early", "text": "first", "time": "-2d"},
       {"id": "m-mid", "text": "second", "time": "-1d", "sender": "u-self",
        "attachments": [{"id": "att-text", "fileName": "notes.txt", "text": "hello attachment"}]}
     ],
     "draft": {"id": "d-a", "text": "half written"}},
    {"id": "conv-closed", "subject": "Done", "state": "CLOSED", "messages": []}
  ]
})";

QStringList textsOf(const QList<EntityDto::EntityDto>& entities)
{
    QStringList texts;
    for (const EntityDto::EntityDto& entity : entities)
        texts.append(entity.attributeValue(QStringLiteral("TEXT")).toString());
    return texts;
}

bool waitFor(const QSignalSpy& spy)
{
    return QTest::qWaitFor([&] { return spy.count() == 1; }, kWaitMs);
}

QNetworkReply* request(const QByteArray& verb, const QString& path, const QByteArray& body = {})
{
    return SimulatedServer::instance().startRequest(verb, path, body);
}

int threadSize()
{
    return HostControl::threadMessages(QStringLiteral("conv-a")).size();
}

} // namespace

class TestSimulatedServer : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        SimulatedServer::instance().resetForTests();
        QString error;
        QVERIFY2(HostControl::loadScenarioJson(kScenario, QStringLiteral("test.json"), &error),
                 qPrintable(error));
    }

    void answersRequestsOfAnyShape_data()
    {
        QTest::addColumn<QByteArray>("verb");
        QTest::addColumn<QString>("path");
        QTest::addColumn<QJsonObject>("body");
        QTest::addColumn<int>("status");
        const QJsonArray file{QJsonObject{{"fileName", "a.txt"}, {"data", "aGk="}}};
        const QJsonArray exact{
            QJsonObject{{"fileName", "a.bin"}, {"data", QString(QByteArray(1000, 'x').toBase64())}}};
        const QJsonArray large{
            QJsonObject{{"fileName", "a.bin"}, {"data", QString(QByteArray(1500, 'x').toBase64())}}};
        const QJsonArray unreadable{QJsonObject{{"fileName", "a.txt"}, {"unreadable", true}}};
        const auto row = [](const char* name, const char* verb, const char* path, const QJsonObject& body,
                            int status) {
            QTest::newRow(name) << QByteArray(verb) << QString(path) << body << status;
        };
        row("unknown verb", "PATCH", "/news", {}, 404);
        row("unknown path", "GET", "/nowhere", {}, 404);
        row("thread of nothing", "GET", "/threads/nowhere/communications", {}, 404);
        row("unreadable upload", "POST", "/threads/conv-a/communications",
            {{"text", "x"}, {"attachments", unreadable}}, 400);
        row("edit of nothing", "PUT", "/communications/nope", {{"text", "x"}}, 404);
        row("edit too long", "PUT", "/communications/m-mid", {{"text", "eleven char"}}, 400);
        row("closed conversation", "POST", "/threads/conv-closed/communications", {{"text", "x"}}, 409);
        row("draft in a closed conversation", "POST", "/threads/conv-closed/communications",
            {{"text", "x"}, {"isDraft", true}}, 201);
        row("text above the limit", "POST", "/threads/conv-a/communications", {{"text", "eleven char"}}, 400);
        row("files above the limit", "POST", "/threads/conv-a/communications",
            {{"text", "x"}, {"attachments", large}}, 413);
        row("exactly the limits", "POST", "/threads/conv-a/communications",
            {{"text", "ten chars!"}, {"attachments", exact}}, 201);
        row("edit with a file", "PUT", "/communications/m-mid", {{"text", "x"}, {"attachments", file}}, 200);
        row("draft sent", "PUT", "/communications/d-a",
            {{"text", "sent"}, {"isDraft", false}, {"attachments", file}}, 200);
        row("delete nothing", "DELETE", "/entities", {{"ids", QJsonArray{"nope"}}}, 404);
        row("delete a message", "DELETE", "/entities", {{"ids", QJsonArray{"m-early"}}}, 200);
        row("download of nothing", "GET", "/attachments/nope", {}, 404);
        row("ticket without subject", "POST", "/tickets", {{"subject", " "}, {"message", "x"}}, 400);
        row("ticket too long", "POST", "/tickets", {{"subject", "S"}, {"message", "eleven char"}}, 400);
        row("ticket with a file", "POST", "/tickets",
            {{"subject", "S"}, {"message", "x"}, {"attachments", file}}, 201);
        row("unknown mark", "PUT", "/entries/conv-a/starred", {}, 400);
        row("mark of nothing", "PUT", "/entries/nope/read", {}, 404);
        row("pinned entry hidden", "PUT", "/entries/n-pinned/hidden", {}, 409);
        row("conversation hidden", "PUT", "/entries/conv-a/hidden", {}, 200);
        row("news list", "GET", "/news", {}, 200);
        row("ticket list", "GET", "/tickets", {}, 200);
    }

    void answersRequestsOfAnyShape()
    {
        QFETCH(QByteArray, verb);
        QFETCH(QString, path);
        QFETCH(QJsonObject, body);
        QFETCH(int, status);
        HostControl::setMessageLengthLimit(kMessageLengthLimit);
        HostControl::setAttachmentSizeLimit(kAttachmentLimit);
        const QJsonObject before = HostControl::serverSnapshot();
        std::unique_ptr<QNetworkReply> reply(request(verb, path, QJsonDocument(body).toJson()));
        QVERIFY(QTest::qWaitFor([&] { return reply->isFinished(); }, kWaitMs));
        QCOMPARE(reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(), status);
        const QByteArray answer = reply->readAll();
        // Refusals change nothing and say why; what changes data shows in the server's data.
        QCOMPARE(reply->error() != QNetworkReply::NoError, status >= 400);
        QCOMPARE(HostControl::serverSnapshot() == before, status >= 400 || verb == "GET");
        if (status >= 400)
            QCOMPARE(QJsonDocument::fromJson(answer).object().value("status").toInt(), status);
        else
            QVERIFY(!QJsonDocument::fromJson(answer).isNull());
    }

    void scriptedFailuresAndLatencyApplyToTheNextRequests()
    {
        HostControl::failNextRequest(QStringLiteral("/news"), 418, QString());
        HostControl::failNextRequest(QString(), 502, QStringLiteral("Bad gateway"));
        HostControl::setLatency(40);
        QElapsedTimer clock;
        clock.start();
        std::unique_ptr<QNetworkReply> first(request("GET", "/tickets"));
        std::unique_ptr<QNetworkReply> second(request("GET", "/tickets"));
        std::unique_ptr<QNetworkReply> news(request("GET", "/news"));
        QVERIFY(QTest::qWaitFor(
            [&] { return first->isFinished() && second->isFinished() && news->isFinished(); }, kWaitMs));
        QVERIFY(clock.elapsed() >= 40);
        HostControl::setLatency(0);
        QCOMPARE(first->error(), QNetworkReply::UnknownServerError);
        QCOMPARE(first->errorString(), QStringLiteral("Bad gateway"));
        QCOMPARE(second->error(), QNetworkReply::NoError);
        QCOMPARE(news->error(), QNetworkReply::UnknownContentError);
        QCOMPARE(news->errorString(), QStringLiteral("Request failed"));
    }

    void theControlSurfaceChangesTheData()
    {
        SimulatedServer& server = SimulatedServer::instance();
        QSignalSpy participants(&server, &SimulatedServer::participantsChanged);
        QSignalSpy sync(&server, &SimulatedServer::syncViewsRequested);
        QSignalSpy lists(&server, &SimulatedServer::newsListChanged);
        const QJsonObject before = HostControl::serverSnapshot();
        // Objects the scenario format refuses change nothing.
        HostControl::addNewsEntry({{"id", 5}});
        HostControl::addConversation({{"id", "c-new"}, {"state", "LOST"}});
        HostControl::addParticipant({{"id", "p"}, {"nameColor", "blurple"}});
        QVERIFY(HostControl::postMessage("conv-a", "file without content", {}, {{{"fileName", "x.bin"}}})
                    .isEmpty());
        QCOMPARE(HostControl::serverSnapshot(), before);

        const QString id =
            HostControl::postMessage("conv-a", "with a log", {}, {{{"fileName", "log.txt"}, {"text", "hi"}}});
        QVERIFY(!id.isEmpty());
        const QJsonArray files = HostControl::threadMessages("conv-a").last().value("attachments").toArray();
        QCOMPARE(files.size(), 1);
        QCOMPARE(files.first()["fileName"].toString(), QStringLiteral("log.txt"));
        QVERIFY(HostControl::postMessage("nowhere", "lost").isEmpty());
        HostControl::renameParticipant("s-anna", "Ann", "Kay");
        HostControl::renameParticipant("nobody", "No", "One");
        HostControl::setConversationState("conv-a", "CLOSED");
        HostControl::setConversationState("nowhere", "CLOSED");
        HostControl::emitSyncViewsRequest();
        QVERIFY(QTest::qWaitFor(
            [&] { return !participants.isEmpty() && !sync.isEmpty() && !lists.isEmpty(); }, kWaitMs));
        const QJsonObject after = HostControl::serverSnapshot();
        QCOMPARE(after["participants"][0]["firstName"].toString(), QStringLiteral("Ann"));
        QCOMPARE(after["conversations"][0]["state"].toString(), QStringLiteral("CLOSED"));
        // Support's new message leaves the conversation unread.
        QVERIFY(!HostControl::isNewsEntryRead("conv-a") && !HostControl::isNewsEntryHidden("conv-a"));
        QVERIFY(!HostControl::isNewsEntryRead("nowhere") && !HostControl::isNewsEntryHidden("nowhere"));
    }

    void threadIsOldestFirstWithoutDraftsAndEditsReplaceTheirOlderVersion()
    {
        const QString newId =
            HostControl::editMessage(QStringLiteral("m-mid"), QStringLiteral("second, edited"));
        QVERIFY(!newId.isEmpty());
        auto* handler = ChatServiceApi::startFetchThreadCommunications(QStringLiteral("conv-a"));
        QSignalSpy fetched(handler, &CustomerEntitiesQueryVectorHandler::entitiesFetched);
        QVERIFY(waitFor(fetched));
        const auto entities = fetched.first().first().value<QList<EntityDto::EntityDto>>();
        QCOMPARE(textsOf(entities), (QStringList{"first", "second, edited", "third"}));
        for (const EntityDto::EntityDto& entity : entities)
            QVERIFY(!entity.createdAt.isEmpty());
        const EntityDto::EntityDto& edited = entities.at(1);
        QCOMPARE(edited.id, newId);
        QCOMPARE(edited.attributeValue(QStringLiteral("EDIT_VERSION")).toInt(), 2);
        QCOMPARE(edited.attributeValue(QStringLiteral("VERSION_KEY")).toString(), QStringLiteral("m-mid"));
        QCOMPARE(edited.attributeValue(QStringLiteral("ATTACHMENTS")).toList().size(), 1);
    }

    void generatedConversationsAreLongVariedAndRepeatable()
    {
        const QString id = HostControl::addGeneratedConversation(400, 7);
        const QList<QJsonObject> messages = HostControl::threadMessages(id);
        QCOMPARE(messages.size(), 400);
        QSet<QString> senders;
        int withFiles = 0;
        int tables = 0;
        for (const QJsonObject& message : messages) {
            senders.insert(message.value(QStringLiteral("sender")).toString());
            withFiles += message.value(QStringLiteral("attachments")).toArray().isEmpty() ? 0 : 1;
            tables +=
                message.value(QStringLiteral("text")).toString().contains(QStringLiteral("|---|")) ? 1 : 0;
        }
        QCOMPARE(senders.size(), 3);
        QVERIFY(withFiles > 5 && tables > 5);
        QCOMPARE(GeneratedConversation::make(QStringLiteral("x"), 50, 7),
                 GeneratedConversation::make(QStringLiteral("x"), 50, 7));
        QVERIFY(GeneratedConversation::make(QStringLiteral("x"), 50, 7) !=
                GeneratedConversation::make(QStringLiteral("x"), 50, 8));
    }

    void draftsCreateUpdateDeleteRoundTrip()
    {
        const QString conv = QStringLiteral("conv-a");
        CommunicationEntityCreateHandler create;
        QSignalSpy created(&create, &CAbstractRestApi::finished);
        create.startCreateCommunication({conv, QStringLiteral("draft one"), {}, true});
        QVERIFY(waitFor(created));
        const EntityDto::EntityDto draft = create.getMessageEntity();
        QVERIFY(!draft.id.isEmpty());
        QVERIFY(!draft.createdAt.isEmpty());
        QCOMPARE(ChatServiceApi::draftMessage(QVariant::fromValue(draft)), QStringLiteral("draft one"));
        QCOMPARE(HostControl::drafts(conv).size(), 2);
        QCOMPARE(threadSize(), kMessagesInConvA);

        CommunicationEntityUpdateHandler update;
        QSignalSpy updated(&update, &CAbstractRestApi::finished);
        update.startUpdateCommunication({draft, QStringLiteral("draft two"), {}, true});
        QVERIFY(waitFor(updated));
        QCOMPARE(update.getMessageEntity().id, draft.id);
        QCOMPARE(update.getMessageEntity().revision, draft.revision + 1);
        QCOMPARE(HostControl::drafts(conv).last()[QStringLiteral("text")].toString(),
                 QStringLiteral("draft two"));

        DeleteEntityHandler remove;
        QSignalSpy removed(&remove, &CAbstractRestApi::finished);
        remove.startDeleteEntity({draft.id, QStringLiteral("d-a")});
        QVERIFY(waitFor(removed));
        QCOMPARE(removed.first().first().toBool(), true);
        QVERIFY(HostControl::drafts(conv).isEmpty());
        QCOMPARE(ChatServiceApi::draftMessage(QVariant(QStringLiteral("not an entity"))), QString());
    }

    void ticketGetsItsThreadLater()
    {
        SimulatedServer::instance().setThreadAssignDelay(50);
        auto* handler =
            TicketServiceApi::startCreateTicket(QStringLiteral("It broke"), QStringLiteral("Help"), {});
        EntityDto::EntityDto ticket;
        connect(handler, &CAbstractRestApi::finished, this, [&] { ticket = handler->getNewTicketEntity(); });
        QVERIFY(QTest::qWaitFor([&] { return !ticket.id.isEmpty(); }, kWaitMs));
        QCOMPARE(ticket.attributeValue(QStringLiteral("SUBJECT")).toString(), QStringLiteral("Help"));
        QCOMPARE(ticket.attributeValue(QStringLiteral("FIRST_MESSAGE")).toString(),
                 QStringLiteral("It broke"));
        QVERIFY(ticket.attributeValue(QStringLiteral("CHAT_DEFAULT_THREAD_ID")).toString().isEmpty());
        QVERIFY(!ticket.createdAt.isEmpty());
        QVERIFY(QTest::qWaitFor(
            [&] { return !SimulatedServer::instance().data().conversation(ticket.id)->threadId.isEmpty(); },
            kWaitMs));
    }
};

HOST_TEST_MAIN(TestSimulatedServer)
#include "tst_simulatedserver.moc"
