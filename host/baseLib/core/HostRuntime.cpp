#include "HostRuntime.h"

#include "CSettingsLoader.h"

HostRuntime::HostRuntime() = default;

// The store is flushed when the process ends (the instance is a function-local static).
HostRuntime::~HostRuntime() = default;

HostRuntime& HostRuntime::instance()
{
    static HostRuntime runtime;
    return runtime;
}

void HostRuntime::record(const QString& kind, const QVariantMap& details)
{
    events.append(Event{kind, details});
    emit eventRecorded(kind, details);
}

CSettingsLoader& HostRuntime::settings()
{
    if (!m_settings)
        m_settings = std::make_unique<CSettingsLoader>();
    return *m_settings;
}

void HostRuntime::useSettingsFile(const QString& fileName)
{
    if (m_settings)
        m_settings->reopen(fileName);
    else
        m_settings = std::make_unique<CSettingsLoader>(fileName);
}
