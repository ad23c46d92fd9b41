#include "TicketEntityCreateHandler.h"

#include "EntityJson.h"
#include "UploadEncoder.h"

#include <QJsonDocument>

TicketEntityCreateHandler::TicketEntityCreateHandler(QObject* parent)
    : CAbstractRestApi(parent)
{}

TicketEntityCreateHandler::~TicketEntityCreateHandler() = default;

QNetworkReply* TicketEntityCreateHandler::startCreateTicket(const QString& message, const QString& subject,
                                                            const QList<AttachmentEntity>& files)
{
    m_ticket = EntityDto::EntityDto();
    const QJsonObject body{{QStringLiteral("message"), message},
                           {QStringLiteral("subject"), subject},
                           {QStringLiteral("attachments"), UploadEncoder::encode(files)}};
    return startRequest("POST", QStringLiteral("/tickets"),
                        QJsonDocument(body).toJson(QJsonDocument::Compact));
}

EntityDto::EntityDto TicketEntityCreateHandler::getNewTicketEntity() const
{
    return m_ticket;
}

bool TicketEntityCreateHandler::handleReply(const QByteArray& body, QString& error)
{
    bool ok = false;
    m_ticket = EntityJson::fromJson(QJsonDocument::fromJson(body).object(), &ok);
    if (!ok)
        error = QStringLiteral("The server's answer holds no ticket");
    return ok;
}
