#pragma once

#include "CAbstractRestApi.h"

#include <QList>
#include <QString>

// Deletes server entities (messages, drafts) by id.
class BASELIB_EXPORT DeleteEntityHandler : public CAbstractRestApi
{
    Q_OBJECT
public:
    explicit DeleteEntityHandler(QObject* parent = nullptr);
    ~DeleteEntityHandler() override;

    QNetworkReply* startDeleteEntity(const QList<QString>& ids);

protected:
    bool handleReply(const QByteArray& body, QString& error) override;
};
