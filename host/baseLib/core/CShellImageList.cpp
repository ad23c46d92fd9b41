#include "CShellImageList.h"

#include "CFileTypeIconPainter.h"

#include <QFileInfo>
#include <QIcon>
#include <QMimeDatabase>

namespace {

constexpr unsigned long defaultIconSize = 16;
const QString folderTypeName = QStringLiteral("inode/directory");

QPixmap themeIcon(const QMimeType& type, int size)
{
    for (const QString& name : {type.iconName(), type.genericIconName()}) {
        const QIcon icon = QIcon::fromTheme(name);
        if (icon.isNull())
            continue;
        const QPixmap pixmap = icon.pixmap(size, size);
        if (!pixmap.isNull())
            return pixmap;
    }
    return QPixmap();
}

} // namespace

CShellImageList::CShellImageList() = default;

CShellImageList* CShellImageList::instance()
{
    static CShellImageList list;
    return &list;
}

QPixmap CShellImageList::getShellImage(const QString& fileName, unsigned long size, bool isFolder,
                                       bool useCache)
{
    const int side = int(size ? size : defaultIconSize);
    const QMimeDatabase database;
    const QMimeType type = isFolder ? database.mimeTypeForName(folderTypeName)
                                    : database.mimeTypeForFile(fileName, QMimeDatabase::MatchExtension);

    // The drawn icon names the type by its usual extension; a type nobody knows (octet-stream) keeps the
    // file's own extension, so it is part of the key too.
    QString label = type.preferredSuffix();
    if (label.isEmpty() && !isFolder)
        label = QFileInfo(fileName).suffix().toLower();
    const QString key =
        QStringLiteral("%1|%2|%3").arg(isFolder ? folderTypeName : type.name(), label).arg(side);

    if (useCache) {
        const auto cached = m_cache.constFind(key);
        if (cached != m_cache.constEnd())
            return *cached;
    }

    QPixmap pixmap = themeIcon(type, side);
    if (pixmap.isNull())
        pixmap =
            isFolder ? CFileTypeIconPainter::folder(side) : CFileTypeIconPainter::document(type, label, side);
    m_cache.insert(key, pixmap);
    return pixmap;
}
