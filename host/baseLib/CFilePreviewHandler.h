#pragma once

#include "CBrowserItemMetaData.h"
#include "baseLibGlobal.h"

#include <QPixmap>
#include <QStringList>

// Makes thumbnails of one family of file types (raster images, SVG, PDF).
class BASELIB_EXPORT CFilePreviewHandler
{
public:
    virtual ~CFilePreviewHandler();

    // The MIME types this handler previews.
    virtual QStringList mimeTypes() const = 0;
    // A thumbnail whose longer side is `size` pixels (never enlarged beyond the file's own size, except for
    // vector formats); a null pixmap when the file cannot be read.
    virtual QPixmap getThumbnail(unsigned size, const VantrelBrowser::CBrowserItemMetaData& item) = 0;
};
