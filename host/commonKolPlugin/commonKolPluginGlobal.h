#pragma once

#include <QtCore/qglobal.h>

#if defined(COMMONKOLPLUGIN_BUILD)
#define COMMONKOLPLUGIN_EXPORT Q_DECL_EXPORT
#else
#define COMMONKOLPLUGIN_EXPORT Q_DECL_IMPORT
#endif
