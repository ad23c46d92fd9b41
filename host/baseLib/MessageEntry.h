#pragma once
// One news entry or one support conversation head, as the news fetcher lists them.

#include <QDateTime>
#include <QMetaType>
#include <QString>
#include <QVariant>

#include <memory>

namespace Messenger {

struct MessageEntry
{
    QString id;
    QString title;
    QString dateText;
    QString extraText; // the news entry's HTML content; empty for conversations
    QString subtitle;
    QDateTime firstTime;  // publication or creation time
    QDateTime secondTime; // expiry of an offer, or last activity of a conversation
    qint32 status = 0;    // state of a conversation: 0 open, 1 waiting for the user, 2 closed
    QVariant entity;      // EntityDto::EntityDto (for conversations: the ticket)
    QVariant draftEntity; // EntityDto::EntityDto of the saved draft, or null
    QString draftText;

    struct Flags
    {
        quint8 isImportant : 1;
        quint8 flagBit1 : 1; // pinned by the vendor: cannot be hidden, painted faded
        quint8 isRead : 1;
        quint8 isConversation : 1;
        quint8 reserved : 4;
    } flags{0, 0, 0, 0, 0};
};

using MessageEntryPtr = std::shared_ptr<MessageEntry>;

} // namespace Messenger

Q_DECLARE_METATYPE(Messenger::MessageEntryPtr)
