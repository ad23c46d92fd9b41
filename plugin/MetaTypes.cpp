#include "MetaTypes.h"

#include "CIncidentAttachment.h"
#include "CIncidentCommunication.h"
#include "EntityDto.h"
#include "MessageEntry.h"

#include <QList>
#include <QMetaType>

#include <mutex>

namespace newsReader {

void registerMetaTypes()
{
    static std::once_flag once;
    std::call_once(once, [] {
        qRegisterMetaType<EntityDto::EntityDto>("EntityDto::EntityDto");
        qRegisterMetaType<QList<EntityDto::EntityDto>>("QList<EntityDto::EntityDto>");
        qRegisterMetaType<CIncidentCommunication>("CIncidentCommunication");
        qRegisterMetaType<CIncidentAttachment>("CIncidentAttachment");
        qRegisterMetaType<std::shared_ptr<Messenger::MessageEntry>>(
            "std::shared_ptr<Messenger::MessageEntry>");
        qRegisterMetaType<Messenger::MessageEntryPtr>("Messenger::MessageEntryPtr");
        qRegisterMetaType<QList<int>>("QList<int>");
        qRegisterMetaType<QList<double>>("QList<double>");
    });
}

} // namespace newsReader
