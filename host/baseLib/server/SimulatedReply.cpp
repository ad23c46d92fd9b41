#include "SimulatedReply.h"

#include <QPointer>
#include <QTimer>
#include <QUrl>

#include <algorithm>

namespace {

const QString kUrlPrefix = QStringLiteral("sim://support.example.com");

QNetworkAccessManager::Operation operationOf(const QByteArray& verb)
{
    if (verb == "GET")
        return QNetworkAccessManager::GetOperation;
    if (verb == "POST")
        return QNetworkAccessManager::PostOperation;
    if (verb == "PUT")
        return QNetworkAccessManager::PutOperation;
    if (verb == "DELETE")
        return QNetworkAccessManager::DeleteOperation;
    return QNetworkAccessManager::CustomOperation;
}

} // namespace

SimulatedReply::SimulatedReply(int requestId, const QByteArray& verb, const QString& path, QObject* parent)
    : QNetworkReply(parent)
    , m_requestId(requestId)
    , m_verb(verb)
    , m_path(path)
{
    setOperation(operationOf(verb));
    setUrl(QUrl(kUrlPrefix + path));
    open(QIODevice::ReadOnly | QIODevice::Unbuffered);
}

SimulatedReply::~SimulatedReply() = default;

QNetworkReply::NetworkError SimulatedReply::errorForStatus(int status)
{
    switch (status) {
    case 0:
        return UnknownNetworkError;
    case 400:
        return ProtocolInvalidOperationError;
    case 401:
        return AuthenticationRequiredError;
    case 403:
        return ContentAccessDenied;
    case 404:
        return ContentNotFoundError;
    case 405:
        return ContentOperationNotPermittedError;
    case 409:
        return ContentConflictError;
    case 410:
        return ContentGoneError;
    case 500:
        return InternalServerError;
    case 501:
        return OperationNotImplementedError;
    case 503:
        return ServiceUnavailableError;
    default:
        break;
    }
    if (status >= 400 && status < 500)
        return UnknownContentError;
    if (status >= 500)
        return UnknownServerError;
    return NoError;
}

void SimulatedReply::respond(int status, const QByteArray& body, const QString& errorMessage, int chunks)
{
    if (m_answered)
        return;
    m_answered = true;
    m_body = body;
    m_errorMessage = errorMessage;
    setAttribute(QNetworkRequest::HttpStatusCodeAttribute, status);
    setHeader(QNetworkRequest::ContentLengthHeader, body.size());
    emit metaDataChanged();
    deliverChunk(0, std::max(1, chunks));
}

void SimulatedReply::deliverChunk(int index, int chunks)
{
    if (isFinished())
        return;
    const qint64 total = m_body.size();
    const qint64 end = index + 1 >= chunks ? total : total * (index + 1) / chunks;
    if (end > m_delivered) {
        m_buffer.append(m_body.mid(m_delivered, end - m_delivered));
        m_delivered = end;
        emit downloadProgress(m_delivered, total);
        emit readyRead();
    }
    if (index + 1 >= chunks) {
        complete();
        return;
    }
    QPointer<SimulatedReply> self(this);
    QTimer::singleShot(0, this, [self, index, chunks] {
        if (self)
            self->deliverChunk(index + 1, chunks);
    });
}

void SimulatedReply::complete()
{
    if (!m_errorMessage.isEmpty()) {
        const int status = attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
        setError(errorForStatus(status) == NoError ? UnknownServerError : errorForStatus(status),
                 m_errorMessage);
        emit errorOccurred(error());
    }
    setFinished(true);
    emit finished();
}

void SimulatedReply::abort()
{
    if (isFinished())
        return;
    m_answered = true;
    setError(OperationCanceledError, QStringLiteral("Operation canceled"));
    emit errorOccurred(error());
    setFinished(true);
    emit finished();
}

qint64 SimulatedReply::bytesAvailable() const
{
    return m_buffer.size() + QIODevice::bytesAvailable();
}

qint64 SimulatedReply::readData(char* data, qint64 maxSize)
{
    const qint64 count = std::min<qint64>(maxSize, m_buffer.size());
    if (count == 0)
        return isFinished() ? -1 : 0;
    std::copy_n(m_buffer.constData(), count, data);
    m_buffer.remove(0, count);
    return count;
}
