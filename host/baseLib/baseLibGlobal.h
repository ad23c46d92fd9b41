#pragma once

#include <QtCore/qglobal.h>

#if defined(BASELIB_BUILD)
#define BASELIB_EXPORT Q_DECL_EXPORT
#else
#define BASELIB_EXPORT Q_DECL_IMPORT
#endif
