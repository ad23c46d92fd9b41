#pragma once
// Converts entities to and from the JSON that the support server's requests carry. Attributes travel as an
// ordered array of {"name", "value"} pairs so that their order survives the trip.

#include "EntityDto.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QList>

class EntityJson
{
public:
    static QJsonObject toJson(const EntityDto::EntityDto& entity);
    // Missing members take their defaults; `ok` (optional) is false when `json` is no entity at all.
    static EntityDto::EntityDto fromJson(const QJsonObject& json, bool* ok = nullptr);
    static QJsonArray listToJson(const QList<EntityDto::EntityDto>& entities);
    static QList<EntityDto::EntityDto> listFromJson(const QJsonArray& json);
};
