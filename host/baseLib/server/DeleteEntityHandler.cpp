#include "DeleteEntityHandler.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

DeleteEntityHandler::DeleteEntityHandler(QObject* parent)
    : CAbstractRestApi(parent)
{}

DeleteEntityHandler::~DeleteEntityHandler() = default;

QNetworkReply* DeleteEntityHandler::startDeleteEntity(const QList<QString>& ids)
{
    const QJsonObject body{{QStringLiteral("ids"), QJsonArray::fromStringList(ids)}};
    return startRequest("DELETE", QStringLiteral("/entities"),
                        QJsonDocument(body).toJson(QJsonDocument::Compact));
}

bool DeleteEntityHandler::handleReply(const QByteArray& body, QString& error)
{
    if (!QJsonDocument::fromJson(body).isObject()) {
        error = QStringLiteral("The server's answer to a deletion is unreadable");
        return false;
    }
    return true;
}
