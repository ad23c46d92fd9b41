#include "CMessageSender.h"

#include "AttachmentEntity.h"
#include "BalloonMessage.h"
#include "CAttachmentsModel.h"
#include "CCommunicationObjectModel.h"
#include "CComposer.h"
#include "CConversationView.h"
#include "CMessageItemsDocument.h"
#include "CNewsFetcher.h"
#include "CSignInService.h"
#include "CVantrelApp.h"
#include "ChatServiceApi.h"

#include <QDateTime>
#include <QFileInfo>
#include <QTextBrowser>
#include <QTextEdit>

#include <algorithm>

namespace {

const QString kNameSeparator = QStringLiteral(", ");
const QString kSendAgainScheme = QStringLiteral("sendagain:");

} // namespace

CMessageSender::CMessageSender(CMessageItemsDocument& document, CAttachmentsModel& attachments,
                               CCommunicationObjectModel& model, std::shared_ptr<CNewsFetcher> fetcher,
                               QObject* parent)
    : QObject(parent)
    , m_document(document)
    , m_attachments(attachments)
    , m_model(model)
    , m_fetcher(std::move(fetcher))
{}

CMessageSender::~CMessageSender() = default;

void CMessageSender::attach(CComposer* composer, CConversationView* view)
{
    m_composer = composer;
    m_view = view;
    connect(view, &CConversationView::threadLoaded, this, &CMessageSender::onThreadLoaded);
}

QString CMessageSender::forbiddenNamesText(const QStringList& badNames)
{
    return QObject::tr("The following files cannot be used as attachments: %1. Attachment name can't contain "
                       "any of the following characters: %2")
        .arg(badNames.join(kNameSeparator), CAttachmentsModel::kForbiddenCharactersPattern);
}

QString CMessageSender::tooLongText()
{
    return QObject::tr("The message is too long, please make it shorter.");
}

QString CMessageSender::tooLargeText()
{
    return QObject::tr("Cannot send the message: attached files summary size is too large.");
}

bool CMessageSender::canSend() const
{
    if (!m_composer || !m_view || isPending(m_view->currentThreadId()))
        return false;
    return m_composer->hasContent();
}

bool CMessageSender::isPending(const QString& threadId) const
{
    return m_pending.contains(threadId);
}

void CMessageSender::send(const QModelIndex& conversation)
{
    if (!conversation.isValid() || !conversation.data(CCommunicationObjectModel::ConversationRole).toBool() ||
        !m_fetcher || !m_view || !m_view->canCompose() || !canSend())
        return;
    QTextEdit* editor = m_composer->editor();

    QStringList badNames;
    if (!m_attachments.checkNames(badNames)) {
        issueBalloonMessage(editor, forbiddenNamesText(badNames), QMessageBox::Critical, QRect(),
                            kBalloonNoTimeout);
        return;
    }
    const QString text = m_composer->messageText();
    const QList<OutgoingAttachment> files = m_attachments.attachments();
    if (text.isEmpty() && files.isEmpty())
        return;
    QString counterText;
    if (!ChatServiceApi::checkCommunicationLength(text, counterText)) {
        issueBalloonMessage(editor, tooLongText(), QMessageBox::Critical, QRect(), kBalloonNoTimeout);
        return;
    }

    const QString threadId = m_view->currentThreadId();
    // The draft keeper posts the text it holds: make sure that is exactly what is sent.
    m_model.setDraftText(conversation, text);
    m_composer->replaceQuietly(QString());
    m_attachments.removeAll();

    CIncidentCommunication record = outgoingRecord(threadId, text);
    QList<AttachmentEntity> uploads;
    for (const OutgoingAttachment& file : files) {
        const QString name = file.data.isEmpty() ? QFileInfo(file.path).fileName() : file.path;
        uploads.append({name, file.data.isEmpty() ? file.path : QString(), file.data, QString()});
        CIncidentAttachment attachment;
        attachment.fileName = name;
        attachment.localPath = file.path;
        attachment.size = quint64(file.data.isEmpty() ? QFileInfo(file.path).size() : file.data.size());
        // Nothing to download until the server has it.
        attachment.noLink = true;
        record.attachments.append(attachment);
    }

    CommunicationEntityCreateHandler* handler = m_model.sendDraft(conversation, uploads);
    PendingSend pending{record, record, m_document.appendMessage(record), text, uploads, ++m_serial};
    follow(threadId, handler, pending);
}

void CMessageSender::follow(const QString& threadId, CommunicationEntityCreateHandler* handler,
                            PendingSend pending)
{
    if (!handler) {
        // No keeper for this conversation: nothing left, but what the user wrote stays in view.
        markRefused(threadId, pending);
        return;
    }
    connect(handler, &CAbstractRestApi::requestErrorOccured, this,
            [this, threadId](int status, QNetworkReply::NetworkError, const QString& message,
                             const QByteArray&) { onRefused(threadId, status, message); });
    connect(handler, &CAbstractRestApi::finished, this,
            [this, threadId, handler](bool ok) { onFinished(threadId, handler, ok); });
    m_document.setDeliveryStatus(pending.index, CMessageItemsDocument::NotDelivered);
    m_pending.insert(threadId, pending);
    if (m_view)
        m_view->scrollTo(pending.index);
    emit canSendChanged();
}

