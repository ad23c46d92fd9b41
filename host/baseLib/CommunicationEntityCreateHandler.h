#pragma once

#include "CAbstractRestApi.h"
#include "CommunicationParams.h"
#include "EntityDto.h"

// Creates a message (or a draft) in a conversation thread.
class BASELIB_EXPORT CommunicationEntityCreateHandler : public CAbstractRestApi
{
    Q_OBJECT
public:
    explicit CommunicationEntityCreateHandler(QObject* parent = nullptr);
    ~CommunicationEntityCreateHandler() override;

    QNetworkReply* startCreateCommunication(const CommunicationCreateParams& params);
    // The entity the server created; valid after finished(true).
    EntityDto::EntityDto getMessageEntity() const;

protected:
    bool handleReply(const QByteArray& body, QString& error) override;

private:
    EntityDto::EntityDto m_entity;
};
