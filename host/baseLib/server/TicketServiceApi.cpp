#include "TicketServiceApi.h"

TicketEntityCreateHandler* TicketServiceApi::startCreateTicket(const QString& message, const QString& subject,
                                                               const QList<AttachmentEntity>& files)
{
    auto* handler = new TicketEntityCreateHandler;
    handler->setAutoDelete(true);
    handler->startCreateTicket(message, subject, files);
    return handler;
}
