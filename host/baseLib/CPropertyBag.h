#pragma once
// A keyed store of values. The host's settings store is one (CSettingsLoader).

#include "baseLibGlobal.h"

#include <QString>
#include <QStringList>
#include <QVariant>

class BASELIB_EXPORT CPropertyBag
{
public:
    virtual ~CPropertyBag();

    // Copies the value under `key` into `value` and returns true; false (value untouched) when absent.
    virtual bool Read(const QString& key, QVariant* value) const = 0;
    virtual void Write(const QString& key, const QVariant& value) = 0;
    virtual void Remove(const QString& key) = 0;
    virtual QStringList Keys() const = 0;
};
