// The control surface's server parts: scenarios, server data and requests. They drive SimulatedServer,
// whose push signals reach plugins through the news fetcher.
#include "HostControl.h"

#include "GeneratedConversation.h"
#include "ScenarioCodec.h"
#include "SimulatedServer.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QLoggingCategory>

namespace HostControl {

namespace {

const QString kDefaultScenarioResource = QStringLiteral(":/scenario/default.json");

SimulatedServer& server()
{
    return SimulatedServer::instance();
}

Request toRequest(const SimulatedServer::RequestRecord& record)
{
    return {record.id, record.verb, record.path, record.body, record.answered};
}

QList<Request> toRequests(const QList<SimulatedServer::RequestRecord>& records)
{
    QList<Request> result;
    for (const SimulatedServer::RequestRecord& record : records)
        result.append(toRequest(record));
    return result;
}

} // namespace

// ---- Start-up ---------------------------------------------------------------------------------------------

QByteArray defaultScenarioJson()
{
    QFile file(kDefaultScenarioResource);
    if (!file.open(QIODevice::ReadOnly)) {
        qWarning("HostControl: the built-in scenario %s is missing", qPrintable(kDefaultScenarioResource));
        return {};
    }
    return file.readAll();
}

void loadDefaultScenario()
{
    QString error;
    if (!loadScenarioJson(defaultScenarioJson(), kDefaultScenarioResource, &error))
        qWarning("HostControl: %s", qPrintable(error));
}

bool loadScenarioFile(const QString& path, QString* error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        if (error)
            *error = QStringLiteral("%1: cannot open: %2").arg(path, file.errorString());
        return false;
    }
    return loadScenarioJson(file.readAll(), QFileInfo(path).fileName(), error);
}

bool loadScenarioJson(const QByteArray& json, const QString& sourceName, QString* error)
{
    ServerData data;
    if (!ScenarioCodec::read(json, sourceName, data, error))
        return false;
    server().setData(data);
    return true;
}

void clearServer()
{
    server().clearData();
}

// ---- Server data ------------------------------------------------------------------------------------------

void addNewsEntry(const QJsonObject& entry)
{
    ServerData data = server().data();
    QString error;
    if (!ScenarioCodec::readNewsEntry(entry, data, &error)) {
        qWarning("HostControl::addNewsEntry: %s", qPrintable(error));
        return;
    }
    server().addNewsEntry(data.news.last());
}

void removeNewsEntry(const QString& id)
{
    server().removeNewsEntry(id);
}

QString addGeneratedConversation(int messageCount, quint32 seed)
{
    const QString id = QStringLiteral("conv-generated-%1-%2").arg(messageCount).arg(seed);
    addConversation(GeneratedConversation::make(id, messageCount, seed));
    return id;
}

void addConversation(const QJsonObject& conversation)
{
    const ServerData before = server().data();
    ServerData data = before;
    QString error;
    if (!ScenarioCodec::readConversation(conversation, data, &error)) {
        qWarning("HostControl::addConversation: %s", qPrintable(error));
        return;
    }
    QList<ServerData::Attachment> attachments;
    for (auto it = data.attachments.cbegin(); it != data.attachments.cend(); ++it) {
        if (!before.attachments.contains(it.key()))
            attachments.append(it.value());
    }
    server().addConversation(data.conversations.last(), data.messages.mid(before.messages.size()),
                             attachments);
}

void setConversationState(const QString& conversationId, const QString& stateKey)
{
    server().setConversationState(conversationId, stateKey);
}

QString postMessage(const QString& conversationId, const QString& text, const QString& senderId,
                    const QList<QJsonObject>& attachments)
{
    QList<ServerData::Attachment> files;
    if (!attachments.isEmpty()) {
        // A scratch copy that gives the attachments unique ids; it is gone before the server changes, so the
        // server's own data never has to be copied.
        ServerData data = server().data();
        for (const QJsonObject& json : attachments) {
            QString id;
            QString error;
            if (!ScenarioCodec::readAttachment(json, data, &id, &error)) {
                qWarning("HostControl::postMessage: %s", qPrintable(error));
                return {};
            }
            files.append(data.attachments.value(id));
        }
    }
    return server().postMessage(conversationId, text, senderId, files);
}

