#pragma once
// The reply of one request to the simulated support server: a readable QNetworkReply whose body, HTTP
// status and error are filled in by the server when it answers. A body can arrive in several pieces, one per
// event-loop pass, with downloadProgress() after each, the way a large download trickles in.

#include <QByteArray>
#include <QNetworkReply>

class SimulatedReply : public QNetworkReply
{
    Q_OBJECT
public:
    SimulatedReply(int requestId, const QByteArray& verb, const QString& path, QObject* parent = nullptr);
    ~SimulatedReply() override;

    int requestId() const { return m_requestId; }
    QByteArray verb() const { return m_verb; }
    QString path() const { return m_path; }
    QByteArray requestBody() const { return m_requestBody; }
    void setRequestBody(const QByteArray& body) { m_requestBody = body; }

    // Answers with `status` and `body`; a non-empty `errorMessage` makes it a failed request.
    void respond(int status, const QByteArray& body, const QString& errorMessage, int chunks);
    // True once the reply has been answered, failed or aborted (or is on its way to be).
    bool isAnswered() const { return m_answered; }

    void abort() override;
    qint64 bytesAvailable() const override;
    bool isSequential() const override { return true; }

    // The network error Qt's HTTP stack reports for an HTTP status.
    static NetworkError errorForStatus(int status);

protected:
    qint64 readData(char* data, qint64 maxSize) override;
    qint64 writeData(const char*, qint64) override { return -1; }

private:
    void deliverChunk(int index, int chunks);
    void complete();

    int m_requestId = 0;
    QByteArray m_verb;
    QString m_path;
    QByteArray m_requestBody;
    QByteArray m_body;   // the whole answer
    QByteArray m_buffer; // what has arrived and not been read yet
    qint64 m_delivered = 0;
    QString m_errorMessage;
    bool m_answered = false;
};
