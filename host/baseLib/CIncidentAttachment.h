#pragma once
// One file attached to a message of a support conversation.

#include "baseLibGlobal.h"

#include <QMetaType>
#include <QString>

class BASELIB_EXPORT CIncidentAttachment
{
public:
    QString id;          // the server's attachment id
    QString fileName;    // as the sender named it
    quint64 size = 0;    // bytes
    QString mimeType;    // as the server reports it, e.g. "image/png"; may be empty
    QString localPath;   // outgoing messages: the local file
    bool noLink = false; // shown without a download link (e.g. not yet uploaded)
};

Q_DECLARE_METATYPE(CIncidentAttachment)
