#include "ConfigurableObjects.h"

#include "HostRuntime.h"

bool ConfigurableObjects::isAllowed(const QString& id)
{
    return HostRuntime::instance().allowed.value(id, true);
}

bool ConfigurableObjects::isVisible(const QString& id)
{
    return HostRuntime::instance().visible.value(id, true);
}
