#include "CommunicationEntityUpdateHandler.h"

#include "EntityJson.h"
#include "UploadEncoder.h"

#include <QJsonDocument>
#include <QUrl>

CommunicationEntityUpdateHandler::CommunicationEntityUpdateHandler(QObject* parent)
    : CAbstractRestApi(parent)
{}

CommunicationEntityUpdateHandler::~CommunicationEntityUpdateHandler() = default;

QNetworkReply*
CommunicationEntityUpdateHandler::startUpdateCommunication(const CommunicationUpdateParams& params)
{
    m_entity = EntityDto::EntityDto();
    const QJsonObject body{{QStringLiteral("text"), params.text},
                           {QStringLiteral("isDraft"), params.isDraft},
                           {QStringLiteral("attachments"), UploadEncoder::encode(params.attachments)}};
    const QString path = QStringLiteral("/communications/%1")
                             .arg(QString::fromLatin1(QUrl::toPercentEncoding(params.entity.id)));
    return startRequest("PUT", path, QJsonDocument(body).toJson(QJsonDocument::Compact));
}

EntityDto::EntityDto CommunicationEntityUpdateHandler::getMessageEntity() const
{
    return m_entity;
}

bool CommunicationEntityUpdateHandler::handleReply(const QByteArray& body, QString& error)
{
    bool ok = false;
    m_entity = EntityJson::fromJson(QJsonDocument::fromJson(body).object(), &ok);
    if (!ok)
        error = QStringLiteral("The server's answer holds no message");
    return ok;
}
