#include "ChatServiceApi.h"

#include "EntityFields.h"
#include "SimulatedServer.h"

CustomerEntitiesQueryVectorHandler* ChatServiceApi::startFetchThreadCommunications(const QString& threadId)
{
    auto* handler = new CustomerEntitiesQueryVectorHandler;
    handler->setAutoDelete(true);
    handler->startFetchThread(threadId);
    return handler;
}

CommunicationEntityCreateHandler*
ChatServiceApi::startCreateThreadMessage(const QString& threadId, const QString& text,
                                         const QList<AttachmentEntity>& files, bool isDraft)
{
    auto* handler = new CommunicationEntityCreateHandler;
    handler->setAutoDelete(true);
    handler->startCreateCommunication({threadId, text, files, isDraft});
    return handler;
}

DeleteEntityHandler* ChatServiceApi::startDeleteEntities(const QList<QString>& ids)
{
    auto* handler = new DeleteEntityHandler;
    handler->setAutoDelete(true);
    handler->startDeleteEntity(ids);
    return handler;
}

AttachmentsGetHandler* ChatServiceApi::startDownloadFile(const QString& attachmentId, const QVariant& target,
                                                         ExistingFilePolicy policy)
{
    auto* handler = new AttachmentsGetHandler;
    handler->setAutoDelete(true);
    handler->startDownload(attachmentId, target, policy);
    return handler;
}

bool ChatServiceApi::checkCommunicationLength(const QString& text, QString& counterText)
{
    const int limit = SimulatedServer::instance().data().limits.messageLength;
    counterText = QStringLiteral("%1 / %2").arg(text.size()).arg(limit);
    return text.size() <= limit;
}

QString ChatServiceApi::draftMessage(const QVariant& draftEntity)
{
    if (draftEntity.metaType() != QMetaType::fromType<EntityDto::EntityDto>())
        return {};
    return draftEntity.value<EntityDto::EntityDto>().attributeValue(EntityFields::kText).toString();
}
