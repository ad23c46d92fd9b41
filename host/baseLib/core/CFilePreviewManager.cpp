#include "CFilePreviewManager.h"

#include "CPdfPreviewHandler.h"
#include "CRasterImagePreviewHandler.h"
#include "CSvgPreviewHandler.h"

#include <QMimeDatabase>

CFilePreviewManager::CFilePreviewManager(QObject* parent)
    : QObject(parent)
{
    m_handlers.push_back(std::make_shared<CRasterImagePreviewHandler>());
    m_handlers.push_back(std::make_shared<CSvgPreviewHandler>());
    m_handlers.push_back(std::make_shared<CPdfPreviewHandler>());
}

CFilePreviewManager::~CFilePreviewManager() = default;

std::shared_ptr<CFilePreviewHandler>
CFilePreviewManager::getPreviewHandlerForPath(const VantrelBrowser::CBrowserItemMetaData& item)
{
    if (!item.exists())
        return nullptr;
    const QMimeType type = QMimeDatabase().mimeTypeForName(item.mimeType());
    if (!type.isValid())
        return nullptr;
    for (const std::shared_ptr<CFilePreviewHandler>& handler : m_handlers) {
        const QStringList handled = handler->mimeTypes();
        for (const QString& name : handled) {
            // inherits() also matches aliases and subtypes (image/x-ms-bmp, image/x-webp, ...).
            if (type.inherits(name))
                return handler;
        }
    }
    return nullptr;
}
