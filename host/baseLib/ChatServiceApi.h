#pragma once
// Facade of the support chat service. Each start operation begins one request and returns its handler,
// which deletes itself after it has reported finished().

#include "AttachmentEntity.h"
#include "AttachmentsGetHandler.h"
#include "CommunicationEntityCreateHandler.h"
#include "CustomerEntitiesQueryVectorHandler.h"
#include "DeleteEntityHandler.h"
#include "baseLibGlobal.h"

#include <QList>
#include <QString>
#include <QVariant>

class BASELIB_EXPORT ChatServiceApi
{
public:
    static CustomerEntitiesQueryVectorHandler* startFetchThreadCommunications(const QString& threadId);
    static CommunicationEntityCreateHandler* startCreateThreadMessage(const QString& threadId,
                                                                      const QString& text,
                                                                      const QList<AttachmentEntity>& files,
                                                                      bool isDraft);
    static DeleteEntityHandler* startDeleteEntities(const QList<QString>& ids);
    static AttachmentsGetHandler* startDownloadFile(const QString& attachmentId, const QVariant& target,
                                                    ExistingFilePolicy policy);

    // Whether `text` fits the server's length limit; `counterText` receives the text shown under an editor
    // ("12 / 4000").
    static bool checkCommunicationLength(const QString& text, QString& counterText);
    // The text of a stored draft entity (a variant holding EntityDto::EntityDto); empty for anything else.
    static QString draftMessage(const QVariant& draftEntity);
};
