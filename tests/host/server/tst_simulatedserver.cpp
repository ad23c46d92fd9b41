// The simulated support server as the request handlers and service facades see it: answers arrive from the
// event loop, errors carry status and message, limits, holding, latency, drafts, downloads and thread order.
#include "ChatServiceApi.h"
#include "CommunicationEntityUpdateHandler.h"
#include "HostTestMain.h"
#include "SimulatedServer.h"
#include "TicketServiceApi.h"

#include <QElapsedTimer>
#include <QJsonArray>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

namespace {

constexpr int kWaitMs = 3000;

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

SimulatedServer& server()
{
    return SimulatedServer::instance();
}

QStringList textsOf(const QList<EntityDto::EntityDto>& entities)
{
    QStringList texts;
    for (const EntityDto::EntityDto& entity : entities)
        texts.append(entity.attributeValue(QStringLiteral("TEXT")).toString());
    return texts;
}

} // namespace

class TestSimulatedServer : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        server().resetForTests();
        QString error;
        QVERIFY2(HostControl::loadScenarioJson(kScenario, QStringLiteral("test.json"), &error),
                 qPrintable(error));
    }

    void answersAfterTheCallReturns_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::newRow("fetch thread") << "fetch";
        QTest::newRow("create message") << "create";
        QTest::newRow("delete") << "delete";
        QTest::newRow("download") << "download";
        QTest::newRow("create ticket") << "ticket";
        QTest::newRow("failing request") << "fail";
    }

    void answersAfterTheCallReturns()
    {
        QFETCH(QString, kind);
        QTemporaryDir dir;
        CAbstractRestApi* handler = nullptr;
        if (kind == QLatin1String("fetch"))
            handler = ChatServiceApi::startFetchThreadCommunications(QStringLiteral("conv-a"));
        else if (kind == QLatin1String("create"))
            handler = ChatServiceApi::startCreateThreadMessage(QStringLiteral("conv-a"), QStringLiteral("hi"),
                                                               {}, false);
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
        QCOMPARE(finished.count(), 0);
        QCOMPARE(errors.count(), 0);
        QVERIFY(handler->isRunning());
        QVERIFY(QTest::qWaitFor([&] { return finished.count() == 1; }, kWaitMs));
        QCOMPARE(finished.first().first().toBool(), kind != QLatin1String("fail"));
    }

    void errorsCarryStatusAndMessage_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("message");
        QTest::addColumn<int>("networkError");
        QTest::newRow("unavailable") << 503 << "Service down" << int(QNetworkReply::ServiceUnavailableError);
        QTest::newRow("not found") << 404 << "Gone fishing" << int(QNetworkReply::ContentNotFoundError);
        QTest::newRow("too large") << 413 << "Payload Too Large" << int(QNetworkReply::UnknownContentError);
    }

    void errorsCarryStatusAndMessage()
    {
        QFETCH(int, status);
        QFETCH(QString, message);
        QFETCH(int, networkError);
        HostControl::failNextRequest(QStringLiteral("/threads/"), status, message);
        auto* handler = ChatServiceApi::startFetchThreadCommunications(QStringLiteral("conv-a"));
        QSignalSpy errors(handler, &CAbstractRestApi::requestErrorOccured);
        QSignalSpy fetched(handler, &CustomerEntitiesQueryVectorHandler::entitiesFetched);
        QSignalSpy finished(handler, &CAbstractRestApi::finished);
        QVERIFY(QTest::qWaitFor([&] { return finished.count() == 1; }, kWaitMs));
        QCOMPARE(errors.count(), 1);
        QCOMPARE(errors.first().at(0).toInt(), status);
        QCOMPARE(int(errors.first().at(1).value<QNetworkReply::NetworkError>()), networkError);
        QCOMPARE(errors.first().at(2).toString(), message);
        QCOMPARE(fetched.count(), 0);
        QCOMPARE(finished.first().first().toBool(), false);

        // Only the next request fails.
        auto* again = ChatServiceApi::startFetchThreadCommunications(QStringLiteral("conv-a"));
        QSignalSpy finishedAgain(again, &CAbstractRestApi::finished);
        QVERIFY(QTest::qWaitFor([&] { return finishedAgain.count() == 1; }, kWaitMs));
        QCOMPARE(finishedAgain.first().first().toBool(), true);
    }

    void unknownThreadIsNotFound()
    {
        auto* handler = ChatServiceApi::startCreateThreadMessage(QStringLiteral("nowhere"),
                                                                 QStringLiteral("x"), {}, false);
        QSignalSpy errors(handler, &CAbstractRestApi::requestErrorOccured);
        QVERIFY(QTest::qWaitFor([&] { return errors.count() == 1; }, kWaitMs));
        QCOMPARE(errors.first().at(0).toInt(), 404);
        QVERIFY(errors.first().at(2).toString().contains(QLatin1String("nowhere")));
    }

    void refusesOversizedAttachmentsWith413_data()
    {
        QTest::addColumn<QList<int>>("fileSizes");
        QTest::addColumn<bool>("accepted");
        QTest::newRow("one file above the limit") << QList<int>{1500} << false;
        QTest::newRow("two files summing above the limit") << QList<int>{600, 600} << false;
        QTest::newRow("exactly the limit") << QList<int>{1000} << true;
        QTest::newRow("two small files") << QList<int>{300, 400} << true;
    }

    void refusesOversizedAttachmentsWith413()
    {
        QFETCH(QList<int>, fileSizes);
        QFETCH(bool, accepted);
        HostControl::setAttachmentSizeLimit(1000);
        QTemporaryDir dir;
        QList<AttachmentEntity> files;
        for (int i = 0; i < fileSizes.size(); ++i) {
            const QString path = dir.filePath(QStringLiteral("file%1.bin").arg(i));
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(QByteArray(fileSizes.at(i), char('a' + i)));
            file.close();
            files.append({QString(), path, {}, {}});
        }
        auto* handler = ChatServiceApi::startCreateThreadMessage(QStringLiteral("conv-a"),
                                                                 QStringLiteral("files"), files, false);
        QSignalSpy errors(handler, &CAbstractRestApi::requestErrorOccured);
        QSignalSpy finished(handler, &CAbstractRestApi::finished);
        QVERIFY(QTest::qWaitFor([&] { return finished.count() == 1; }, kWaitMs));
        QCOMPARE(finished.first().first().toBool(), accepted);
        const QList<QJsonObject> messages = HostControl::threadMessages(QStringLiteral("conv-a"));
        if (!accepted) {
            QCOMPARE(errors.first().at(0).toInt(), 413);
            QCOMPARE(errors.first().at(2).toString(), QStringLiteral("Payload Too Large"));
            QCOMPARE(messages.size(), 3);
            return;
        }
        QCOMPARE(messages.size(), 4);
        const QJsonArray stored = messages.last().value(QStringLiteral("attachments")).toArray();
        QCOMPARE(stored.size(), fileSizes.size());
        for (int i = 0; i < fileSizes.size(); ++i) {
            const QByteArray bytes =
                QByteArray::fromBase64(stored.at(i)[QStringLiteral("data")].toString().toLatin1());
            QCOMPARE(bytes, QByteArray(fileSizes.at(i), char('a' + i)));
            QCOMPARE(stored.at(i)[QStringLiteral("fileName")].toString(),
                     QStringLiteral("file%1.bin").arg(i));
        }
    }

    void refusesTooLongMessagesAndClosedConversations()
    {
        HostControl::setMessageLengthLimit(10);
        QString counter;
        QVERIFY(ChatServiceApi::checkCommunicationLength(QStringLiteral("0123456789"), counter));
        QCOMPARE(counter, QStringLiteral("10 / 10"));
        QVERIFY(!ChatServiceApi::checkCommunicationLength(QStringLiteral("0123456789A"), counter));
        QCOMPARE(counter, QStringLiteral("11 / 10"));

        auto* tooLong = ChatServiceApi::startCreateThreadMessage(QStringLiteral("conv-a"),
                                                                 QString(11, QLatin1Char('x')), {}, false);
        QSignalSpy tooLongErrors(tooLong, &CAbstractRestApi::requestErrorOccured);
        QVERIFY(QTest::qWaitFor([&] { return tooLongErrors.count() == 1; }, kWaitMs));
        QCOMPARE(tooLongErrors.first().at(0).toInt(), 400);

        auto* closed = ChatServiceApi::startCreateThreadMessage(QStringLiteral("conv-closed"),
                                                                QStringLiteral("x"), {}, false);
        QSignalSpy closedErrors(closed, &CAbstractRestApi::requestErrorOccured);
        QVERIFY(QTest::qWaitFor([&] { return closedErrors.count() == 1; }, kWaitMs));
        QCOMPARE(closedErrors.first().at(0).toInt(), 409);
    }

    void heldRequestsAreReleasedOrFailedOneByOne()
    {
        HostControl::setHoldRequests(true);
        auto* first = ChatServiceApi::startFetchThreadCommunications(QStringLiteral("conv-a"));
        auto* second = ChatServiceApi::startFetchThreadCommunications(QStringLiteral("conv-a"));
        QSignalSpy firstFinished(first, &CAbstractRestApi::finished);
        QSignalSpy secondFinished(second, &CAbstractRestApi::finished);
        QSignalSpy secondErrors(second, &CAbstractRestApi::requestErrorOccured);
        QTest::qWait(50);
        QCOMPARE(firstFinished.count() + secondFinished.count(), 0);
        const QList<HostControl::Request> pending = HostControl::pendingRequests();
        QCOMPARE(pending.size(), 2);
        QCOMPARE(pending.first().verb, QByteArray("GET"));
        QCOMPARE(pending.first().path, QStringLiteral("/threads/conv-a/communications"));

        QVERIFY(HostControl::releaseRequest(pending.at(0).id));
        QVERIFY(!HostControl::releaseRequest(pending.at(0).id));
        QVERIFY(QTest::qWaitFor([&] { return firstFinished.count() == 1; }, kWaitMs));
        QCOMPARE(secondFinished.count(), 0);
        QCOMPARE(HostControl::pendingRequests().size(), 1);

        QVERIFY(HostControl::failRequest(pending.at(1).id, 500, QStringLiteral("boom")));
        QVERIFY(QTest::qWaitFor([&] { return secondFinished.count() == 1; }, kWaitMs));
        QCOMPARE(secondFinished.first().first().toBool(), false);
        QCOMPARE(secondErrors.first().at(0).toInt(), 500);
        QCOMPARE(secondErrors.first().at(2).toString(), QStringLiteral("boom"));
        QVERIFY(HostControl::pendingRequests().isEmpty());

        const QList<HostControl::Request> log = HostControl::requestLog();
        QCOMPARE(log.size(), 2);
        QVERIFY(log.at(0).answered && log.at(1).answered);
    }

    void heldSendChangesNothingUntilReleased()
    {
        HostControl::setHoldRequests(true);
        auto* handler = ChatServiceApi::startCreateThreadMessage(QStringLiteral("conv-a"),
                                                                 QStringLiteral("later"), {}, false);
        QSignalSpy finished(handler, &CAbstractRestApi::finished);
        QTest::qWait(20);
        QCOMPARE(HostControl::threadMessages(QStringLiteral("conv-a")).size(), 3);
        HostControl::releaseAllRequests();
        QVERIFY(QTest::qWaitFor([&] { return finished.count() == 1; }, kWaitMs));
        QCOMPARE(HostControl::threadMessages(QStringLiteral("conv-a")).size(), 4);
    }

    void latencyDelaysEveryAnswer()
    {
        constexpr int latency = 250;
        HostControl::setLatency(latency);
        QElapsedTimer clock;
        clock.start();
        auto* handler = ChatServiceApi::startFetchThreadCommunications(QStringLiteral("conv-a"));
        QSignalSpy finished(handler, &CAbstractRestApi::finished);
        QTest::qWait(latency / 2);
        QCOMPARE(finished.count(), 0);
        QVERIFY(QTest::qWaitFor([&] { return finished.count() == 1; }, kWaitMs));
        QVERIFY(clock.elapsed() >= latency - 20);
    }

    void abortEndsWithOperationCanceled()
    {
        HostControl::setLatency(200);
        auto* handler = ChatServiceApi::startFetchThreadCommunications(QStringLiteral("conv-a"));
        QSignalSpy errors(handler, &CAbstractRestApi::requestErrorOccured);
        QSignalSpy finished(handler, &CAbstractRestApi::finished);
        QSignalSpy fetched(handler, &CustomerEntitiesQueryVectorHandler::entitiesFetched);
        handler->abort();
        QVERIFY(QTest::qWaitFor([&] { return finished.count() == 1; }, kWaitMs));
        QCOMPARE(errors.first().at(0).toInt(), 0);
        QCOMPARE(errors.first().at(1).value<QNetworkReply::NetworkError>(),
                 QNetworkReply::OperationCanceledError);
        QCOMPARE(finished.first().first().toBool(), false);
        QTest::qWait(300);
        QCOMPARE(fetched.count(), 0);
    }

    void threadIsFetchedOldestFirstWithoutDrafts()
    {
        auto* handler = ChatServiceApi::startFetchThreadCommunications(QStringLiteral("conv-a"));
        QSignalSpy fetched(handler, &CustomerEntitiesQueryVectorHandler::entitiesFetched);
        QVERIFY(QTest::qWaitFor([&] { return fetched.count() == 1; }, kWaitMs));
        const auto entities = fetched.first().first().value<QList<EntityDto::EntityDto>>();
        QCOMPARE(textsOf(entities), (QStringList{"first", "second", "third"}));
        for (const EntityDto::EntityDto& entity : entities)
            QVERIFY(!entity.createdAt.isEmpty());
        QCOMPARE(entities.at(1).attributeValue(QStringLiteral("ATTACHMENTS")).toList().size(), 1);
    }

    void editedMessageReplacesItsOlderVersion()
    {
        const QString newId =
            HostControl::editMessage(QStringLiteral("m-mid"), QStringLiteral("second, edited"));
        QVERIFY(!newId.isEmpty());
        auto* handler = ChatServiceApi::startFetchThreadCommunications(QStringLiteral("conv-a"));
        QSignalSpy fetched(handler, &CustomerEntitiesQueryVectorHandler::entitiesFetched);
        QVERIFY(QTest::qWaitFor([&] { return fetched.count() == 1; }, kWaitMs));
        const auto entities = fetched.first().first().value<QList<EntityDto::EntityDto>>();
        QCOMPARE(textsOf(entities), (QStringList{"first", "second, edited", "third"}));
        QCOMPARE(entities.at(1).id, newId);
        QCOMPARE(entities.at(1).attributeValue(QStringLiteral("EDIT_VERSION")).toInt(), 2);
        QCOMPARE(entities.at(1).attributeValue(QStringLiteral("VERSION_KEY")).toString(),
                 QStringLiteral("m-mid"));
    }

    void draftsCreateUpdateDeleteRoundTrip()
    {
        QCOMPARE(HostControl::drafts(QStringLiteral("conv-a")).size(), 1);
        QVERIFY(ChatServiceApi::startDeleteEntities({QStringLiteral("d-a")}));
        QVERIFY(
            QTest::qWaitFor([] { return HostControl::drafts(QStringLiteral("conv-a")).isEmpty(); }, kWaitMs));

        CommunicationEntityCreateHandler create;
        QSignalSpy created(&create, &CAbstractRestApi::finished);
        create.startCreateCommunication({QStringLiteral("conv-a"), QStringLiteral("draft one"), {}, true});
        QVERIFY(QTest::qWaitFor([&] { return created.count() == 1; }, kWaitMs));
        const EntityDto::EntityDto draft = create.getMessageEntity();
        QVERIFY(!draft.id.isEmpty());
        QVERIFY(!draft.createdAt.isEmpty());
        QCOMPARE(ChatServiceApi::draftMessage(QVariant::fromValue(draft)), QStringLiteral("draft one"));
        QCOMPARE(HostControl::drafts(QStringLiteral("conv-a")).size(), 1);
        QCOMPARE(HostControl::threadMessages(QStringLiteral("conv-a")).size(), 3);

        CommunicationEntityUpdateHandler update;
        QSignalSpy updated(&update, &CAbstractRestApi::finished);
        update.startUpdateCommunication({draft, QStringLiteral("draft two"), {}, true});
        QVERIFY(QTest::qWaitFor([&] { return updated.count() == 1; }, kWaitMs));
        QCOMPARE(update.getMessageEntity().id, draft.id);
        QCOMPARE(update.getMessageEntity().revision, draft.revision + 1);
        QCOMPARE(HostControl::drafts(QStringLiteral("conv-a")).first()[QStringLiteral("text")].toString(),
                 QStringLiteral("draft two"));

        DeleteEntityHandler remove;
        QSignalSpy removed(&remove, &CAbstractRestApi::finished);
        remove.startDeleteEntity({draft.id});
        QVERIFY(QTest::qWaitFor([&] { return removed.count() == 1; }, kWaitMs));
        QCOMPARE(removed.first().first().toBool(), true);
        QVERIFY(HostControl::drafts(QStringLiteral("conv-a")).isEmpty());
        QCOMPARE(ChatServiceApi::draftMessage(QVariant(QStringLiteral("not an entity"))), QString());
    }

    void downloadsWriteTheBytesWithProgress()
    {
        QTemporaryDir dir;
        const QString target = dir.filePath(QStringLiteral("sub/folder/notes.txt"));
        auto* handler =
            ChatServiceApi::startDownloadFile(QStringLiteral("att-text"), target, ExistingFileFail);
        QSignalSpy progress(handler, &AttachmentsGetHandler::downloadProgress);
        QSignalSpy finished(handler, &CAbstractRestApi::finished);
        QString written;
        connect(handler, &CAbstractRestApi::finished, this, [&] { written = handler->downloadedFilePath(); });
        QVERIFY(QTest::qWaitFor([&] { return finished.count() == 1; }, kWaitMs));
        QCOMPARE(finished.first().first().toBool(), true);
        QVERIFY(progress.count() >= 2);
        QCOMPARE(progress.last().at(0).toInt(), 100);
        QCOMPARE(progress.last().at(1).toULongLong(), progress.last().at(2).toULongLong());
        QVERIFY(progress.first().at(1).toULongLong() < progress.last().at(1).toULongLong());
        QCOMPARE(written, QFileInfo(target).absoluteFilePath());
        QFile file(written);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("hello attachment"));
    }

    void downloadsHonourTheExistingFilePolicy_data()
    {
        QTest::addColumn<int>("policy");
        QTest::addColumn<bool>("ok");
        QTest::addColumn<QString>("writtenName");
        QTest::addColumn<QByteArray>("originalAfterwards");
        QTest::newRow("fail") << int(ExistingFileFail) << false << QString() << QByteArray("old");
        QTest::newRow("rename") << int(ExistingFileRename) << true << "notes (2).txt" << QByteArray("old");
        QTest::newRow("overwrite") << int(ExistingFileOverwrite) << true << "notes.txt"
                                   << QByteArray("hello attachment");
    }

    void downloadsHonourTheExistingFilePolicy()
    {
        QFETCH(int, policy);
        QFETCH(bool, ok);
        QFETCH(QString, writtenName);
        QFETCH(QByteArray, originalAfterwards);
        QTemporaryDir dir;
        const QString target = dir.filePath(QStringLiteral("notes.txt"));
        QFile existing(target);
        QVERIFY(existing.open(QIODevice::WriteOnly));
        existing.write("old");
        existing.close();

        AttachmentsGetHandler handler;
        QSignalSpy finished(&handler, &CAbstractRestApi::finished);
        QSignalSpy errors(&handler, &CAbstractRestApi::requestErrorOccured);
        handler.startDownload(QStringLiteral("att-text"), target, ExistingFilePolicy(policy));
        QVERIFY(QTest::qWaitFor([&] { return finished.count() == 1; }, kWaitMs));
        QCOMPARE(finished.first().first().toBool(), ok);
        QCOMPARE(errors.count(), ok ? 0 : 1);
        if (ok)
            QCOMPARE(QFileInfo(handler.downloadedFilePath()).fileName(), writtenName);
        QFile original(target);
        QVERIFY(original.open(QIODevice::ReadOnly));
        QCOMPARE(original.readAll(), originalAfterwards);
    }

    void ticketGetsItsThreadLater()
    {
        server().setThreadAssignDelay(50);
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
        QVERIFY(QTest::qWaitFor([&] { return !server().data().conversation(ticket.id)->threadId.isEmpty(); },
                                kWaitMs));
    }
};

HOST_TEST_MAIN(TestSimulatedServer)
#include "tst_simulatedserver.moc"
