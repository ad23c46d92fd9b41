#include "CommunicationEntityCreateHandler.h"

#include "EntityJson.h"
#include "UploadEncoder.h"

#include <QJsonDocument>
#include <QUrl>

CommunicationEntityCreateHandler::CommunicationEntityCreateHandler(QObject* parent)
    : CAbstractRestApi(parent)
{}

CommunicationEntityCreateHandler::~CommunicationEntityCreateHandler() = default;

QNetworkReply*
CommunicationEntityCreateHandler::startCreateCommunication(const CommunicationCreateParams& params)
{
    m_entity = EntityDto::EntityDto();
    const QJsonObject body{{QStringLiteral("text"), params.text},
                           {QStringLiteral("isDraft"), params.isDraft},
                           {QStringLiteral("attachments"), UploadEncoder::encode(params.attachments)}};
    const QString path = QStringLiteral("/threads/%1/communications")
                             .arg(QString::fromLatin1(QUrl::toPercentEncoding(params.threadId)));
    return startRequest("POST", path, QJsonDocument(body).toJson(QJsonDocument::Compact));
}

EntityDto::EntityDto CommunicationEntityCreateHandler::getMessageEntity() const
{
    return m_entity;
}

bool CommunicationEntityCreateHandler::handleReply(const QByteArray& body, QString& error)
{
    bool ok = false;
    m_entity = EntityJson::fromJson(QJsonDocument::fromJson(body).object(), &ok);
    if (!ok)
        error = QStringLiteral("The server's answer holds no message");
    return ok;
}
