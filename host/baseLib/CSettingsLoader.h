#pragma once
// The host's persistent user settings (an INI file under the user's configuration folder).

#include "CPropertyBag.h"

#include <memory>

class QSettings;

class BASELIB_EXPORT CSettingsLoader : public CPropertyBag
{
public:
    // Settings kept in `fileName` (INI format); an empty name uses the application's default location.
    explicit CSettingsLoader(const QString& fileName = QString());
    ~CSettingsLoader() override;

    bool Read(const QString& key, QVariant* value) const override;
    void Write(const QString& key, const QVariant& value) override;
    void Remove(const QString& key) override;
    QStringList Keys() const override;

    QString fileName() const;
    void sync();
    // Writes pending changes to the current file and continues with `fileName` (same rule as the
    // constructor).
    void reopen(const QString& fileName);

private:
    std::unique_ptr<QSettings> m_settings;
};
