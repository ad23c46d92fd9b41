#pragma once
// Everything the simulated support server stores: the user, participants, news, conversations with their
// threads, drafts and attachment bytes, the ticket states and the limits it enforces. Plain data; the
// server (SimulatedServer) owns one instance and the scenario reader fills it.

#include "../baseLibGlobal.h"

#include <QByteArray>
#include <QColor>
#include <QDateTime>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

struct BASELIB_EXPORT ServerData
{
    static constexpr int kDefaultMessageLength = 4000;
    static constexpr qint64 kDefaultAttachmentBytes = 10 * 1024 * 1024;
    static constexpr int kDefaultThreadAssignDelayMs = 5000;

    struct User
    {
        QString id = QStringLiteral("u-self");
        QString firstName = QStringLiteral("Alex");
        QString lastName = QStringLiteral("Morgan");
        QString email = QStringLiteral("alex.morgan@example.com");
    };

    struct Participant
    {
        QString id;
        QString firstName;
        QString lastName;
        QString displayName;
        QColor nameColor;
    };

    struct NewsEntry
    {
        enum Kind
        {
            Important,
            Offer
        };
        QString id;
        Kind kind = Important;
        QString title;
        QString subtitle;
        QString dateText; // empty: formatted from `published`
        QString html;
        QDateTime published;
        QDateTime expires; // offers only; invalid: never expires
        bool read = false;
        bool hidden = false;
        bool pinned = false;
    };

    struct Attachment
    {
        QString id;
        QString fileName;
        QString mimeType;
        QByteArray data;
    };

    // A message, a superseded older version of one, or a draft.
    struct Message
    {
        QString id;
        QString threadId;
        QString text;
        QString senderId;
        QDateTime time;
        QDateTime createdAt;
        QDateTime updatedAt;
        bool deleted = false;
        bool superseded = false; // an edit replaced it; kept for the record, no longer listed
        bool isDraft = false;
        int editVersion = 1;
        int revision = 1;
        QString versionKey;
        QStringList attachmentIds;
    };

    struct State
    {
        QString key;
        QString displayName;
        int composerState = 0; // 0 open, 1 waiting for the user, 2 closed (takes no more messages)
    };

    struct Conversation
    {
        QString id;
        QString subject;
        QString stateKey;
        QString firstMessage;
        QStringList firstMessageAttachmentIds;
        QString agentId;  // the support participant who answers by default
        QString threadId; // empty: the server has not opened a thread yet
        QDateTime created;
        bool read = true;
        bool hidden = false;
    };

    struct Limits
    {
        int messageLength = kDefaultMessageLength;
        qint64 attachmentBytes = kDefaultAttachmentBytes;
        int threadAssignDelayMs = kDefaultThreadAssignDelayMs; // negative: never
    };

    User user;
    QList<Participant> participants;
    QList<NewsEntry> news;
    QList<Conversation> conversations;
    QList<Message> messages; // every thread's messages and drafts, in the order they were stored
    QHash<QString, Attachment> attachments;
    QList<State> states;
    Limits limits;

    static QList<State> defaultStates();

    const Participant* participant(const QString& id) const;
    Participant* participant(const QString& id);
    const NewsEntry* newsEntry(const QString& id) const;
    NewsEntry* newsEntry(const QString& id);
    const Conversation* conversation(const QString& id) const;
    Conversation* conversation(const QString& id);
    const Conversation* conversationOfThread(const QString& threadId) const;
    const Message* message(const QString& id) const;
    Message* message(const QString& id);
    const State* state(const QString& key) const;
};
