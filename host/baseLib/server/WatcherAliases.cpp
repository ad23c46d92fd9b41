#include "WatcherAliases.h"

bool WatcherAliases::isValid() const
{
    return !id.isEmpty() && !(displayName.isEmpty() && firstName.isEmpty() && lastName.isEmpty());
}

QString WatcherAliases::fullName() const
{
    if (!displayName.isEmpty())
        return displayName;
    return QString(firstName + QLatin1Char(' ') + lastName).trimmed();
}
