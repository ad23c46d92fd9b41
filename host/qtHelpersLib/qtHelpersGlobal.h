#pragma once

#include <QtCore/qglobal.h>

#if defined(QTHELPERSLIB_BUILD)
#define QTHELPERS_EXPORT Q_DECL_EXPORT
#else
#define QTHELPERS_EXPORT Q_DECL_IMPORT
#endif
