#pragma once
// Parameters of the requests that create or update a message.

#include "AttachmentEntity.h"
#include "EntityDto.h"

#include <QList>
#include <QString>

struct CommunicationCreateParams
{
    QString threadId;
    QString text;
    QList<AttachmentEntity> attachments;
    bool isDraft = false;
};

struct CommunicationUpdateParams
{
    EntityDto::EntityDto entity; // the message as last received
    QString text;
    QList<AttachmentEntity> attachments;
    bool isDraft = false;
};
