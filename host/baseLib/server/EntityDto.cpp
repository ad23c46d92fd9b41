#include "EntityDto.h"

namespace EntityDto {

EntityAttributeValueDto::EntityAttributeValueDto(const QString& name, const QVariant& value)
    : name(name)
    , value(value)
{}

const EntityAttributeValueDto* EntityDto::attribute(const QString& name) const
{
    for (const EntityAttributeValueDto& candidate : attributes) {
        if (candidate.name == name)
            return &candidate;
    }
    return nullptr;
}

QVariant EntityDto::attributeValue(const QString& name) const
{
    const EntityAttributeValueDto* found = attribute(name);
    return found ? found->value : QVariant();
}

void EntityDto::setAttribute(const QString& name, const QVariant& value)
{
    for (EntityAttributeValueDto& candidate : attributes) {
        if (candidate.name == name) {
            candidate.value = value;
            return;
        }
    }
    attributes.append(EntityAttributeValueDto(name, value));
}

} // namespace EntityDto
