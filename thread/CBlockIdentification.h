#pragma once
// Tags a text block of the thread document so that it can be found again later: the footer of an own
// message (which carries the delivery image) and the link and icon blocks of an attachment tile. The block
// owns its tag.

#include "CIncidentAttachment.h"

#include <QTextBlockUserData>

class CBlockIdentification : public QTextBlockUserData
{
public:
    enum Kind : qint32
    {
        MessageFooter = 0,
        AttachmentLink = 1,
        AttachmentIcon = 2,
    };

    CBlockIdentification(qint32 kind, const CIncidentAttachment& attachment);
    ~CBlockIdentification() override;

    qint32 kind = MessageFooter;
    CIncidentAttachment attachment;
};
