#pragma once
// A request whose answer carries nothing the caller needs beyond success or failure (marking entries read or
// hidden, reloading lists). Used inside baseLib by the news fetcher.

#include "CAbstractRestApi.h"

class PlainRequestHandler : public CAbstractRestApi
{
public:
    using CAbstractRestApi::CAbstractRestApi;

    QNetworkReply* start(const QByteArray& verb, const QString& path, const QByteArray& body = {});

protected:
    bool handleReply(const QByteArray& body, QString& error) override;
};
