#pragma once
// Thumbnails of SVG drawings, rendered at thumbnail size (a vector image is scaled up as well as down).

#include "CFilePreviewHandler.h"

class CSvgPreviewHandler : public CFilePreviewHandler
{
public:
    QStringList mimeTypes() const override;
    QPixmap getThumbnail(unsigned size, const VantrelBrowser::CBrowserItemMetaData& item) override;
};
