#include "DraftMessageItem.h"

#include "ChatServiceApi.h"
#include "CommunicationParams.h"

namespace {

// A draft that exists on the server carries its creation stamp; one without it was never stored.
bool isStoredOnServer(const EntityDto::EntityDto& draft)
{
    return !draft.id.isEmpty() && !draft.createdAt.isEmpty();
}

} // namespace

DraftMessageItem::DraftMessageItem(QObject* parent, const std::shared_ptr<Messenger::MessageEntry>& entry)
    : QObject(parent)
    , m_entry(entry ? entry : std::make_shared<Messenger::MessageEntry>())
{
    m_saveTimer.setSingleShot(true);
    connect(&m_saveTimer, &QTimer::timeout, this, &DraftMessageItem::saveDraft);
    connect(&m_updateHandler, &CAbstractRestApi::finished, this, &DraftMessageItem::onUpdateFinished);
    connect(&m_createHandler, &CAbstractRestApi::finished, this, &DraftMessageItem::onCreateFinished);
    connect(&m_deleteHandler, &CAbstractRestApi::finished, this, &DraftMessageItem::onDeleteFinished);
}

DraftMessageItem::~DraftMessageItem() = default;

void DraftMessageItem::setDraftText(const QString& text)
{
    if (text == m_entry->draftText)
        return;
    m_entry->draftText = text;
    scheduleSave(kSaveDelayMs);
}

void DraftMessageItem::scheduleSave(int ms)
{
    if (!m_saveTimer.isActive())
        m_saveTimer.start(ms);
}

bool DraftMessageItem::isDiscarding() const
{
    return m_pendingReply && m_pendingReply->property(kDiscardProperty).toBool();
}

bool DraftMessageItem::isBusy() const
{
    return m_pendingReply || m_saveTimer.isActive();
}

void DraftMessageItem::setDraftEntity(const EntityDto::EntityDto& entity)
{
    m_entry->draftEntity = QVariant::fromValue(entity);
}

CommunicationEntityCreateHandler* DraftMessageItem::sendDraft(const QList<AttachmentEntity>& attachments)
{
    m_saveTimer.stop();
    if (m_pendingReply)
        m_pendingReply->setProperty(kDiscardProperty, true);

    const EntityDto::EntityDto draft = entityFrom(m_entry->draftEntity);
    if (isStoredOnServer(draft))
        deleteOnServer(draft.id);

    const QString text = m_entry->draftText;
    m_entry->draftEntity = QVariant();
    m_entry->draftText.clear();
    return postMessage(text, attachments);
}

CommunicationEntityCreateHandler*
DraftMessageItem::postMessage(const QString& text, const QList<AttachmentEntity>& attachments) const
{
    return ChatServiceApi::startCreateThreadMessage(threadId(), text, attachments, false);
}

QString DraftMessageItem::defaultThreadId(const QVariant& entity)
{
    const QString name = QString::fromLatin1(kDefaultThreadAttribute);
    for (const EntityDto::EntityAttributeValueDto& attribute : entityFrom(entity).attributes) {
        if (attribute.name == name)
            return attribute.getValue().toString();
    }
    return {};
}

EntityDto::EntityDto DraftMessageItem::entityFrom(const QVariant& value)
{
    return qvariant_cast<EntityDto::EntityDto>(value);
}

void DraftMessageItem::saveDraft()
{
    if (m_pendingReply) {
        scheduleSave(kRetryDelayMs);
        return;
    }

    const EntityDto::EntityDto draft = entityFrom(m_entry->draftEntity);
    QNetworkReply* started = nullptr;
    if (!m_entry->draftText.isEmpty()) {
        if (!draft.id.isEmpty()) {
            CommunicationUpdateParams params;
            params.entity = draft;
            params.text = m_entry->draftText;
            params.isDraft = true;
            started = m_updateHandler.startUpdateCommunication(params);
        } else {
            CommunicationCreateParams params;
            params.threadId = threadId();
            params.text = m_entry->draftText;
            params.isDraft = true;
            started = m_createHandler.startCreateCommunication(params);
        }
    } else if (isStoredOnServer(draft)) {
        started = m_deleteHandler.startDeleteEntity({draft.id});
    }
    m_pendingReply = started;
}

void DraftMessageItem::onUpdateFinished(bool ok)
{
    if (ok && !isDiscarding())
        setDraftEntity(m_updateHandler.getMessageEntity());
}

void DraftMessageItem::onCreateFinished(bool ok)
{
    if (!ok)
        return;
    const EntityDto::EntityDto created = m_createHandler.getMessageEntity();
    if (isDiscarding())
        deleteOnServer(created.id);
    else
        setDraftEntity(created);
}

void DraftMessageItem::onDeleteFinished(bool ok)
{
    if (ok && !isDiscarding())
        m_entry->draftEntity = QVariant();
}

QString DraftMessageItem::threadId() const
{
    return defaultThreadId(m_entry->entity);
}

void DraftMessageItem::deleteOnServer(const QString& id)
{
    DeleteEntityHandler* handler = ChatServiceApi::startDeleteEntities({id});
    if (handler)
        connect(handler, &CAbstractRestApi::finished, handler, &QObject::deleteLater);
}
