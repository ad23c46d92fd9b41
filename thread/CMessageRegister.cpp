#include "CMessageRegister.h"

void CMessageRegister::add(const CMessageItemIndex& index)
{
    const QString& id = index.message.id;
    remove(id);
    m_messages.insert(id, index);
    m_versions.insert(index.message.versionKey, id);
    for (const CIncidentAttachment& attachment : index.message.attachments) {
        if (!attachment.id.isEmpty())
            m_attachments.insert(attachment.id, id);
    }
}

void CMessageRegister::remove(const QString& id)
{
    const auto found = m_messages.constFind(id);
    if (found == m_messages.cend())
        return;
    m_versions.remove(found->message.versionKey, id);
    for (const CIncidentAttachment& attachment : found->message.attachments) {
        // A newer version registered first keeps the attachment.
        const auto holder = m_attachments.constFind(attachment.id);
        if (holder != m_attachments.cend() && *holder == id)
            m_attachments.erase(holder);
    }
    m_messages.erase(found);
}

void CMessageRegister::addUnregistered(const CMessageItemIndex& index)
{
    for (const CIncidentAttachment& attachment : index.message.attachments) {
        if (!attachment.id.isEmpty())
            m_unregistered.insert(attachment.id, index);
    }
}

void CMessageRegister::forget(const CMessageItemIndex& index)
{
    for (const CIncidentAttachment& attachment : index.message.attachments) {
        const auto found = m_unregistered.constFind(attachment.id);
        if (found != m_unregistered.cend() && (found->frame == index.frame || !found->isValid()))
            m_unregistered.erase(found);
    }
    remove(index.message.id);
}

void CMessageRegister::clear()
{
    m_messages.clear();
    m_versions.clear();
    m_attachments.clear();
    m_unregistered.clear();
}

CMessageItemIndex CMessageRegister::olderVersion(const CIncidentCommunication& message) const
{
    for (auto it = m_versions.constFind(message.versionKey);
         it != m_versions.cend() && it.key() == message.versionKey; ++it) {
        const CMessageItemIndex index = m_messages.value(it.value());
        if (index.message.editVersion < message.editVersion)
            return index;
    }
    return {};
}

CMessageItemIndex CMessageRegister::holderOf(const QString& attachmentId) const
{
    const auto holder = m_attachments.constFind(attachmentId);
    if (holder != m_attachments.cend())
        return m_messages.value(*holder);
    return m_unregistered.value(attachmentId);
}
