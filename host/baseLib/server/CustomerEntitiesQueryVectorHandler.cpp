#include "CustomerEntitiesQueryVectorHandler.h"

#include "EntityJson.h"

#include <QJsonDocument>
#include <QUrl>

CustomerEntitiesQueryVectorHandler::CustomerEntitiesQueryVectorHandler(QObject* parent)
    : CAbstractRestApi(parent)
{}

CustomerEntitiesQueryVectorHandler::~CustomerEntitiesQueryVectorHandler() = default;

QNetworkReply* CustomerEntitiesQueryVectorHandler::startFetchThread(const QString& threadId)
{
    const QString path = QStringLiteral("/threads/%1/communications")
                             .arg(QString::fromLatin1(QUrl::toPercentEncoding(threadId)));
    return startRequest("GET", path);
}

bool CustomerEntitiesQueryVectorHandler::handleReply(const QByteArray& body, QString& error)
{
    const QJsonDocument document = QJsonDocument::fromJson(body);
    if (!document.isArray()) {
        error = QStringLiteral("The server's answer holds no message list");
        return false;
    }
    emit entitiesFetched(EntityJson::listFromJson(document.array()));
    return true;
}
