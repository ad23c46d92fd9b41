// The simulated support server as the request handlers and service facades see it: answers arrive from the
// event loop, errors carry status and message, limits, holding, latency, drafts, downloads and thread order.
#include "ChatServiceApi.h"
#include "CommunicationEntityUpdateHandler.h"
#include "GeneratedConversation.h"
#include "HostTestMain.h"
#include "SimulatedServer.h"
#include "TicketServiceApi.h"

#include <QJsonArray>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

namespace {

constexpr int kWaitMs = 3000;
constexpr int kMessageLengthLimit = 10;
constexpr int kAttachmentLimit = 1000;
constexpr int kMessagesInConvA = 3;

const QByteArray kScenario = R"({
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

    void answersAfterTheCallReturns_data()
    {
        QTest::addColumn<QString>("kind");
        for (const char* kind : {"fetch", "create", "delete", "download", "ticket", "fail"})
            QTest::newRow(kind) << kind;
    }

    void answersAfterTheCallReturns()
    {
        QFETCH(QString, kind);
        QTemporaryDir dir;
        const QString conv = QStringLiteral("conv-a");
        CAbstractRestApi* handler = nullptr;
        if (kind == QLatin1String("fetch"))
            handler = ChatServiceApi::startFetchThreadCommunications(conv);
        else if (kind == QLatin1String("create"))
            handler = ChatServiceApi::startCreateThreadMessage(conv, QStringLiteral("hi"), {}, false);
        else if (kind == QLatin1String("delete"))
            handler = ChatServiceApi::startDeleteEntities({QStringLiteral("d-a")});
        else if (kind == QLatin1String("download"))
            handler = ChatServiceApi::startDownloadFile(
                QStringLiteral("att-text"), dir.filePath(QStringLiteral("n.txt")), ExistingFileOverwrite);
        else if (kind == QLatin1String("ticket"))
            handler =
                TicketServiceApi::startCreateTicket(QStringLiteral("body"), QStringLiteral("subject"), {});
        else
            handler = ChatServiceApi::startFetchThreadCommunications(QStringLiteral("no-such-thread"));
        QSignalSpy finished(handler, &CAbstractRestApi::finished);
        QSignalSpy errors(handler, &CAbstractRestApi::requestErrorOccured);
        QCOMPARE(finished.count() + errors.count(), 0);
        QVERIFY(handler->isRunning());
        QVERIFY(waitFor(finished));
        QCOMPARE(finished.first().first().toBool(), kind != QLatin1String("fail"));
    }

