#include "COlderMessages.h"

void COlderMessages::clear()
{
    m_messages.clear();
    m_byKey.clear();
}

void COlderMessages::assign(QList<CIncidentCommunication> messages)
{
    m_messages = std::move(messages);
    m_byKey.clear();
    for (qsizetype i = 0; i < m_messages.size(); ++i) {
        m_byKey.insert(m_messages.at(i).id, i);
        if (!m_messages.at(i).versionKey.isEmpty())
            m_byKey.insert(m_messages.at(i).versionKey, i);
    }
}

bool COlderMessages::absorb(const CIncidentCommunication& message)
{
    auto found = m_byKey.constFind(message.id);
    if (found == m_byKey.cend() && !message.versionKey.isEmpty())
        found = m_byKey.constFind(message.versionKey);
    if (found == m_byKey.cend())
        return false;
    const qsizetype place = found.value();
    // Only a newer version replaces a waiting one; an older answer that comes late changes nothing.
    if (message.editVersion >= m_messages.at(place).editVersion) {
        m_messages[place] = message;
        m_byKey.insert(message.id, place);
    }
    return true;
}

QList<CIncidentCommunication> COlderMessages::takeNewest(qsizetype count)
{
    const qsizetype from = std::max<qsizetype>(0, m_messages.size() - count);
    QList<CIncidentCommunication> taken = m_messages.mid(from);
    m_messages.resize(from);
    // Every key of a taken message goes, the ids of versions it replaced included.
    m_byKey.removeIf([from](const QHash<QString, qsizetype>::iterator it) { return it.value() >= from; });
    return taken;
}
