#pragma once

#include "CAbstractRestApi.h"
#include "CommunicationParams.h"
#include "EntityDto.h"

// Changes the text (and files) of an existing message or draft.
class BASELIB_EXPORT CommunicationEntityUpdateHandler : public CAbstractRestApi
{
    Q_OBJECT
public:
    explicit CommunicationEntityUpdateHandler(QObject* parent = nullptr);
    ~CommunicationEntityUpdateHandler() override;

    QNetworkReply* startUpdateCommunication(const CommunicationUpdateParams& params);
    // The entity as the server stored it; valid after finished(true).
    EntityDto::EntityDto getMessageEntity() const;

protected:
    bool handleReply(const QByteArray& body, QString& error) override;

private:
    EntityDto::EntityDto m_entity;
};
