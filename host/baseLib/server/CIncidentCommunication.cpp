#include "CIncidentCommunication.h"

#include "WatcherAliases.h"

void CIncidentCommunication::deducePartyName(const WatcherAliases& aliases)
{
    senderName = aliases.fullName();
    if (aliases.nameColor.isValid())
        nameColor = aliases.nameColor;
    nameKnown = true;
}

QColor CIncidentCommunication::getNameColor() const
{
    return nameColor;
}
