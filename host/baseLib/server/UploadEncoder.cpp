#include "UploadEncoder.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonObject>
#include <QMimeDatabase>

QJsonArray UploadEncoder::encode(const QList<AttachmentEntity>& files)
{
    QJsonArray result;
    const QMimeDatabase mimeDatabase;
    for (const AttachmentEntity& file : files) {
        QString fileName = file.fileName;
        if (fileName.isEmpty())
            fileName = QFileInfo(file.path).fileName();
        QByteArray data = file.data;
        bool readable = true;
        if (data.isEmpty() && !file.path.isEmpty()) {
            QFile source(file.path);
            readable = source.open(QIODevice::ReadOnly);
            if (readable)
                data = source.readAll();
        }
        QString mimeType = file.mimeType;
        if (mimeType.isEmpty())
            mimeType = mimeDatabase.mimeTypeForFileNameAndData(fileName, data).name();
        QJsonObject item{{QStringLiteral("fileName"), fileName},
                         {QStringLiteral("mimeType"), mimeType},
                         {QStringLiteral("data"), QString::fromLatin1(data.toBase64())}};
        if (!readable)
            item.insert(QStringLiteral("unreadable"), true);
        result.append(item);
    }
    return result;
}
