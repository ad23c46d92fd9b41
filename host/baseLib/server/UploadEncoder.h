#pragma once
// Turns files to upload into the JSON that create and update requests carry: name, MIME type and the bytes
// in base64. A file that cannot be read is sent marked as such, so the server refuses the request and the
// handler reports it the usual way, from the event loop.

#include "AttachmentEntity.h"

#include <QJsonArray>
#include <QList>

class UploadEncoder
{
public:
    static QJsonArray encode(const QList<AttachmentEntity>& files);
};
