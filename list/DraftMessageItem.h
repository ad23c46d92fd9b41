#pragma once
// Keeps the unsent text of one conversation in step with the server's draft message. Typing is saved at
// most once a second, one request at a time; an emptied text deletes the server draft; sending deletes the
// draft and posts the real message. Owned by CCommunicationObjectModel, one per listed entry; it survives
// list rebuilds as long as its entry stays listed.

#include "AttachmentEntity.h"
#include "CommunicationEntityCreateHandler.h"
#include "CommunicationEntityUpdateHandler.h"
#include "DeleteEntityHandler.h"
#include "EntityDto.h"
#include "MessageEntry.h"

#include <QList>
#include <QNetworkReply>
#include <QObject>
#include <QPointer>
#include <QTimer>

#include <memory>

class DraftMessageItem : public QObject
{
    Q_OBJECT
public:
    // Delay between the first keystroke of a burst and its save.
    static constexpr int kSaveDelayMs = 1000;
    // A save that falls due while a request is in flight is tried again this much later.
    static constexpr int kRetryDelayMs = 3000;
    // Set on a request in flight once the user has sent the message: its answer must not restore a draft.
    static constexpr const char* kDiscardProperty = "DoDiscardDraft";
    // Attribute of the conversation's entity that names the thread messages are posted to.
    static constexpr const char* kDefaultThreadAttribute = "CHAT_DEFAULT_THREAD_ID";

    DraftMessageItem(QObject* parent, const std::shared_ptr<Messenger::MessageEntry>& entry);
    ~DraftMessageItem() override;

    void setDraftText(const QString& text);
    // Starts the save timer unless it already runs, so a burst of typing is saved `ms` after its start.
    void scheduleSave(int ms);
    bool isDiscarding() const;
    // A save or delete request is in flight or a save is due.
    bool isBusy() const;
    void setDraftEntity(const EntityDto::EntityDto& entity);
    // Deletes the saved draft and posts the text as a real message; the caller follows the returned handler.
    CommunicationEntityCreateHandler* sendDraft(const QList<AttachmentEntity>& attachments);
    // Posts `text` as a real message into the conversation's thread; the draft stays as it is.
    CommunicationEntityCreateHandler* postMessage(const QString& text,
                                                  const QList<AttachmentEntity>& attachments) const;

    std::shared_ptr<Messenger::MessageEntry> entry() const { return m_entry; }
    // The thread of the conversation `entity` (a variant holding the ticket), empty when it names none.
    static QString defaultThreadId(const QVariant& entity);
    // The entity held by `value`; a default-constructed one for anything else.
    static EntityDto::EntityDto entityFrom(const QVariant& value);

private slots:
    void saveDraft();
    void onUpdateFinished(bool ok);
    void onCreateFinished(bool ok);
    void onDeleteFinished(bool ok);

private:
    QString threadId() const;
    static void deleteOnServer(const QString& id);

    std::shared_ptr<Messenger::MessageEntry> m_entry;
    QTimer m_saveTimer;
    CommunicationEntityUpdateHandler m_updateHandler;
    CommunicationEntityCreateHandler m_createHandler;
    DeleteEntityHandler m_deleteHandler;
    QPointer<QNetworkReply> m_pendingReply;
};
