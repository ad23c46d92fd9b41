#pragma once
// The older part of a long thread that is not in the thread document yet. A long conversation opens with
// its newest messages; the older ones wait here, oldest first, and go into the document a portion at a time
// as the reader scrolls up. Live changes to a waiting message (a new version, a deletion) replace it here,
// so it shows as it is now when its turn comes.

#include "CIncidentCommunication.h"

#include <QHash>
#include <QList>

class COlderMessages
{
public:
    void clear();
    // The waiting messages, oldest first.
    void assign(QList<CIncidentCommunication> messages);
    bool isEmpty() const { return m_messages.isEmpty(); }
    qsizetype size() const { return m_messages.size(); }

    // When `message` is a version of a waiting one (same id or same version key), it takes that one's place;
    // returns whether it did.
    bool absorb(const CIncidentCommunication& message);

    // Removes and returns the newest `count` waiting messages, oldest first.
    QList<CIncidentCommunication> takeNewest(qsizetype count);

private:
    QList<CIncidentCommunication> m_messages;
    QHash<QString, qsizetype> m_byKey; // id and version key -> place in m_messages
};
