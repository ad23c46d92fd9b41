#pragma once
// Base of the host's request handlers. A handler starts one request at a time against the support server
// and reports its end by signals, always after the call that started it has returned:
// on failure requestErrorOccured(...) and then finished(false); on success its own result signals, if any,
// and then finished(true).

#include "baseLibGlobal.h"

#include <QByteArray>
#include <QNetworkReply>
#include <QObject>
#include <QPointer>

class BASELIB_EXPORT CAbstractRestApi : public QObject
{
    Q_OBJECT
public:
    explicit CAbstractRestApi(QObject* parent = nullptr);
    ~CAbstractRestApi() override;

    // The request in flight, or null.
    QNetworkReply* reply() const;
    bool isRunning() const;

    // A handler that deletes itself (deleteLater) after it has reported finished(). The service facades
    // hand out such handlers.
    void setAutoDelete(bool autoDelete);
    bool autoDelete() const;

public slots:
    // Cancels the request in flight; it ends with requestErrorOccured(0, OperationCanceledError, ...) and
    // finished(false).
    void abort();

signals:
    void finished(bool ok);
    void requestErrorOccured(int httpStatus, QNetworkReply::NetworkError error, const QString& message,
                             const QByteArray& body);

protected:
    // Sends a JSON request to the support server and follows its reply.
    QNetworkReply* startRequest(const QByteArray& verb, const QString& path, const QByteArray& body = {});
    // Called with the body of a successful reply; returns false (with `error`) when the body is unusable.
    virtual bool handleReply(const QByteArray& body, QString& error) = 0;

private:
    void onReplyFinished(QNetworkReply* reply);

    QPointer<QNetworkReply> m_reply;
    bool m_autoDelete = false;
};
