#pragma once
// Thumbnails of PDF documents: the first page, on white paper.

#include "CFilePreviewHandler.h"

class CPdfPreviewHandler : public CFilePreviewHandler
{
public:
    QStringList mimeTypes() const override;
    QPixmap getThumbnail(unsigned size, const VantrelBrowser::CBrowserItemMetaData& item) override;
};