    void scriptedFailureCarriesStatusAndMessageOnce_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("message");
        QTest::addColumn<int>("networkError");
        QTest::newRow("unavailable") << 503 << "Service down" << int(QNetworkReply::ServiceUnavailableError);
        QTest::newRow("not found") << 404 << "Gone fishing" << int(QNetworkReply::ContentNotFoundError);
        QTest::newRow("too large") << 413 << "Payload Too Large" << int(QNetworkReply::UnknownContentError);
    }

    void scriptedFailureCarriesStatusAndMessageOnce()
    {
        QFETCH(int, status);
        QFETCH(QString, message);
        QFETCH(int, networkError);
        HostControl::failNextRequest(QStringLiteral("/threads/"), status, message);
        auto* handler = ChatServiceApi::startFetchThreadCommunications(QStringLiteral("conv-a"));
        QSignalSpy errors(handler, &CAbstractRestApi::requestErrorOccured);
        QSignalSpy fetched(handler, &CustomerEntitiesQueryVectorHandler::entitiesFetched);
        QSignalSpy finished(handler, &CAbstractRestApi::finished);
        QVERIFY(waitFor(finished));
        QCOMPARE(errors.count(), 1);
        QCOMPARE(errors.first().at(0).toInt(), status);
        QCOMPARE(int(errors.first().at(1).value<QNetworkReply::NetworkError>()), networkError);
        QCOMPARE(errors.first().at(2).toString(), message);
        QCOMPARE(fetched.count(), 0);
        QCOMPARE(finished.first().first().toBool(), false);

        auto* again = ChatServiceApi::startFetchThreadCommunications(QStringLiteral("conv-a"));
        QSignalSpy finishedAgain(again, &CAbstractRestApi::finished);
        QVERIFY(waitFor(finishedAgain));
        QCOMPARE(finishedAgain.first().first().toBool(), true);
    }

    void sendIsStoredOrRefusedWithItsStatus_data()
    {
        QTest::addColumn<QString>("thread");
        QTest::addColumn<int>("textLength");
        QTest::addColumn<QList<int>>("fileSizes");
        QTest::addColumn<int>("status"); // 0: stored
        QTest::newRow("unknown thread") << "nowhere" << 1 << QList<int>{} << 404;
        QTest::newRow("closed conversation") << "conv-closed" << 1 << QList<int>{} << 409;
        QTest::newRow("text above the limit") << "conv-a" << kMessageLengthLimit + 1 << QList<int>{} << 400;
        QTest::newRow("one file above the limit") << "conv-a" << 1 << QList<int>{1500} << 413;
        QTest::newRow("files summing above the limit") << "conv-a" << 1 << QList<int>{600, 600} << 413;
        QTest::newRow("exactly the limits") << "conv-a" << kMessageLengthLimit << QList<int>{1000} << 0;
        QTest::newRow("two small files") << "conv-a" << 1 << QList<int>{300, 400} << 0;
    }

    void sendIsStoredOrRefusedWithItsStatus()
    {
        QFETCH(QString, thread);
        QFETCH(int, textLength);
        QFETCH(QList<int>, fileSizes);
        QFETCH(int, status);
        HostControl::setMessageLengthLimit(kMessageLengthLimit);
        HostControl::setAttachmentSizeLimit(kAttachmentLimit);
        QTemporaryDir dir;
        QList<AttachmentEntity> files;
        for (int i = 0; i < fileSizes.size(); ++i) {
            QFile file(dir.filePath(QStringLiteral("file%1.bin").arg(i)));
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(QByteArray(fileSizes.at(i), char('a' + i)));
            files.append({QString(), file.fileName(), {}, {}});
        }
        auto* handler = ChatServiceApi::startCreateThreadMessage(
            thread, QString(textLength, QLatin1Char('x')), files, false);
        QSignalSpy errors(handler, &CAbstractRestApi::requestErrorOccured);
        QSignalSpy finished(handler, &CAbstractRestApi::finished);
        QVERIFY(waitFor(finished));
        QCOMPARE(finished.first().first().toBool(), status == 0);
        if (status != 0) {
            QCOMPARE(errors.first().at(0).toInt(), status);
            if (status == 413)
                QCOMPARE(errors.first().at(2).toString(), QStringLiteral("Payload Too Large"));
            QCOMPARE(threadSize(), kMessagesInConvA);
            return;
        }
        QCOMPARE(threadSize(), kMessagesInConvA + 1);
        const QJsonArray stored = HostControl::threadMessages(QStringLiteral("conv-a"))
                                      .last()[QStringLiteral("attachments")]
                                      .toArray();
        QCOMPARE(stored.size(), fileSizes.size());
        for (int i = 0; i < fileSizes.size(); ++i) {
            QCOMPARE(QByteArray::fromBase64(stored.at(i)[QStringLiteral("data")].toString().toLatin1()),
                     QByteArray(fileSizes.at(i), char('a' + i)));
            QCOMPARE(stored.at(i)[QStringLiteral("fileName")].toString(),
                     QStringLiteral("file%1.bin").arg(i));
        }
    }

    void lengthCounterShowsUsedAndAllowed()
    {
        HostControl::setMessageLengthLimit(kMessageLengthLimit);
        QString counter;
        QVERIFY(ChatServiceApi::checkCommunicationLength(QStringLiteral("0123456789"), counter));
        QCOMPARE(counter, QStringLiteral("10 / 10"));
        QVERIFY(!ChatServiceApi::checkCommunicationLength(QStringLiteral("0123456789A"), counter));
        QCOMPARE(counter, QStringLiteral("11 / 10"));
    }

    void heldRequestsChangeNothingUntilReleasedOrFailedOneByOne()
    {
        HostControl::setHoldRequests(true);
        auto* send = ChatServiceApi::startCreateThreadMessage(QStringLiteral("conv-a"),
                                                              QStringLiteral("later"), {}, false);
        auto* fetch = ChatServiceApi::startFetchThreadCommunications(QStringLiteral("conv-a"));
        QSignalSpy sendFinished(send, &CAbstractRestApi::finished);
        QSignalSpy fetchFinished(fetch, &CAbstractRestApi::finished);
        QSignalSpy fetchErrors(fetch, &CAbstractRestApi::requestErrorOccured);
        QTest::qWait(50);
        QCOMPARE(sendFinished.count() + fetchFinished.count(), 0);
        QCOMPARE(threadSize(), kMessagesInConvA);
        const QList<HostControl::Request> pending = HostControl::pendingRequests();
        QCOMPARE(pending.size(), 2);
        QCOMPARE(pending.at(1).verb, QByteArray("GET"));
        QCOMPARE(pending.at(1).path, QStringLiteral("/threads/conv-a/communications"));

        QVERIFY(HostControl::releaseRequest(pending.at(0).id));
        QVERIFY(!HostControl::releaseRequest(pending.at(0).id));
        QVERIFY(waitFor(sendFinished));
        QCOMPARE(threadSize(), kMessagesInConvA + 1);
        QCOMPARE(fetchFinished.count(), 0);

        QVERIFY(HostControl::failRequest(pending.at(1).id, 500, QStringLiteral("boom")));
        QVERIFY(waitFor(fetchFinished));
        QCOMPARE(fetchFinished.first().first().toBool(), false);
        QCOMPARE(fetchErrors.first().at(0).toInt(), 500);
        QCOMPARE(fetchErrors.first().at(2).toString(), QStringLiteral("boom"));
        QVERIFY(HostControl::pendingRequests().isEmpty());
        const QList<HostControl::Request> log = HostControl::requestLog();
        QCOMPARE(log.size(), 2);
        QVERIFY(log.at(0).answered && log.at(1).answered);
    }

    void latencyDelaysEveryAnswer()
    {
        constexpr int latency = 250;
        HostControl::setLatency(latency);
        auto* handler = ChatServiceApi::startFetchThreadCommunications(QStringLiteral("conv-a"));
        QSignalSpy finished(handler, &CAbstractRestApi::finished);
        QTest::qWait(latency / 2);
        QCOMPARE(finished.count(), 0);
        QVERIFY(waitFor(finished));
    }

    void abortEndsWithOperationCanceled()
    {
        HostControl::setLatency(200);
        auto* handler = ChatServiceApi::startFetchThreadCommunications(QStringLiteral("conv-a"));
        QSignalSpy errors(handler, &CAbstractRestApi::requestErrorOccured);
        QSignalSpy finished(handler, &CAbstractRestApi::finished);
        QSignalSpy fetched(handler, &CustomerEntitiesQueryVectorHandler::entitiesFetched);
        handler->abort();
        QVERIFY(waitFor(finished));
        QCOMPARE(errors.first().at(0).toInt(), 0);
        QCOMPARE(errors.first().at(1).value<QNetworkReply::NetworkError>(),
                 QNetworkReply::OperationCanceledError);
        QCOMPARE(finished.first().first().toBool(), false);
        QTest::qWait(300);
        QCOMPARE(fetched.count(), 0);
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

    void downloadsWriteTheBytesWithProgressAndHonourTheExistingFilePolicy_data()
    {
        QTest::addColumn<QString>("target");
        QTest::addColumn<int>("policy");
        QTest::addColumn<QString>("writtenName");
        QTest::addColumn<QByteArray>("originalAfterwards");
        const QByteArray bytes("hello attachment");
        QTest::newRow("new folders") << "sub/folder/notes.txt" << int(ExistingFileFail) << "notes.txt"
                                     << bytes;
        QTest::newRow("fail") << "notes.txt" << int(ExistingFileFail) << QString() << QByteArray("old");
        QTest::newRow("rename") << "notes.txt" << int(ExistingFileRename) << "notes (2).txt"
                                << QByteArray("old");
        QTest::newRow("overwrite") << "notes.txt" << int(ExistingFileOverwrite) << "notes.txt" << bytes;
    }

    void downloadsWriteTheBytesWithProgressAndHonourTheExistingFilePolicy()
    {
        QFETCH(QString, target);
        QFETCH(int, policy);
        QFETCH(QString, writtenName);
        QFETCH(QByteArray, originalAfterwards);
        QTemporaryDir dir;
        QFile existing(dir.filePath(QStringLiteral("notes.txt")));
        QVERIFY(existing.open(QIODevice::WriteOnly));
        existing.write("old");
        existing.close();

        auto* handler = ChatServiceApi::startDownloadFile(QStringLiteral("att-text"), dir.filePath(target),
                                                          ExistingFilePolicy(policy));
        QSignalSpy progress(handler, &AttachmentsGetHandler::downloadProgress);
        QSignalSpy finished(handler, &CAbstractRestApi::finished);
        QSignalSpy errors(handler, &CAbstractRestApi::requestErrorOccured);
        QString written;
        connect(handler, &CAbstractRestApi::finished, this, [&] { written = handler->downloadedFilePath(); });
        QVERIFY(waitFor(finished));
        const bool ok = !writtenName.isEmpty();
        QCOMPARE(finished.first().first().toBool(), ok);
        QCOMPARE(errors.count(), ok ? 0 : 1);
        QFile original(dir.filePath(target));
        QVERIFY(original.open(QIODevice::ReadOnly));
        QCOMPARE(original.readAll(), originalAfterwards);
        if (!ok)
            return;
        QCOMPARE(written, QFileInfo(dir.filePath(target)).absoluteDir().filePath(writtenName));
        QFile file(written);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("hello attachment"));
        QVERIFY(progress.count() >= 2);
        QCOMPARE(progress.last().at(0).toInt(), 100);
        QCOMPARE(progress.last().at(1).toULongLong(), progress.last().at(2).toULongLong());
        QVERIFY(progress.first().at(1).toULongLong() < progress.last().at(1).toULongLong());
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
