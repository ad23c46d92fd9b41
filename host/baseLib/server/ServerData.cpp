#include "ServerData.h"

namespace {

template<typename List>
auto findById(List& list, const QString& id) -> decltype(&list[0])
{
    for (auto& item : list) {
        if (item.id == id)
            return &item;
    }
    return nullptr;
}

} // namespace

QList<ServerData::State> ServerData::defaultStates()
{
    return {
        {QStringLiteral("NEW"), QStringLiteral("New"), 0},
        {QStringLiteral("OPEN"), QStringLiteral("In progress"), 0},
        {QStringLiteral("WAITING_FOR_CUSTOMER"), QStringLiteral("Waiting for your reply"), 1},
        {QStringLiteral("RESOLVED"), QStringLiteral("Resolved"), 1},
        {QStringLiteral("CLOSED"), QStringLiteral("Closed"), 2},
    };
}

const ServerData::Participant* ServerData::participant(const QString& id) const
{
    return findById(participants, id);
}

ServerData::Participant* ServerData::participant(const QString& id)
{
    return findById(participants, id);
}

const ServerData::NewsEntry* ServerData::newsEntry(const QString& id) const
{
    return findById(news, id);
}

ServerData::NewsEntry* ServerData::newsEntry(const QString& id)
{
    return findById(news, id);
}

const ServerData::Conversation* ServerData::conversation(const QString& id) const
{
    return findById(conversations, id);
}

ServerData::Conversation* ServerData::conversation(const QString& id)
{
    return findById(conversations, id);
}

const ServerData::Conversation* ServerData::conversationOfThread(const QString& threadId) const
{
    if (threadId.isEmpty())
        return nullptr;
    for (const Conversation& candidate : conversations) {
        if (candidate.threadId == threadId)
            return &candidate;
    }
    return nullptr;
}

const ServerData::Message* ServerData::message(const QString& id) const
{
    return findById(messages, id);
}

ServerData::Message* ServerData::message(const QString& id)
{
    return findById(messages, id);
}

const ServerData::State* ServerData::state(const QString& key) const
{
    for (const State& candidate : states) {
        if (candidate.key == key)
            return &candidate;
    }
    return nullptr;
}
