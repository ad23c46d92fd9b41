#pragma once
// The server's schema of entity types ("lowcode schema"): for each entity type its attributes and, for
// enumerated attributes such as a ticket's state, the allowed values with their display properties.

#include "baseLibGlobal.h"

#include <QList>
#include <QString>
#include <QVariantMap>

namespace EntitySchemaDto {

// One allowed value of an enumerated attribute: its key and properties such as "DISPLAY_NAME".
struct EnumValueDto
{
    QString key;
    QVariantMap properties;
};

struct AttributeSchemaDto
{
    QString name;
    QString type; // "string", "datetime", "enum", ...
    QList<EnumValueDto> values;
};

struct EntityTypeSchemaDto
{
    QString name; // "SM_MINICRM_TICKET"
    QList<AttributeSchemaDto> attributes;
};

class BASELIB_EXPORT EntitySchemaDto
{
public:
    QList<EntityTypeSchemaDto> entities;

    // The entity type of that name; null when the schema lacks it.
    const EntityTypeSchemaDto* entity(const QString& name) const;
    // The first allowed value with `key` among the attributes of the entity type; null when none.
    const EnumValueDto* enumValue(const QString& entityName, const QString& key) const;
};

} // namespace EntitySchemaDto
