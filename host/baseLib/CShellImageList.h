#pragma once
// The system's file-type icons, by file name (through its MIME type and the desktop icon theme; the host's
// own drawn icons when the theme has none).

#include "baseLibGlobal.h"

#include <QHash>
#include <QPixmap>
#include <QString>

class BASELIB_EXPORT CShellImageList
{
public:
    static CShellImageList* instance();

    // The icon of a file named `fileName` (the file need not exist) at `size` x `size` pixels.
    // `isFolder`: the folder icon. `useCache`: reuse an earlier rendering of the same type and size.
    QPixmap getShellImage(const QString& fileName, unsigned long size, bool isFolder = false,
                          bool useCache = true);

private:
    CShellImageList();
    QHash<QString, QPixmap> m_cache;
};
