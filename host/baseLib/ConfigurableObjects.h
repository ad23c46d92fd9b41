#pragma once
// Feature switches of the host, by id ("allowMessengerMode", "showNews", "allowUseIncidents",
// "useZendeskTickets", ...). Every switch is allowed and visible unless the host configuration says
// otherwise.

#include "baseLibGlobal.h"

#include <QString>

class BASELIB_EXPORT ConfigurableObjects
{
public:
    static bool isAllowed(const QString& id);
    static bool isVisible(const QString& id);
};