QString editMessage(const QString& messageId, const QString& newText)
{
    return server().editMessage(messageId, newText);
}

void deleteMessage(const QString& messageId)
{
    server().deleteMessage(messageId);
}

void setTyping(const QString& conversationId, const QString& participantId, bool typing)
{
    server().setTyping(conversationId, participantId, typing);
}

void addParticipant(const QJsonObject& participant)
{
    ServerData data = server().data();
    const QString id = participant.value(QStringLiteral("id")).toString();
    // Adding a known participant again replaces it.
    data.participants.erase(std::remove_if(data.participants.begin(), data.participants.end(),
                                           [&id](const ServerData::Participant& p) { return p.id == id; }),
                            data.participants.end());
    QString error;
    if (!ScenarioCodec::readParticipant(participant, data, &error)) {
        qWarning("HostControl::addParticipant: %s", qPrintable(error));
        return;
    }
    server().addParticipant(data.participants.last());
}

void renameParticipant(const QString& participantId, const QString& firstName, const QString& lastName)
{
    server().renameParticipant(participantId, firstName, lastName);
}

void emitNewsChanged()
{
    server().announceNewsChanged();
}

void emitSyncViewsRequest()
{
    server().announceSyncViews();
}

QJsonObject serverSnapshot()
{
    return ScenarioCodec::write(server().data());
}

QList<QJsonObject> threadMessages(const QString& conversationId, bool includeDrafts)
{
    QList<QJsonObject> result;
    const ServerData& data = server().data();
    const ServerData::Conversation* conversation = data.conversation(conversationId);
    if (!conversation)
        return result;
    for (const ServerData::Message* message :
         server().threadMessages(conversation->threadId, includeDrafts)) {
        QJsonObject json = ScenarioCodec::writeMessage(data, *message);
        json.insert(QStringLiteral("isDraft"), message->isDraft);
        result.append(json);
    }
    return result;
}

QList<QJsonObject> drafts(const QString& conversationId)
{
    QList<QJsonObject> result;
    for (const QJsonObject& message : threadMessages(conversationId, true)) {
        if (message.value(QStringLiteral("isDraft")).toBool())
            result.append(message);
    }
    return result;
}

bool isNewsEntryRead(const QString& id)
{
    const ServerData& data = server().data();
    if (const ServerData::NewsEntry* entry = data.newsEntry(id))
        return entry->read;
    const ServerData::Conversation* conversation = data.conversation(id);
    return conversation && conversation->read;
}

bool isNewsEntryHidden(const QString& id)
{
    const ServerData& data = server().data();
    if (const ServerData::NewsEntry* entry = data.newsEntry(id))
        return entry->hidden;
    const ServerData::Conversation* conversation = data.conversation(id);
    return conversation && conversation->hidden;
}

// ---- Requests ---------------------------------------------------------------------------------------------

void setLatency(int milliseconds)
{
    server().setLatency(milliseconds);
}

void setHoldRequests(bool hold)
{
    server().setHoldRequests(hold);
}

QList<Request> pendingRequests()
{
    return toRequests(server().pendingRequests());
}

bool releaseRequest(int requestId)
{
    return server().releaseRequest(requestId);
}

bool failRequest(int requestId, int httpStatus, const QString& message)
{
    return server().failRequest(requestId, httpStatus, message);
}

void releaseAllRequests()
{
    server().releaseAllRequests();
}

void failNextRequest(const QString& pathPart, int httpStatus, const QString& message)
{
    server().failNextRequest(pathPart, httpStatus, message);
}

QList<Request> requestLog()
{
    return toRequests(server().requestLog());
}

void clearRequestLog()
{
    server().clearRequestLog();
}

void setAttachmentSizeLimit(qint64 bytes)
{
    server().setAttachmentSizeLimit(bytes);
}

void setMessageLengthLimit(int characters)
{
    server().setMessageLengthLimit(characters);
}

int messageLengthLimit()
{
    return server().data().limits.messageLength;
}

} // namespace HostControl
