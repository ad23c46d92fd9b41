#pragma once
// One message of a support conversation thread.

#include "CIncidentAttachment.h"
#include "baseLibGlobal.h"

#include <QColor>
#include <QDateTime>
#include <QList>
#include <QMetaType>
#include <QString>

class WatcherAliases;

class BASELIB_EXPORT CIncidentCommunication
{
public:
    QString id;
    QString threadId;
    QString text;       // body, HTML or Markdown
    QString senderName; // author's display name
    QString senderId;   // participant identity
    bool nameKnown = false;
    QDateTime time;
    bool fromOtherParty = false; // written by support staff
    bool deleted = false;
    qint32 editVersion = 1;
    QString versionKey; // shared by every version of one message
    QList<CIncidentAttachment> attachments;
    QColor nameColor;

    // Takes the sender's name and colour from the participant's aliases and marks the name as known.
    void deducePartyName(const WatcherAliases& aliases);
    // The colour in which the sender's name is shown; invalid when the server gave none.
    QColor getNameColor() const;
};

Q_DECLARE_METATYPE(CIncidentCommunication)
