#pragma once
// One file the user attached to the message being written, as the send path uploads it. The attachments
// model keeps one record per row, in row order.

#include <QByteArray>
#include <QMetaType>
#include <QString>

struct OutgoingAttachment
{
    // The content when it is held in memory (a pasted screenshot as PNG); empty for a file on disk.
    QByteArray data;
    // The absolute path of a file on disk, or the generated name of a screenshot. Two records with the same
    // path are the same attachment.
    QString path;
};

Q_DECLARE_METATYPE(OutgoingAttachment)
