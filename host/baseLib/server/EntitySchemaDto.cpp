#include "EntitySchemaDto.h"

namespace EntitySchemaDto {

const EntityTypeSchemaDto* EntitySchemaDto::entity(const QString& name) const
{
    for (const EntityTypeSchemaDto& candidate : entities) {
        if (candidate.name == name)
            return &candidate;
    }
    return nullptr;
}

const EnumValueDto* EntitySchemaDto::enumValue(const QString& entityName, const QString& key) const
{
    const EntityTypeSchemaDto* type = entity(entityName);
    if (!type)
        return nullptr;
    for (const AttributeSchemaDto& attribute : type->attributes) {
        for (const EnumValueDto& value : attribute.values) {
            if (value.key == key)
                return &value;
        }
    }
    return nullptr;
}

} // namespace EntitySchemaDto
