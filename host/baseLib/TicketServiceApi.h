#pragma once

#include "AttachmentEntity.h"
#include "TicketEntityCreateHandler.h"
#include "baseLibGlobal.h"

// Facade of the support ticket service.
class BASELIB_EXPORT TicketServiceApi
{
public:
    // Opens a new conversation; the handler deletes itself after it has reported finished().
    static TicketEntityCreateHandler* startCreateTicket(const QString& message, const QString& subject,
                                                        const QList<AttachmentEntity>& files);
};
