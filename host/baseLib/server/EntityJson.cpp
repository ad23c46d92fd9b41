#include "EntityJson.h"

#include <QJsonValue>

namespace {

const QString kId = QStringLiteral("id");
const QString kEntityType = QStringLiteral("entityType");
const QString kCreatedAt = QStringLiteral("createdAt");
const QString kUpdatedAt = QStringLiteral("updatedAt");
const QString kOwnerId = QStringLiteral("ownerId");
const QString kRevision = QStringLiteral("revision");
const QString kComment = QStringLiteral("comment");
const QString kRelations = QStringLiteral("relations");
const QString kAttributes = QStringLiteral("attributes");
const QString kName = QStringLiteral("name");
const QString kValue = QStringLiteral("value");

} // namespace

QJsonObject EntityJson::toJson(const EntityDto::EntityDto& entity)
{
    QJsonArray relations;
    for (const EntityDto::EntityRelationDto& relation : entity.relations) {
        relations.append(QJsonObject{{QStringLiteral("relationName"), relation.relationName},
                                     {QStringLiteral("targetEntityType"), relation.targetEntityType},
                                     {QStringLiteral("targetId"), relation.targetId},
                                     {QStringLiteral("role"), relation.role},
                                     {QStringLiteral("createdAt"), relation.createdAt}});
    }
    QJsonArray attributes;
    for (const EntityDto::EntityAttributeValueDto& attribute : entity.attributes)
        attributes.append(
            QJsonObject{{kName, attribute.name}, {kValue, QJsonValue::fromVariant(attribute.value)}});
    return QJsonObject{{kId, entity.id},
                       {kEntityType, entity.entityType},
                       {kCreatedAt, entity.createdAt},
                       {kRelations, relations},
                       {kUpdatedAt, entity.updatedAt},
                       {kOwnerId, entity.ownerId},
                       {kRevision, entity.revision},
                       {kAttributes, attributes},
                       {kComment, entity.comment}};
}

EntityDto::EntityDto EntityJson::fromJson(const QJsonObject& json, bool* ok)
{
    EntityDto::EntityDto entity;
    if (ok)
        *ok = json.contains(kId);
    entity.id = json.value(kId).toString();
    entity.entityType = json.value(kEntityType).toString();
    entity.createdAt = json.value(kCreatedAt).toString();
    entity.updatedAt = json.value(kUpdatedAt).toString();
    entity.ownerId = json.value(kOwnerId).toString();
    entity.revision = json.value(kRevision).toInteger();
    entity.comment = json.value(kComment).toString();
    const QJsonArray relations = json.value(kRelations).toArray();
    for (const QJsonValue& value : relations) {
        const QJsonObject relation = value.toObject();
        entity.relations.append({relation.value(QStringLiteral("relationName")).toString(),
                                 relation.value(QStringLiteral("targetEntityType")).toString(),
                                 relation.value(QStringLiteral("targetId")).toString(),
                                 relation.value(QStringLiteral("role")).toString(),
                                 relation.value(QStringLiteral("createdAt")).toString()});
    }
    const QJsonArray attributes = json.value(kAttributes).toArray();
    for (const QJsonValue& value : attributes) {
        const QJsonObject attribute = value.toObject();
        const QString name = attribute.value(kName).toString();
        if (!name.isEmpty())
            entity.attributes.append(
                EntityDto::EntityAttributeValueDto(name, attribute.value(kValue).toVariant()));
    }
    return entity;
}

QJsonArray EntityJson::listToJson(const QList<EntityDto::EntityDto>& entities)
{
    QJsonArray result;
    for (const EntityDto::EntityDto& entity : entities)
        result.append(toJson(entity));
    return result;
}

QList<EntityDto::EntityDto> EntityJson::listFromJson(const QJsonArray& json)
{
    QList<EntityDto::EntityDto> result;
    for (const QJsonValue& value : json)
        result.append(fromJson(value.toObject()));
    return result;
}
