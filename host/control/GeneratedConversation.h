#pragma once
// Long support conversations made up on the spot, in the scenario format: own and support messages with
// Markdown and HTML bodies of many shapes and sizes (paragraphs, lists, tables, code, quotes), attachments
// now and then, edited and deleted messages. The same seed gives the same conversation. Used by the
// reference host's "Support server" menu and by benchmarks that need a realistic thread.

#include <QJsonObject>
#include <QString>

class GeneratedConversation
{
public:
    // A conversation `id` of `messageCount` messages between the user "u-self" and the participants
    // "s-anna" and "s-marco", one to twenty minutes apart, ending now.
    static QJsonObject make(const QString& id, int messageCount, quint32 seed = 1);
};
