#include "CResourceGuard.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QMimeDatabase>
#include <QUrl>
#include <QtCore/private/qdataurl_p.h>

#include <algorithm>

namespace {

const QLatin1String kResourcePrefix(":/");
const QLatin1String kDataScheme("data");
const QLatin1String kFileScheme("file");
const QLatin1String kResourceScheme("qrc");
const QLatin1String kImageMimePrefix("image/");
// Kernel and device file systems: their "files" are devices, endless or the process's own memory.
const QLatin1String kForbiddenFolders[] = {QLatin1String("/proc/"), QLatin1String("/sys/"),
                                           QLatin1String("/dev/")};

bool inForbiddenFolder(const QString& path)
{
    return std::any_of(std::begin(kForbiddenFolders), std::end(kForbiddenFolders),
                       [&](QLatin1String folder) { return path.startsWith(folder); });
}

bool namedAsPicture(const QString& path)
{
    static const QMimeDatabase types;
    return types.mimeTypeForFile(path, QMimeDatabase::MatchExtension).name().startsWith(kImageMimePrefix);
}

} // namespace

bool CResourceGuard::mayRead(const QString& path)
{
    if (path.isEmpty() || !namedAsPicture(path))
        return false;
    const QFileInfo info(path);
    const bool compiledIn = path.startsWith(kResourcePrefix);
    if (!compiledIn && inForbiddenFolder(info.absoluteFilePath()))
        return false;
    // isFile() follows links and is false for devices, pipes, sockets and folders.
    if (!info.isFile() || info.size() > MaxFileBytes)
        return false;
    // A link may lead into a forbidden folder from anywhere.
    return compiledIn || !inForbiddenFolder(info.canonicalFilePath());
}

QImage CResourceGuard::readImage(const QString& path)
{
    if (!mayRead(path))
        return {};
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    // The size was checked, but a file can grow between looking and reading.
    const QByteArray data = file.read(MaxFileBytes + 1);
    if (data.size() > MaxFileBytes)
        return {};
    return decodeImage(data);
}

QImage CResourceGuard::decodeImage(const QByteArray& data)
{
    QBuffer buffer;
    buffer.setData(data);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setAllocationLimit(MaxDecodeMegabytes);
    const QSize size = reader.size();
    if (size.width() > MaxImageSide || size.height() > MaxImageSide)
        reader.setScaledSize(size.scaled(MaxImageSide, MaxImageSide, Qt::KeepAspectRatio));
    return reader.read();
}

QImage CResourceGuard::embeddedImage(const QUrl& url)
{
    if (url.scheme().compare(kDataScheme, Qt::CaseInsensitive) != 0)
        return {};
    QString mimeType;
    QByteArray payload;
    if (!qDecodeDataUrl(url, mimeType, payload))
        return {};
    return decodeImage(payload);
}

QImage CResourceGuard::image(const QUrl& url)
{
    const QImage embedded = embeddedImage(url);
    if (!embedded.isNull())
        return embedded;
    return readImage(localPath(url));
}

QString CResourceGuard::localPath(const QUrl& url)
{
    if (url.scheme().isEmpty())
        return url.path();
    if (url.scheme() == kFileScheme)
        return url.toLocalFile();
    if (url.scheme() == kResourceScheme)
        return QLatin1Char(':') + url.path();
    return {};
}
