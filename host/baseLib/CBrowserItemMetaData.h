#pragma once

#include "baseLibGlobal.h"

#include <QString>

namespace VantrelBrowser {

// What the host's file browser knows of a file: its path, MIME type (by content and name), size.
class BASELIB_EXPORT CBrowserItemMetaData
{
public:
    explicit CBrowserItemMetaData(const QString& path);

    QString path() const { return m_path; }
    QString mimeType() const { return m_mimeType; }
    qint64 size() const { return m_size; }
    bool exists() const { return m_exists; }

private:
    QString m_path;
    QString m_mimeType;
    qint64 m_size = 0;
    bool m_exists = false;
};

} // namespace VantrelBrowser
