#pragma once
// The host's form repository: Qt Designer forms kept as host resources (":/forms/<name>"), loaded at run
// time. Besides the standard widgets, forms may use the host widgets SignInControl, CBusyStateCtl and
// CIconControl.

#include "baseLibGlobal.h"

#include <QString>

class QWidget;

class BASELIB_EXPORT CFormRepository
{
public:
    // Loads the form called `name` as a child of `parent`; null (and `error` set) when it cannot be loaded.
    static QWidget* load(const QString& name, QWidget* parent, QString* error = nullptr);
    static bool contains(const QString& name);
};
