#pragma once
// Chooses the preview handler for a file.

#include "CBrowserItemMetaData.h"
#include "CFilePreviewHandler.h"
#include "baseLibGlobal.h"

#include <QObject>

#include <memory>
#include <vector>

class BASELIB_EXPORT CFilePreviewManager : public QObject
{
    Q_OBJECT
public:
    explicit CFilePreviewManager(QObject* parent = nullptr);
    ~CFilePreviewManager() override;

    // The handler for the item's MIME type; null when the type has no previews (or the file is missing).
    std::shared_ptr<CFilePreviewHandler>
    getPreviewHandlerForPath(const VantrelBrowser::CBrowserItemMetaData& item);

private:
    std::vector<std::shared_ptr<CFilePreviewHandler>> m_handlers;
};
