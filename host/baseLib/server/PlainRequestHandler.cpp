#include "PlainRequestHandler.h"

QNetworkReply* PlainRequestHandler::start(const QByteArray& verb, const QString& path, const QByteArray& body)
{
    return startRequest(verb, path, body);
}

bool PlainRequestHandler::handleReply(const QByteArray&, QString&)
{
    return true;
}