void CMessageSender::markRefused(const QString& threadId, const PendingSend& pending)
{
    m_refused[threadId].append(pending);
    m_document.setDeliveryStatus(pending.index, CMessageItemsDocument::DeliveryFailed,
                                 sendAgainLink(pending.serial));
}

QString CMessageSender::sendAgainLink(quint64 serial)
{
    return kSendAgainScheme + QString::number(serial);
}

bool CMessageSender::isSendAgainLink(const QString& href)
{
    return href.startsWith(kSendAgainScheme);
}

void CMessageSender::sendAgain(const QString& href)
{
    if (!isSendAgainLink(href) || !m_view || !m_view->canCompose())
        return;
    const QString threadId = m_view->currentThreadId();
    const auto refused = m_refused.find(threadId);
    // One message at a time per conversation, as with the send button.
    if (refused == m_refused.end() || isPending(threadId))
        return;
    const auto again = std::find_if(refused->begin(), refused->end(), [&](const PendingSend& candidate) {
        return sendAgainLink(candidate.serial) == href && candidate.index.isValid();
    });
    if (again == refused->end())
        return;
    const PendingSend pending = *again;
    refused->erase(again);
    follow(threadId, m_model.postMessage(m_view->currentConversation(), pending.text, pending.uploads),
           pending);
}

CIncidentCommunication CMessageSender::outgoingRecord(const QString& threadId, const QString& text) const
{
    CIncidentCommunication record;
    record.threadId = threadId;
    record.text = text;
    record.time = QDateTime::currentDateTime();
    CSignInService* signIn = vantrelApp ? vantrelApp->getSignInService() : nullptr;
    if (signIn) {
        const Ordenz::SignIn::UserInfo user = signIn->getLoggedInUserInfo();
        record.senderName = QObject::tr("%1 %2", "Name formatting rules, first argument for the firstName, "
                                                 "second - for the lastName")
                                .arg(user.firstName, user.lastName)
                                .trimmed();
        record.senderId = user.userId;
    }
    return record;
}

void CMessageSender::onRefused(const QString& threadId, int status, const QString& message)
{
    const auto pending = m_pending.constFind(threadId);
    if (pending == m_pending.cend())
        return;
    QString text = status == kTooLargeStatus ? tooLargeText() : message.trimmed();
    if (text.isEmpty())
        text = QObject::tr("The message could not be sent. Please try again later.");
    markRefused(threadId, *pending);
    showRefusal(*pending, text);
}

void CMessageSender::showRefusal(const PendingSend& pending, const QString& text)
{
    const QRect at = m_view ? m_view->messageRect(pending.index) : QRect();
    if (at.isValid())
        issueBalloonMessage(m_view->threadView(), text, QMessageBox::Critical, at, kBalloonUntilClosed);
}

void CMessageSender::onFinished(const QString& threadId, CommunicationEntityCreateHandler* handler, bool ok)
{
    const auto found = m_pending.find(threadId);
    if (found == m_pending.end())
        return;
    PendingSend pending = *found;
    m_pending.erase(found);
    if (ok && m_fetcher) {
        pending.updated = m_fetcher->communicationEntityToMessageInfo(handler->getMessageEntity());
        if (pending.index.isValid() && !pending.updated.id.isEmpty())
            m_document.updateMessage(pending.index, pending.updated);
        else if (pending.index.isValid())
            m_document.setDeliveryStatus(pending.index, CMessageItemsDocument::Delivered);
        else if (isShown(threadId))
            m_document.appendMessage(pending.updated);
        const QModelIndex conversation = m_model.indexForKey(threadId);
        m_model.refreshItem(conversation);
    }
    emit canSendChanged();
}

void CMessageSender::onThreadLoaded(const QString& threadId)
{
    const auto pending = m_pending.find(threadId);
    if (pending != m_pending.end() && !pending->index.isValid()) {
        pending->index = m_document.appendMessage(pending->built);
        m_document.setDeliveryStatus(pending->index, CMessageItemsDocument::NotDelivered);
    }
    const auto refused = m_refused.find(threadId);
    if (refused == m_refused.end())
        return;
    for (PendingSend& send : *refused) {
        if (send.index.isValid())
            continue;
        send.index = m_document.appendMessage(send.built);
        m_document.setDeliveryStatus(send.index, CMessageItemsDocument::DeliveryFailed,
                                     sendAgainLink(send.serial));
    }
}

bool CMessageSender::isShown(const QString& threadId) const
{
    return m_view && !threadId.isEmpty() && m_view->currentThreadId() == threadId;
}
