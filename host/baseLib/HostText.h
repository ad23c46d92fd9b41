#pragma once
// Text helpers of the host.

#include "baseLibGlobal.h"

#include <QFont>
#include <QString>

// `text` shortened with a trailing ellipsis so that it fits `width` pixels in `font`.
// `flags` 0 elides at the right; 1 in the middle; 2 at the left. `minChars`: characters always kept.
BASELIB_EXPORT QString GetDottedString(const QString& text, const QFont& font, int width, int flags,
                                       int minChars);

// A size in bytes for people: "0 bytes", "1 byte", "980 bytes", "1.5 KB", "12.3 MB", "4.1 GB".
// Units are 1024-based (1 KB = 1024 bytes) and the next unit starts where the rounded value reaches 1024.
// `flags` 0: one decimal below 100 units ("1.0 KB", "100 KB"); 1: whole units only.
BASELIB_EXPORT QString GetFormattedSize(unsigned long long size, unsigned long long flags);
