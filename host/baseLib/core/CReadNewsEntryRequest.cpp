#include "CReadNewsEntryRequest.h"

CReadNewsEntryRequest::CReadNewsEntryRequest(const QString& newsEntryId, int flags)
    : QEvent(EventType)
    , m_newsEntryId(newsEntryId)
    , m_flags(flags)
{}

CReadNewsEntryRequest::~CReadNewsEntryRequest() = default;
