#pragma once
// Reads and writes the simulated server's scenario format (documented in README.md): the user,
// participants, news, conversations with their messages and drafts, ticket states and limits. Reading
// checks every member's type and reports the first fault with the source name and where it is: line and
// column for malformed JSON, the JSON path (e.g. "/conversations/1/messages/0/text") for a wrong type.

#include "../baseLibGlobal.h"
#include "ServerData.h"

#include <QByteArray>
#include <QDateTime>
#include <QJsonObject>
#include <QString>

class BASELIB_EXPORT ScenarioCodec
{
public:
    static bool read(const QByteArray& json, const QString& sourceName, ServerData& data, QString* error);
    // Reads one object of a section ("news", "participants", "conversations") into `data`, where it is
    // appended; used for single additions through the control surface.
    static bool readNewsEntry(const QJsonObject& json, ServerData& data, QString* error);
    static bool readParticipant(const QJsonObject& json, ServerData& data, QString* error);
    static bool readConversation(const QJsonObject& json, ServerData& data, QString* error);
    static bool readAttachment(const QJsonObject& json, ServerData& data, QString* attachmentId,
                               QString* error);

    static QJsonObject write(const ServerData& data);
    static QJsonObject writeMessage(const ServerData& data, const ServerData::Message& message);

    // "now", "+3d", "-90m", "-30s", "+2h" relative to `now`, or an ISO 8601 date-time; invalid when neither.
    static QDateTime parseTime(const QString& text, const QDateTime& now);
};
