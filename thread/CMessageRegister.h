#pragma once
// The thread document's register of the messages it shows: by id, by version key (every version of one
// message shares it) and by the ids of their attachments. Finding a message, an older version of it or the
// message holding an attachment's tile costs the same on a long thread as on a short one.

#include "CMessageItemIndex.h"

#include <QHash>
#include <QList>
#include <QMultiHash>
#include <QString>

class CMessageRegister
{
public:
    void add(const CMessageItemIndex& index);
    void remove(const QString& id);
    void clear();

    bool contains(const QString& id) const { return m_messages.contains(id); }
    CMessageItemIndex find(const QString& id) const { return m_messages.value(id); }
    QList<CMessageItemIndex> all() const { return m_messages.values(); }

    // A registered version of `message` older than it, or an invalid index.
    CMessageItemIndex olderVersion(const CIncidentCommunication& message) const;

    // Whether a registered message carries the attachment, and which one (the newest registered).
    bool holdsAttachment(const QString& attachmentId) const { return m_attachments.contains(attachmentId); }
    CMessageItemIndex holderOf(const QString& attachmentId) const;

private:
    QHash<QString, CMessageItemIndex> m_messages;
    QMultiHash<QString, QString> m_versions; // version key -> message ids
    QHash<QString, QString> m_attachments;   // attachment id -> message id
};
