#include "CSettingsLoader.h"

#include <QCoreApplication>
#include <QSettings>

namespace {

std::unique_ptr<QSettings> openSettings(const QString& fileName)
{
    // INI everywhere, so that a settings file can be read and prepared by hand on every platform.
    if (fileName.isEmpty())
        return std::make_unique<QSettings>(QSettings::IniFormat, QSettings::UserScope,
                                           QCoreApplication::organizationName(),
                                           QCoreApplication::applicationName());
    return std::make_unique<QSettings>(fileName, QSettings::IniFormat);
}

} // namespace

CSettingsLoader::CSettingsLoader(const QString& fileName)
    : m_settings(openSettings(fileName))
{}

CSettingsLoader::~CSettingsLoader() = default;

bool CSettingsLoader::Read(const QString& key, QVariant* value) const
{
    if (!m_settings->contains(key))
        return false;
    if (value)
        *value = m_settings->value(key);
    return true;
}

void CSettingsLoader::Write(const QString& key, const QVariant& value)
{
    m_settings->setValue(key, value);
}

void CSettingsLoader::Remove(const QString& key)
{
    m_settings->remove(key);
}

QStringList CSettingsLoader::Keys() const
{
    return m_settings->allKeys();
}

QString CSettingsLoader::fileName() const
{
    return m_settings->fileName();
}

void CSettingsLoader::sync()
{
    m_settings->sync();
}

void CSettingsLoader::reopen(const QString& fileName)
{
    m_settings->sync();
    m_settings = openSettings(fileName);
}
