#pragma once
// A file to upload with a new message: a local file (path) or bytes held in memory (data, with fileName).

#include <QByteArray>
#include <QList>
#include <QString>

struct AttachmentEntity
{
    QString fileName;
    QString path;
    QByteArray data;
    QString mimeType;
};
