#include "CBrowserItemMetaData.h"

#include <QFileInfo>
#include <QMimeDatabase>

namespace VantrelBrowser {

CBrowserItemMetaData::CBrowserItemMetaData(const QString& path)
    : m_path(path)
{
    const QFileInfo info(path);
    m_exists = info.exists();
    m_size = m_exists ? info.size() : 0;
    // Content first, name as the tie-breaker: a downloaded file may carry a name that lies about its type.
    m_mimeType = QMimeDatabase().mimeTypeForFile(info, QMimeDatabase::MatchDefault).name();
}

} // namespace VantrelBrowser
