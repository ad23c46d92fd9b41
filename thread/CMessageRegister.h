#pragma once
// The thread document's register of the messages it shows: by id, by version key (every version of one
// message shares it) and by the ids of their attachments, which unregistered messages are known by too.
// Finding a message, an older version of it or the message holding an attachment's tile costs the same on a
// long thread as on a short one.

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
    // A message shown without being registered (the user's own while it is being sent) is known by its
    // attachments only, until it goes.
    void addUnregistered(const CMessageItemIndex& index);
    // Forgets a message whose table is about to go, registered or not.
    void forget(const CMessageItemIndex& index);
    void clear();

    bool contains(const QString& id) const { return m_messages.contains(id); }
    CMessageItemIndex find(const QString& id) const { return m_messages.value(id); }
    QList<CMessageItemIndex> all() const { return m_messages.values(); }

    // A registered version of `message` older than it, or an invalid index.
    CMessageItemIndex olderVersion(const CIncidentCommunication& message) const;

    // The message shown that carries the attachment (the newest registered, else the one shown
    // unregistered), or an invalid index.
    CMessageItemIndex holderOf(const QString& attachmentId) const;

private:
    QHash<QString, CMessageItemIndex> m_messages;
    QMultiHash<QString, QString> m_versions;          // version key -> message ids
    QHash<QString, QString> m_attachments;            // attachment id -> message id
    QHash<QString, CMessageItemIndex> m_unregistered; // attachment id -> unregistered message
};
