#pragma once

#include "CAbstractRestApi.h"
#include "EntityDto.h"

#include <QList>

// Loads the messages of one conversation thread (drafts left out), oldest first.
class BASELIB_EXPORT CustomerEntitiesQueryVectorHandler : public CAbstractRestApi
{
    Q_OBJECT
public:
    explicit CustomerEntitiesQueryVectorHandler(QObject* parent = nullptr);
    ~CustomerEntitiesQueryVectorHandler() override;

    QNetworkReply* startFetchThread(const QString& threadId);

signals:
    void entitiesFetched(QList<EntityDto::EntityDto> entities);

protected:
    bool handleReply(const QByteArray& body, QString& error) override;
};
