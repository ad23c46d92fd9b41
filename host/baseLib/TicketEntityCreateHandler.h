#pragma once

#include "AttachmentEntity.h"
#include "CAbstractRestApi.h"
#include "EntityDto.h"

// Opens a new support conversation (a ticket with its first message).
class BASELIB_EXPORT TicketEntityCreateHandler : public CAbstractRestApi
{
    Q_OBJECT
public:
    explicit TicketEntityCreateHandler(QObject* parent = nullptr);
    ~TicketEntityCreateHandler() override;

    QNetworkReply* startCreateTicket(const QString& message, const QString& subject,
                                     const QList<AttachmentEntity>& files);
    // The ticket the server created; valid after finished(true).
    EntityDto::EntityDto getNewTicketEntity() const;

protected:
    bool handleReply(const QByteArray& body, QString& error) override;

private:
    EntityDto::EntityDto m_ticket;
};
