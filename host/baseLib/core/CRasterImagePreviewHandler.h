#pragma once
// Thumbnails of raster images (PNG, JPEG, BMP, GIF, WebP), decoded at thumbnail size so that large photos
// never have to be held in memory at full resolution.

#include "CFilePreviewHandler.h"

class CRasterImagePreviewHandler : public CFilePreviewHandler
{
public:
    CRasterImagePreviewHandler();

    QStringList mimeTypes() const override;
    QPixmap getThumbnail(unsigned size, const VantrelBrowser::CBrowserItemMetaData& item) override;

private:
    QStringList m_mimeTypes;
};
