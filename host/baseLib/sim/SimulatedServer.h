#pragma once
// The simulated support server behind the stand-in host's services. Internal to the stand-in: the
// control surface (host/control) and baseLib use it, plugin code never does.
//
// Requests come in through startRequest() (CAbstractRestApi calls it) and are answered through the event
// loop after the configured latency, never inside the starting call; while holding is on they wait until
// released or failed. Changes made through the control surface take effect on the data at once and are
// announced by the push signals below, each emitted from the event loop, which the news fetcher turns into
// its own signals.

#include "../EntityDto.h"
#include "../EntitySchemaDto.h"
#include "../baseLibGlobal.h"
#include "ServerData.h"

#include <QByteArray>
#include <QHash>
#include <QJsonObject>
#include <QList>
#include <QNetworkReply>
#include <QObject>
#include <QPointer>
#include <QString>

#include <functional>

class SimulatedReply;

class BASELIB_EXPORT SimulatedServer : public QObject
{
    Q_OBJECT
public:
    static SimulatedServer& instance();

    // The entity schema ("lowcode schema"): ticket states with their display names.
    EntitySchemaDto::EntitySchemaDto schema() const;

    // ---- Data ------------------------------------------------------------------------------------------
    const ServerData& data() const { return m_data; }
    // Replaces all data (scenario load); announces a full reload.
    void setData(const ServerData& data);
    void clearData();
    // Back to a fresh server: no data, no latency, no holding, default limits, empty request log.
    void resetForTests();

    // Bumped whenever the data was replaced from outside the request path (scenario load, clear); clients
    // use it to tell a fresh start from their own changes.
    int generation() const { return m_generation; }

    // Entities as the wire carries them.
    EntityDto::EntityDto ticketEntity(const ServerData::Conversation& conversation) const;
    EntityDto::EntityDto messageEntity(const ServerData::Message& message) const;
    // The newest draft of a conversation; null when it has none.
    const ServerData::Message* draftOf(const QString& conversationId) const;
    // The listed messages of a thread (no drafts, no superseded versions), oldest first.
    QList<const ServerData::Message*> threadMessages(const QString& threadId, bool includeDrafts) const;
    QDateTime lastActivity(const ServerData::Conversation& conversation) const;
    int composerState(const QString& stateKey) const;

    // ---- Changes from the control surface (each announces itself through a push signal) -----------------
    void addNewsEntry(const ServerData::NewsEntry& entry);
    void removeNewsEntry(const QString& id);
    void addConversation(const ServerData::Conversation& conversation,
                         const QList<ServerData::Message>& messages,
                         const QList<ServerData::Attachment>& attachments);
    void setConversationState(const QString& conversationId, const QString& stateKey);
    QString postMessage(const QString& conversationId, const QString& text, const QString& senderId,
                        const QList<ServerData::Attachment>& attachments);
    QString editMessage(const QString& messageId, const QString& newText);
    void deleteMessage(const QString& messageId);
    void setTyping(const QString& conversationId, const QString& participantId, bool typing);
    void addParticipant(const ServerData::Participant& participant);
    void renameParticipant(const QString& participantId, const QString& firstName, const QString& lastName);
    void announceNewsChanged();
    void announceSyncViews();

    // ---- Requests --------------------------------------------------------------------------------------
    struct RequestRecord
    {
        int id = 0;
        QByteArray verb;
        QString path;
        QByteArray body;
        bool answered = false;
    };

    // Starts a request; the reply answers later. The caller owns the reply.
    QNetworkReply* startRequest(const QByteArray& verb, const QString& path, const QByteArray& body);

    void setLatency(int milliseconds);
    int latency() const { return m_latencyMs; }
    void setHoldRequests(bool hold);
    QList<RequestRecord> pendingRequests() const;
    bool releaseRequest(int requestId);
    bool failRequest(int requestId, int httpStatus, const QString& message);
    void releaseAllRequests();
    void failNextRequest(const QString& pathPart, int httpStatus, const QString& message);
    QList<RequestRecord> requestLog() const { return m_log; }
    void clearRequestLog() { m_log.clear(); }
    void setAttachmentSizeLimit(qint64 bytes) { m_data.limits.attachmentBytes = bytes; }
    void setMessageLengthLimit(int characters) { m_data.limits.messageLength = characters; }
    void setThreadAssignDelay(int milliseconds) { m_data.limits.threadAssignDelayMs = milliseconds; }

signals:
    // Push notifications, always emitted from the event loop.
    void newsListChanged();
    void syncViewsRequested();
    void communicationPosted(const EntityDto::EntityDto& message, const QString& conversationId);
    void communicationRemoved(const EntityDto::EntityDto& message, const QString& conversationId);
    void typingChanged(const QString& conversationId, const QString& participantId, bool typing);
    void participantsChanged();
    // A conversation that had no thread has one now.
    void threadOpened(const QString& conversationId);

private:
    struct Answer
    {
        int status = 200;
        QByteArray body;
        QString errorMessage; // non-empty: the request failed
        int chunks = 1;       // downloads arrive in several pieces
    };
    struct PendingFailure
    {
        QString pathPart;
        int status = 0;
        QString message;
    };

    SimulatedServer();

    void schedule(SimulatedReply* reply, int delayMs);
    void answer(SimulatedReply* reply);
    void answerWithError(SimulatedReply* reply, int status, const QString& message);
    Answer process(const QByteArray& verb, const QString& path, const QByteArray& body);
    Answer fetchThread(const QString& threadId);
    Answer createCommunication(const QString& threadId, const QByteArray& body);
    Answer updateCommunication(const QString& messageId, const QByteArray& body);
    Answer deleteEntities(const QByteArray& body);
    Answer downloadAttachment(const QString& attachmentId);
    Answer createTicket(const QByteArray& body);
    Answer listTickets();
    Answer listNews();
    Answer markEntry(const QString& id, const QString& what);
    // Reads uploaded files from a request body; fills `error` with an answer when they are refused.
    bool takeUploads(const QJsonObject& request, QList<ServerData::Attachment>& uploads, Answer& error);
    QString newId(const QString& prefix);
    void openThread(const QString& conversationId);
    void scheduleThreadAssignment(const QString& conversationId);
    void markLog(int requestId);
    // Runs `emitter` from the event loop.
    void push(std::function<void()> emitter);

    ServerData m_data;
    int m_generation = 0;
    int m_nextId = 1;
    int m_nextRequestId = 1;
    int m_latencyMs = 0;
    bool m_hold = false;
    QList<QPointer<SimulatedReply>> m_held;
    QList<RequestRecord> m_log;
    QList<PendingFailure> m_failures;
    QHash<int, PendingFailure> m_failuresByRequest;
};
