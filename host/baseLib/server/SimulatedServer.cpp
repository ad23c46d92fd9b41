#include "SimulatedServer.h"

#include "EntityFields.h"
#include "EntityJson.h"
#include "SimulatedReply.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QMimeDatabase>
#include <QTimer>
#include <QUrl>

#include <algorithm>

namespace {

constexpr int kHttpOk = 200;
constexpr int kHttpCreated = 201;
constexpr int kHttpBadRequest = 400;
constexpr int kHttpNotFound = 404;
constexpr int kHttpConflict = 409;
constexpr int kHttpPayloadTooLarge = 413;
constexpr int kClosedComposerState = 2;
// A download reaches the client in this many pieces, one per event-loop pass.
constexpr int kDownloadChunks = 4;

QString isoTime(const QDateTime& time)
{
    return time.isValid() ? time.toUTC().toString(Qt::ISODateWithMs) : QString();
}

QByteArray toBody(const QJsonObject& object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

QByteArray toBody(const QJsonArray& array)
{
    return QJsonDocument(array).toJson(QJsonDocument::Compact);
}

QByteArray errorBody(int status, const QString& message)
{
    return toBody(QJsonObject{{QStringLiteral("status"), status}, {QStringLiteral("message"), message}});
}

QJsonObject parseObject(const QByteArray& body)
{
    return QJsonDocument::fromJson(body).object();
}

} // namespace

SimulatedServer& SimulatedServer::instance()
{
    // Never destroyed: handlers and replies may still refer to it while the process winds down.
    static auto* server = new SimulatedServer;
    return *server;
}

SimulatedServer::SimulatedServer()
{
    m_data.states = ServerData::defaultStates();
}

EntitySchemaDto::EntitySchemaDto SimulatedServer::schema() const
{
    EntitySchemaDto::AttributeSchemaDto state{EntityFields::kState, QStringLiteral("enum"), {}};
    for (const ServerData::State& item : m_data.states) {
        state.values.append({item.key,
                             {{EntityFields::kDisplayName, item.displayName},
                              {EntityFields::kComposerState, item.composerState}}});
    }
    EntitySchemaDto::EntityTypeSchemaDto ticket{
        EntityFields::kTicketType,
        {state,
         {EntityFields::kSubject, QStringLiteral("string"), {}},
         {EntityFields::kThreadId, QStringLiteral("string"), {}},
         {EntityFields::kFirstMessage, QStringLiteral("string"), {}}}};
    EntitySchemaDto::EntityTypeSchemaDto communication{
        EntityFields::kCommunicationType,
        {{EntityFields::kText, QStringLiteral("string"), {}},
         {EntityFields::kTime, QStringLiteral("datetime"), {}}}};
    EntitySchemaDto::EntitySchemaDto result;
    result.entities = {ticket, communication};
    return result;
}

// ---- Data -------------------------------------------------------------------------------------------------

void SimulatedServer::setData(const ServerData& data)
{
    m_data = data;
    if (m_data.states.isEmpty())
        m_data.states = ServerData::defaultStates();
    ++m_generation;
    push([this] {
        emit participantsChanged();
        emit newsListChanged();
    });
}

void SimulatedServer::clearData()
{
    ServerData empty;
    empty.limits = m_data.limits;
    setData(empty);
}

void SimulatedServer::resetForTests()
{
    const QList<QPointer<SimulatedReply>> held = m_held;
    m_held.clear();
    m_hold = false;
    for (const QPointer<SimulatedReply>& reply : held) {
        if (reply)
            reply->abort();
    }
    m_latencyMs = 0;
    m_failures.clear();
    m_failuresByRequest.clear();
    m_log.clear();
    setData(ServerData());
}

EntityDto::EntityDto SimulatedServer::ticketEntity(const ServerData::Conversation& conversation) const
{
    EntityDto::EntityDto entity;
    entity.id = conversation.id;
    entity.entityType = EntityFields::kTicketType;
    entity.createdAt = isoTime(conversation.created);
    entity.updatedAt = isoTime(lastActivity(conversation));
    entity.ownerId = m_data.user.id;
    entity.revision = 1;
    QVariantList attachments;
    for (const QString& id : conversation.firstMessageAttachmentIds) {
        const ServerData::Attachment attachment = m_data.attachments.value(id);
        attachments.append(QVariantMap{{EntityFields::kAttachmentId, id},
                                       {EntityFields::kAttachmentName, attachment.fileName},
                                       {EntityFields::kAttachmentSize, qint64(attachment.data.size())},
                                       {EntityFields::kAttachmentMime, attachment.mimeType}});
    }
    entity.setAttribute(EntityFields::kThreadId, conversation.threadId);
    entity.setAttribute(EntityFields::kState, conversation.stateKey);
    entity.setAttribute(EntityFields::kSubject, conversation.subject);
    entity.setAttribute(EntityFields::kFirstMessage, conversation.firstMessage);
    entity.setAttribute(EntityFields::kFirstMessageAttachments, attachments);
    entity.setAttribute(EntityFields::kCreatedBy, m_data.user.id);
    entity.setAttribute(EntityFields::kComposerState, composerState(conversation.stateKey));
    entity.setAttribute(EntityFields::kLastActivity, isoTime(lastActivity(conversation)));
    return entity;
}

EntityDto::EntityDto SimulatedServer::messageEntity(const ServerData::Message& message) const
{
    EntityDto::EntityDto entity;
    entity.id = message.id;
    entity.entityType = EntityFields::kCommunicationType;
    entity.createdAt = isoTime(message.createdAt.isValid() ? message.createdAt : message.time);
    entity.updatedAt = isoTime(message.updatedAt.isValid() ? message.updatedAt : message.time);
    entity.ownerId = message.senderId;
    entity.revision = message.revision;
    QVariantList attachments;
    for (const QString& id : message.attachmentIds) {
        const ServerData::Attachment attachment = m_data.attachments.value(id);
        attachments.append(QVariantMap{{EntityFields::kAttachmentId, id},
                                       {EntityFields::kAttachmentName, attachment.fileName},
                                       {EntityFields::kAttachmentSize, qint64(attachment.data.size())},
                                       {EntityFields::kAttachmentMime, attachment.mimeType}});
    }
    entity.setAttribute(EntityFields::kMessageThreadId, message.threadId);
    entity.setAttribute(EntityFields::kText, message.text);
    entity.setAttribute(EntityFields::kSenderId, message.senderId);
    entity.setAttribute(EntityFields::kFromSupport, message.senderId != m_data.user.id);
    entity.setAttribute(EntityFields::kTime, isoTime(message.time));
    entity.setAttribute(EntityFields::kDeleted, message.deleted);
    entity.setAttribute(EntityFields::kEditVersion, message.editVersion);
    entity.setAttribute(EntityFields::kVersionKey,
                        message.versionKey.isEmpty() ? message.id : message.versionKey);
    entity.setAttribute(EntityFields::kIsDraft, message.isDraft);
    entity.setAttribute(EntityFields::kAttachments, attachments);
    return entity;
}

const ServerData::Message* SimulatedServer::draftOf(const QString& conversationId) const
{
    const ServerData::Conversation* conversation = m_data.conversation(conversationId);
    if (!conversation || conversation->threadId.isEmpty())
        return nullptr;
    const ServerData::Message* newest = nullptr;
    for (const ServerData::Message& message : m_data.messages) {
        if (message.isDraft && message.threadId == conversation->threadId)
            newest = &message;
    }
    return newest;
}

QList<const ServerData::Message*> SimulatedServer::threadMessages(const QString& threadId,
                                                                  bool includeDrafts) const
{
    QList<const ServerData::Message*> result;
    if (threadId.isEmpty())
        return result;
    for (const ServerData::Message& message : m_data.messages) {
        if (message.threadId == threadId && !message.superseded && (includeDrafts || !message.isDraft))
            result.append(&message);
    }
    // Oldest first; messages written at the same moment keep the order in which they were stored.
    std::stable_sort(
        result.begin(), result.end(),
        [](const ServerData::Message* a, const ServerData::Message* b) { return a->time < b->time; });
    return result;
}

QDateTime SimulatedServer::lastActivity(const ServerData::Conversation& conversation) const
{
    QDateTime last = conversation.created;
    if (conversation.threadId.isEmpty())
        return last;
    for (const ServerData::Message& message : m_data.messages) {
        if (message.threadId == conversation.threadId && !message.superseded && !message.isDraft &&
            message.time > last)
            last = message.time;
    }
    return last;
}

int SimulatedServer::composerState(const QString& stateKey) const
{
    const ServerData::State* state = m_data.state(stateKey);
    return state ? state->composerState : 0;
}

// ---- Changes from the control surface ---------------------------------------------------------------------

void SimulatedServer::push(std::function<void()> emitter)
{
    QTimer::singleShot(0, this, std::move(emitter));
}

void SimulatedServer::addNewsEntry(const ServerData::NewsEntry& entry)
{
    if (ServerData::NewsEntry* existing = m_data.newsEntry(entry.id))
        *existing = entry;
    else
        m_data.news.append(entry);
    push([this] { emit newsListChanged(); });
}

void SimulatedServer::removeNewsEntry(const QString& id)
{
    m_data.news.erase(std::remove_if(m_data.news.begin(), m_data.news.end(),
                                     [&id](const ServerData::NewsEntry& entry) { return entry.id == id; }),
                      m_data.news.end());
    push([this] { emit newsListChanged(); });
}

void SimulatedServer::addConversation(const ServerData::Conversation& conversation,
                                      const QList<ServerData::Message>& messages,
                                      const QList<ServerData::Attachment>& attachments)
{
    m_data.conversations.append(conversation);
    m_data.messages.append(messages);
    for (const ServerData::Attachment& attachment : attachments)
        m_data.attachments.insert(attachment.id, attachment);
    push([this] { emit newsListChanged(); });
}

void SimulatedServer::setConversationState(const QString& conversationId, const QString& stateKey)
{
    ServerData::Conversation* conversation = m_data.conversation(conversationId);
    if (!conversation)
        return;
    conversation->stateKey = stateKey;
    push([this] { emit newsListChanged(); });
}

QString SimulatedServer::postMessage(const QString& conversationId, const QString& text,
                                     const QString& senderId,
                                     const QList<ServerData::Attachment>& attachments)
{
    ServerData::Conversation* conversation = m_data.conversation(conversationId);
    if (!conversation)
        return {};
    if (conversation->threadId.isEmpty())
        openThread(conversationId);

    ServerData::Message message;
    message.id = newId(QStringLiteral("msg"));
    message.threadId = conversation->threadId;
    message.text = text;
    message.senderId = senderId;
    if (message.senderId.isEmpty()) {
        message.senderId = !conversation->agentId.isEmpty() ? conversation->agentId
                           : !m_data.participants.isEmpty() ? m_data.participants.first().id
                                                            : QStringLiteral("support");
    }
    message.time = QDateTime::currentDateTime();
    message.createdAt = message.time;
    message.updatedAt = message.time;
    message.versionKey = message.id;
    for (const ServerData::Attachment& attachment : attachments) {
        m_data.attachments.insert(attachment.id, attachment);
        message.attachmentIds.append(attachment.id);
    }
    if (message.senderId != m_data.user.id)
        conversation->read = false;
    m_data.messages.append(message);

    const EntityDto::EntityDto entity = messageEntity(message);
    push([this, entity, conversationId] { emit communicationPosted(entity, conversationId); });
    return message.id;
}

QString SimulatedServer::editMessage(const QString& messageId, const QString& newText)
{
    ServerData::Message* old = m_data.message(messageId);
    if (!old || old->isDraft)
        return {};
    ServerData::Message edited = *old;
    edited.id = newId(QStringLiteral("msg"));
    edited.text = newText;
    edited.editVersion = old->editVersion + 1;
    edited.versionKey = old->versionKey.isEmpty() ? old->id : old->versionKey;
    edited.updatedAt = QDateTime::currentDateTime();
    edited.createdAt = edited.updatedAt;
    edited.revision = 1;
    old->superseded = true;
    const int at = int(old - m_data.messages.data()) + 1;
    m_data.messages.insert(at, edited);

    const ServerData::Conversation* conversation = m_data.conversationOfThread(edited.threadId);
    const QString conversationId = conversation ? conversation->id : QString();
    const EntityDto::EntityDto entity = messageEntity(edited);
    push([this, entity, conversationId] { emit communicationPosted(entity, conversationId); });
    return edited.id;
}

void SimulatedServer::deleteMessage(const QString& messageId)
{
    ServerData::Message* message = m_data.message(messageId);
    if (!message)
        return;
    message->deleted = true;
    message->updatedAt = QDateTime::currentDateTime();
    const ServerData::Conversation* conversation = m_data.conversationOfThread(message->threadId);
    const QString conversationId = conversation ? conversation->id : QString();
    const EntityDto::EntityDto entity = messageEntity(*message);
    push([this, entity, conversationId] { emit communicationRemoved(entity, conversationId); });
}

void SimulatedServer::setTyping(const QString& conversationId, const QString& participantId, bool typing)
{
    push([this, conversationId, participantId, typing] {
        emit typingChanged(conversationId, participantId, typing);
    });
}

void SimulatedServer::addParticipant(const ServerData::Participant& participant)
{
    if (ServerData::Participant* existing = m_data.participant(participant.id))
        *existing = participant;
    else
        m_data.participants.append(participant);
    push([this] { emit participantsChanged(); });
}

void SimulatedServer::renameParticipant(const QString& participantId, const QString& firstName,
                                        const QString& lastName)
{
    ServerData::Participant* participant = m_data.participant(participantId);
    if (!participant)
        return;
    participant->firstName = firstName;
    participant->lastName = lastName;
    participant->displayName.clear();
    push([this] { emit participantsChanged(); });
}

void SimulatedServer::announceNewsChanged()
{
    push([this] { emit newsListChanged(); });
}

void SimulatedServer::announceSyncViews()
{
    push([this] { emit syncViewsRequested(); });
}

QString SimulatedServer::newId(const QString& prefix)
{
    for (;;) {
        const QString candidate = QStringLiteral("%1-s%2").arg(prefix).arg(m_nextId++);
        if (!m_data.message(candidate) && !m_data.conversation(candidate) &&
            !m_data.attachments.contains(candidate) && !m_data.newsEntry(candidate))
            return candidate;
    }
}

void SimulatedServer::openThread(const QString& conversationId)
{
    ServerData::Conversation* conversation = m_data.conversation(conversationId);
    if (!conversation || !conversation->threadId.isEmpty())
        return;
    conversation->threadId = conversation->id;
    push([this, conversationId] {
        emit newsListChanged();
        emit threadOpened(conversationId);
    });
}

void SimulatedServer::scheduleThreadAssignment(const QString& conversationId)
{
    if (m_data.limits.threadAssignDelayMs < 0)
        return;
    const int generation = m_generation;
    QTimer::singleShot(m_data.limits.threadAssignDelayMs, this, [this, conversationId, generation] {
        if (generation == m_generation)
            openThread(conversationId);
    });
}

// ---- Requests ---------------------------------------------------------------------------------------------

QNetworkReply* SimulatedServer::startRequest(const QByteArray& verb, const QString& path,
                                             const QByteArray& body)
{
    const int id = m_nextRequestId++;
    auto* reply = new SimulatedReply(id, verb, path);
    reply->setRequestBody(body);
    m_log.append({id, verb, path, body, false});
    for (int i = 0; i < m_failures.size(); ++i) {
        if (m_failures.at(i).pathPart.isEmpty() || path.contains(m_failures.at(i).pathPart)) {
            m_failuresByRequest.insert(id, m_failures.takeAt(i));
            break;
        }
    }
    if (m_hold)
        m_held.append(reply);
    else
        schedule(reply, m_latencyMs);
    return reply;
}

void SimulatedServer::schedule(SimulatedReply* reply, int delayMs)
{
    QPointer<SimulatedReply> guard(reply);
    QTimer::singleShot(delayMs, this, [this, guard] {
        if (guard && !guard->isAnswered())
            answer(guard);
    });
}

void SimulatedServer::markLog(int requestId)
{
    for (RequestRecord& record : m_log) {
        if (record.id == requestId)
            record.answered = true;
    }
}

void SimulatedServer::answer(SimulatedReply* reply)
{
    if (m_failuresByRequest.contains(reply->requestId())) {
        const PendingFailure failure = m_failuresByRequest.take(reply->requestId());
        answerWithError(reply, failure.status, failure.message);
        return;
    }
    markLog(reply->requestId());
    const Answer result = process(reply->verb(), reply->path(), reply->requestBody());
    reply->respond(result.status, result.body, result.errorMessage, result.chunks);
}

void SimulatedServer::answerWithError(SimulatedReply* reply, int status, const QString& message)
{
    markLog(reply->requestId());
    reply->respond(status, errorBody(status, message),
                   message.isEmpty() ? QStringLiteral("Request failed") : message, 1);
}

void SimulatedServer::setLatency(int milliseconds)
{
    m_latencyMs = std::max(0, milliseconds);
}

void SimulatedServer::setHoldRequests(bool hold)
{
    m_hold = hold;
    if (!hold)
        releaseAllRequests();
}

QList<SimulatedServer::RequestRecord> SimulatedServer::pendingRequests() const
{
    QList<RequestRecord> result;
    for (const QPointer<SimulatedReply>& reply : m_held) {
        if (reply && !reply->isAnswered())
            result.append({reply->requestId(), reply->verb(), reply->path(), reply->requestBody(), false});
    }
    return result;
}

bool SimulatedServer::releaseRequest(int requestId)
{
    for (int i = 0; i < m_held.size(); ++i) {
        const QPointer<SimulatedReply> reply = m_held.at(i);
        if (reply && reply->requestId() == requestId && !reply->isAnswered()) {
            m_held.removeAt(i);
            schedule(reply, m_latencyMs);
            return true;
        }
    }
    return false;
}

bool SimulatedServer::failRequest(int requestId, int httpStatus, const QString& message)
{
    for (int i = 0; i < m_held.size(); ++i) {
        const QPointer<SimulatedReply> reply = m_held.at(i);
        if (reply && reply->requestId() == requestId && !reply->isAnswered()) {
            m_held.removeAt(i);
            m_failuresByRequest.insert(requestId, {QString(), httpStatus, message});
            schedule(reply, 0);
            return true;
        }
    }
    return false;
}

void SimulatedServer::releaseAllRequests()
{
    const QList<QPointer<SimulatedReply>> held = m_held;
    m_held.clear();
    for (const QPointer<SimulatedReply>& reply : held) {
        if (reply && !reply->isAnswered())
            schedule(reply, m_latencyMs);
    }
}

void SimulatedServer::failNextRequest(const QString& pathPart, int httpStatus, const QString& message)
{
    m_failures.append({pathPart, httpStatus, message});
}

SimulatedServer::Answer SimulatedServer::process(const QByteArray& verb, const QString& path,
                                                 const QByteArray& body)
{
    // Clients percent-encode the ids they put into a path; each part is read back as the id it names.
    QStringList parts = path.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    for (QString& part : parts)
        part = QUrl::fromPercentEncoding(part.toUtf8());
    const auto is = [&](const char* method, std::initializer_list<const char*> shape) {
        if (verb != method || parts.size() != int(shape.size()))
            return false;
        int i = 0;
        for (const char* part : shape) {
            if (qstrcmp(part, "*") != 0 && parts.at(i) != QLatin1String(part))
                return false;
            ++i;
        }
        return true;
    };

    if (is("GET", {"news"}))
        return listNews();
    if (is("GET", {"tickets"}))
        return listTickets();
    if (is("POST", {"tickets"}))
        return createTicket(body);
    if (is("GET", {"threads", "*", "communications"}))
        return fetchThread(parts.at(1));
    if (is("POST", {"threads", "*", "communications"}))
        return createCommunication(parts.at(1), body);
    if (is("PUT", {"communications", "*"}))
        return updateCommunication(parts.at(1), body);
    if (is("DELETE", {"entities"}))
        return deleteEntities(body);
    if (is("GET", {"attachments", "*"}))
        return downloadAttachment(parts.at(1));
    if (is("PUT", {"entries", "*", "*"}))
        return markEntry(parts.at(1), parts.at(2));
    const QString message = QStringLiteral("No such resource: %1 %2").arg(QString::fromLatin1(verb), path);
    return {kHttpNotFound, errorBody(kHttpNotFound, message), message, 1};
}

SimulatedServer::Answer SimulatedServer::fetchThread(const QString& threadId)
{
    if (!m_data.conversationOfThread(threadId)) {
        const QString message = QStringLiteral("Thread %1 not found").arg(threadId);
        return {kHttpNotFound, errorBody(kHttpNotFound, message), message, 1};
    }
    QJsonArray list;
    for (const ServerData::Message* message : threadMessages(threadId, false))
        list.append(EntityJson::toJson(messageEntity(*message)));
    return {kHttpOk, toBody(list), {}, 1};
}

bool SimulatedServer::takeUploads(const QJsonObject& request, QList<ServerData::Attachment>& uploads,
                                  Answer& error)
{
    qint64 total = 0;
    const QJsonArray files = request.value(QStringLiteral("attachments")).toArray();
    for (const QJsonValue& value : files) {
        const QJsonObject file = value.toObject();
        ServerData::Attachment attachment;
        attachment.fileName = file.value(QStringLiteral("fileName")).toString();
        if (file.value(QStringLiteral("unreadable")).toBool()) {
            const QString message = QStringLiteral("The file %1 could not be read").arg(attachment.fileName);
            error = {kHttpBadRequest, errorBody(kHttpBadRequest, message), message, 1};
            return false;
        }
        attachment.data = QByteArray::fromBase64(file.value(QStringLiteral("data")).toString().toLatin1());
        attachment.mimeType = file.value(QStringLiteral("mimeType")).toString();
        if (attachment.mimeType.isEmpty())
            attachment.mimeType =
                QMimeDatabase().mimeTypeForFileNameAndData(attachment.fileName, attachment.data).name();
        total += attachment.data.size();
        uploads.append(attachment);
    }
    if (total > m_data.limits.attachmentBytes) {
        const QString message = QStringLiteral("Payload Too Large");
        error = {kHttpPayloadTooLarge, errorBody(kHttpPayloadTooLarge, message), message, 1};
        return false;
    }
    for (ServerData::Attachment& attachment : uploads) {
        attachment.id = newId(QStringLiteral("att"));
        m_data.attachments.insert(attachment.id, attachment);
    }
    return true;
}

SimulatedServer::Answer SimulatedServer::createCommunication(const QString& threadId, const QByteArray& body)
{
    ServerData::Conversation* conversation = nullptr;
    if (const ServerData::Conversation* found = m_data.conversationOfThread(threadId))
        conversation = m_data.conversation(found->id);
    if (!conversation) {
        const QString message = QStringLiteral("Thread %1 not found").arg(threadId);
        return {kHttpNotFound, errorBody(kHttpNotFound, message), message, 1};
    }
    const QJsonObject request = parseObject(body);
    const QString text = request.value(QStringLiteral("text")).toString();
    const bool isDraft = request.value(QStringLiteral("isDraft")).toBool();
    if (!isDraft && composerState(conversation->stateKey) == kClosedComposerState) {
        const QString message = QStringLiteral("The conversation is closed");
        return {kHttpConflict, errorBody(kHttpConflict, message), message, 1};
    }
    if (text.size() > m_data.limits.messageLength) {
        const QString message = QStringLiteral("The message is too long (%1 characters, at most %2)")
                                    .arg(text.size())
                                    .arg(m_data.limits.messageLength);
        return {kHttpBadRequest, errorBody(kHttpBadRequest, message), message, 1};
    }
    QList<ServerData::Attachment> uploads;
    Answer refusal;
    if (!takeUploads(request, uploads, refusal))
        return refusal;

    ServerData::Message message;
    message.id = newId(isDraft ? QStringLiteral("draft") : QStringLiteral("msg"));
    message.threadId = threadId;
    message.text = text;
    message.senderId = m_data.user.id;
    message.time = QDateTime::currentDateTime();
    message.createdAt = message.time;
    message.updatedAt = message.time;
    message.isDraft = isDraft;
    message.versionKey = message.id;
    for (const ServerData::Attachment& attachment : uploads)
        message.attachmentIds.append(attachment.id);
    m_data.messages.append(message);
    return {kHttpCreated, toBody(EntityJson::toJson(messageEntity(message))), {}, 1};
}

SimulatedServer::Answer SimulatedServer::updateCommunication(const QString& messageId, const QByteArray& body)
{
    ServerData::Message* message = m_data.message(messageId);
    if (!message || message->superseded) {
        const QString text = QStringLiteral("Message %1 not found").arg(messageId);
        return {kHttpNotFound, errorBody(kHttpNotFound, text), text, 1};
    }
    const QJsonObject request = parseObject(body);
    const QString text = request.value(QStringLiteral("text")).toString();
    if (text.size() > m_data.limits.messageLength) {
        const QString refusal = QStringLiteral("The message is too long (%1 characters, at most %2)")
                                    .arg(text.size())
                                    .arg(m_data.limits.messageLength);
        return {kHttpBadRequest, errorBody(kHttpBadRequest, refusal), refusal, 1};
    }
    QList<ServerData::Attachment> uploads;
    Answer refusal;
    if (!takeUploads(request, uploads, refusal))
        return refusal;

    const QDateTime now = QDateTime::currentDateTime();
    if (message->isDraft) {
        message->text = text;
        message->updatedAt = now;
        ++message->revision;
        if (!uploads.isEmpty()) {
            message->attachmentIds.clear();
            for (const ServerData::Attachment& attachment : uploads)
                message->attachmentIds.append(attachment.id);
        }
        if (request.contains(QStringLiteral("isDraft")) &&
            !request.value(QStringLiteral("isDraft")).toBool()) {
            message->isDraft = false;
            message->time = now;
        }
        return {kHttpOk, toBody(EntityJson::toJson(messageEntity(*message))), {}, 1};
    }
    const QString editedId = editMessage(messageId, text);
    ServerData::Message* edited = m_data.message(editedId);
    if (!uploads.isEmpty()) {
        edited->attachmentIds.clear();
        for (const ServerData::Attachment& attachment : uploads)
            edited->attachmentIds.append(attachment.id);
    }
    return {kHttpOk, toBody(EntityJson::toJson(messageEntity(*edited))), {}, 1};
}

SimulatedServer::Answer SimulatedServer::deleteEntities(const QByteArray& body)
{
    const QJsonArray ids = parseObject(body).value(QStringLiteral("ids")).toArray();
    QJsonArray deleted;
    for (const QJsonValue& value : ids) {
        const QString id = value.toString();
        ServerData::Message* message = m_data.message(id);
        if (!message)
            continue;
        deleted.append(id);
        if (message->isDraft) {
            m_data.messages.removeAt(int(message - m_data.messages.data()));
            continue;
        }
        message->deleted = true;
        message->updatedAt = QDateTime::currentDateTime();
    }
    if (deleted.isEmpty()) {
        const QString message = QStringLiteral("Nothing to delete");
        return {kHttpNotFound, errorBody(kHttpNotFound, message), message, 1};
    }
    return {kHttpOk, toBody(QJsonObject{{QStringLiteral("deleted"), deleted}}), {}, 1};
}

SimulatedServer::Answer SimulatedServer::downloadAttachment(const QString& attachmentId)
{
    if (!m_data.attachments.contains(attachmentId)) {
        const QString message = QStringLiteral("Attachment %1 not found").arg(attachmentId);
        return {kHttpNotFound, errorBody(kHttpNotFound, message), message, 1};
    }
    return {kHttpOk, m_data.attachments.value(attachmentId).data, {}, kDownloadChunks};
}

SimulatedServer::Answer SimulatedServer::createTicket(const QByteArray& body)
{
    const QJsonObject request = parseObject(body);
    const QString subject = request.value(QStringLiteral("subject")).toString().trimmed();
    const QString text = request.value(QStringLiteral("message")).toString();
    if (subject.isEmpty()) {
        const QString message = QStringLiteral("A subject is required");
        return {kHttpBadRequest, errorBody(kHttpBadRequest, message), message, 1};
    }
    if (text.size() > m_data.limits.messageLength) {
        const QString message = QStringLiteral("The message is too long");
        return {kHttpBadRequest, errorBody(kHttpBadRequest, message), message, 1};
    }
    QList<ServerData::Attachment> uploads;
    Answer refusal;
    if (!takeUploads(request, uploads, refusal))
        return refusal;

    ServerData::Conversation conversation;
    conversation.id = newId(QStringLiteral("conv"));
    conversation.subject = subject;
    conversation.firstMessage = text;
    conversation.stateKey =
        m_data.state(QStringLiteral("NEW")) ? QStringLiteral("NEW") : m_data.states.value(0).key;
    conversation.created = QDateTime::currentDateTime();
    conversation.agentId = m_data.participants.isEmpty() ? QString() : m_data.participants.first().id;
    for (const ServerData::Attachment& attachment : uploads)
        conversation.firstMessageAttachmentIds.append(attachment.id);
    m_data.conversations.append(conversation);
    scheduleThreadAssignment(conversation.id);
    return {kHttpCreated, toBody(EntityJson::toJson(ticketEntity(conversation))), {}, 1};
}

SimulatedServer::Answer SimulatedServer::listTickets()
{
    QJsonArray list;
    for (const ServerData::Conversation& conversation : m_data.conversations)
        list.append(EntityJson::toJson(ticketEntity(conversation)));
    return {kHttpOk, toBody(list), {}, 1};
}

SimulatedServer::Answer SimulatedServer::listNews()
{
    QJsonArray list;
    for (const ServerData::NewsEntry& entry : m_data.news) {
        list.append(QJsonObject{{QStringLiteral("id"), entry.id},
                                {QStringLiteral("title"), entry.title},
                                {QStringLiteral("read"), entry.read},
                                {QStringLiteral("hidden"), entry.hidden}});
    }
    return {kHttpOk, toBody(list), {}, 1};
}

SimulatedServer::Answer SimulatedServer::markEntry(const QString& id, const QString& what)
{
    const bool read = what == QLatin1String("read");
    const bool hidden = what == QLatin1String("hidden");
    if (!read && !hidden) {
        const QString message = QStringLiteral("Unknown mark %1").arg(what);
        return {kHttpBadRequest, errorBody(kHttpBadRequest, message), message, 1};
    }
    bool found = false;
    if (ServerData::NewsEntry* entry = m_data.newsEntry(id)) {
        if (hidden && entry->pinned) {
            const QString message = QStringLiteral("Entry %1 cannot be hidden").arg(id);
            return {kHttpConflict, errorBody(kHttpConflict, message), message, 1};
        }
        found = true;
        entry->read = entry->read || read;
        entry->hidden = entry->hidden || hidden;
    }
    if (ServerData::Conversation* conversation = m_data.conversation(id)) {
        found = true;
        conversation->read = conversation->read || read;
        conversation->hidden = conversation->hidden || hidden;
    }
    if (!found) {
        const QString message = QStringLiteral("Entry %1 not found").arg(id);
        return {kHttpNotFound, errorBody(kHttpNotFound, message), message, 1};
    }
    return {kHttpOk, toBody(QJsonObject{{QStringLiteral("id"), id}, {what, true}}), {}, 1};
}
