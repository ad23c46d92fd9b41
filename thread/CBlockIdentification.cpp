#include "CBlockIdentification.h"

CBlockIdentification::CBlockIdentification(qint32 blockKind, const CIncidentAttachment& blockAttachment)
    : kind(blockKind)
    , attachment(blockAttachment)
{}

CBlockIdentification::~CBlockIdentification() = default;
