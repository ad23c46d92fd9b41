#pragma once
// Sends what the composer holds into the shown support conversation: decides whether sending is possible,
// checks attachment names and the length before anything leaves, shows the outgoing message at once as not
// yet delivered, and marks it delivered or failed when the server answers. One message per conversation
// may wait for its answer; that blocks only its own conversation. A message whose answer comes while another
// conversation is shown is put back, with its state, when its conversation is loaded again, so that nothing
// the user wrote disappears. A refused message keeps its text and files and offers, in its bubble, to be sent
// again; it then goes the way of any other message and the same bubble shows its answer. Created by the
// plugin; works once the composer and conversation view exist.

#include "AttachmentEntity.h"
#include "CIncidentCommunication.h"
#include "CMessageItemIndex.h"

#include <QHash>
#include <QList>
#include <QNetworkReply>
#include <QObject>
#include <QPointer>

#include <memory>

class CAttachmentsModel;
class CComposer;
class CCommunicationObjectModel;
class CConversationView;
class CMessageItemsDocument;
class CNewsFetcher;
class CommunicationEntityCreateHandler;

class CMessageSender : public QObject
{
    Q_OBJECT
public:
    // The server's answer when the attached files are too large together.
    static constexpr int kTooLargeStatus = 413;
    // A balloon at a refused message stays until the user closes it.
    static constexpr unsigned kBalloonUntilClosed = 0xFFFFFFFFu;
    // A balloon on the composer has no timeout either.
    static constexpr unsigned kBalloonNoTimeout = 0;

    CMessageSender(CMessageItemsDocument& document, CAttachmentsModel& attachments,
                   CCommunicationObjectModel& model, std::shared_ptr<CNewsFetcher> fetcher,
                   QObject* parent = nullptr);
    ~CMessageSender() override;

    void attach(CComposer* composer, CConversationView* view);

    // The composer holds something to send and the shown conversation waits for no answer.
    bool canSend() const;
    bool isPending(const QString& threadId) const;
    // Sends the composer's text and files into `conversation`, the shown conversation.
    void send(const QModelIndex& conversation);
    // The "Send again" link of a refused message of the shown conversation was followed: the message goes
    // again, with the text and files it had, unless another message of the conversation is on its way.
    void sendAgain(const QString& href);

    static QString sendAgainLink(quint64 serial);
    static bool isSendAgainLink(const QString& href);

    // The texts of the two checks and of a refusal for too large files.
    static QString forbiddenNamesText(const QStringList& badNames);
    static QString tooLongText();
    static QString tooLargeText();

signals:
    // Whether sending is possible may have changed.
    void canSendChanged();

private:
    struct PendingSend
    {
        CIncidentCommunication built;
        CIncidentCommunication updated;
        CMessageItemIndex index;
        // What the server is given, kept until it has the message.
        QString text;
        QList<AttachmentEntity> uploads;
        // Names the message in its "Send again" link.
        quint64 serial = 0;
    };

    CIncidentCommunication outgoingRecord(const QString& threadId, const QString& text) const;
    // Follows the answer to a message just handed to the server (a null handler: nothing left).
    void follow(const QString& threadId, CommunicationEntityCreateHandler* handler, PendingSend pending);
    void markRefused(const QString& threadId, const PendingSend& pending);
    void onRefused(const QString& threadId, int status, const QString& message);
    void onFinished(const QString& threadId, CommunicationEntityCreateHandler* handler, bool ok);
    // Shows the waiting and refused messages of a conversation whose thread was just loaded.
    void onThreadLoaded(const QString& threadId);
    void showRefusal(const PendingSend& pending, const QString& text);
    bool isShown(const QString& threadId) const;

    CMessageItemsDocument& m_document;
    CAttachmentsModel& m_attachments;
    CCommunicationObjectModel& m_model;
    std::shared_ptr<CNewsFetcher> m_fetcher;
    QPointer<CComposer> m_composer;
    QPointer<CConversationView> m_view;
    QHash<QString, PendingSend> m_pending;
    // Refused messages per conversation, kept for as long as the plugin lives; an index is invalid while
    // its conversation is not shown.
    QHash<QString, QList<PendingSend>> m_refused;
    quint64 m_serial = 0;
};
