#pragma once
// The support server's generic entity: a ticket (conversation), a message (communication), a draft.

#include "baseLibGlobal.h"

#include <QList>
#include <QMetaType>
#include <QString>
#include <QVariant>

namespace EntityDto {

// One attribute of an entity: a name and a value.
class BASELIB_EXPORT EntityAttributeValueDto
{
public:
    EntityAttributeValueDto() = default;
    EntityAttributeValueDto(const QString& name, const QVariant& value);

    QString name;
    QVariant value;

    QVariant getValue() const { return value; }
};

// A relation of an entity to another one.
struct EntityRelationDto
{
    QString relationName;
    QString targetEntityType;
    QString targetId;
    QString role;
    QString createdAt;
};

class BASELIB_EXPORT EntityDto
{
public:
    QString id;
    QString entityType; // "SM_MINICRM_TICKET", "SM_MINICRM_COMMUNICATION", ...
    QString createdAt;  // ISO 8601 creation stamp; set by the server once the entity exists there
    QList<EntityRelationDto> relations;
    QString updatedAt;
    QString ownerId;
    qint64 revision = 0;
    QList<EntityAttributeValueDto> attributes;
    QString comment;

    // The attribute of that name; null when missing.
    const EntityAttributeValueDto* attribute(const QString& name) const;
    // The attribute's value; an invalid variant when missing.
    QVariant attributeValue(const QString& name) const;
    // Sets (or adds) the attribute.
    void setAttribute(const QString& name, const QVariant& value);
};

} // namespace EntityDto

Q_DECLARE_METATYPE(EntityDto::EntityDto)
