#include "PluginLoadResult.h"

#include <QFileInfo>
#include <QJsonDocument>

QString PluginLoadResult::summary() const
{
    const QString metaData = QString::fromUtf8(QJsonDocument(userMetaData).toJson(QJsonDocument::Compact));
    const QString state = loaded ? QStringLiteral("loaded") : QStringLiteral("refused: %1").arg(refusal);
    return QStringLiteral("%1  class '%2'  IID '%3'  MetaData %4  -> %5")
        .arg(QFileInfo(filePath).fileName(), className, interfaceId, metaData, state);
}
