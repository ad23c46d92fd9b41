#include "CAbstractRestApi.h"

#include "SimulatedServer.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QPointer>

CAbstractRestApi::CAbstractRestApi(QObject* parent)
    : QObject(parent)
{}

CAbstractRestApi::~CAbstractRestApi()
{
    if (m_reply) {
        // Nobody listens any more: end the request without reporting it.
        m_reply->disconnect(this);
        m_reply->abort();
        m_reply->deleteLater();
    }
}

QNetworkReply* CAbstractRestApi::reply() const
{
    return m_reply;
}

bool CAbstractRestApi::isRunning() const
{
    return !m_reply.isNull();
}

void CAbstractRestApi::setAutoDelete(bool autoDelete)
{
    m_autoDelete = autoDelete;
}

bool CAbstractRestApi::autoDelete() const
{
    return m_autoDelete;
}

void CAbstractRestApi::abort()
{
    if (m_reply)
        m_reply->abort();
}

QNetworkReply* CAbstractRestApi::startRequest(const QByteArray& verb, const QString& path,
                                              const QByteArray& body)
{
    if (m_reply) {
        // One request at a time: a new one replaces the old, which ends unreported.
        QNetworkReply* old = m_reply;
        m_reply = nullptr;
        old->disconnect(this);
        old->abort();
        old->deleteLater();
    }
    QNetworkReply* reply = SimulatedServer::instance().startRequest(verb, path, body);
    m_reply = reply;
    connect(reply, &QNetworkReply::finished, this, [this, reply] { onReplyFinished(reply); });
    return reply;
}

void CAbstractRestApi::onReplyFinished(QNetworkReply* reply)
{
    if (reply != m_reply)
        return;
    QPointer<CAbstractRestApi> self(this);
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    const QByteArray body = reply->readAll();
    m_reply = nullptr;
    reply->deleteLater();

    bool ok = false;
    if (reply->error() != QNetworkReply::NoError) {
        QString message = QJsonDocument::fromJson(body).object().value(QStringLiteral("message")).toString();
        if (message.isEmpty())
            message = reply->errorString();
        emit requestErrorOccured(status, reply->error(), message, body);
    } else {
        QString error;
        ok = handleReply(body, error);
        if (!ok && self)
            emit requestErrorOccured(status, QNetworkReply::UnknownContentError, error, body);
    }
    if (!self)
        return;
    emit finished(ok);
    if (self && m_autoDelete)
        deleteLater();
}
