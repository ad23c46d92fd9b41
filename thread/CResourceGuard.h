#pragma once
// Reads the pictures that message content (and a draft in the composer) names, within limits. That content
// comes from the server and from anyone who writes into a conversation, so a name it gives must never make
// the page open a device, a pipe, a socket or anything under /proc, /sys or /dev, read more than a picture's
// worth of a file, or decode a picture into an allocation of any size it asks for. Files are read only when
// they are regular, small, and named as pictures; pictures embedded in the content as data: URLs are
// decoded within the same limits. Used by the thread document, its image handler and the composer's document.

#include <QImage>
#include <QString>

class QUrl;

class CResourceGuard
{
public:
    // At most this much of a file is read for one picture.
    static constexpr qint64 MaxFileBytes = 4 * 1024 * 1024;
    // A decoded picture is scaled down to fit this many pixels on either side...
    static constexpr int MaxImageSide = 4096;
    // ...and no decoder may allocate more than this many megabytes for it.
    static constexpr int MaxDecodeMegabytes = 64;

    // Whether the picture file at `path` may be read: a regular file (links followed) of at most
    // MaxFileBytes whose name says it is a picture, outside /proc, /sys and /dev. Resources compiled into the
    // program (":/...") count as files.
    static bool mayRead(const QString& path);
    // The picture in the file at `path`; null when it may not be read or does not decode.
    static QImage readImage(const QString& path);
    // The picture encoded in `data`, within the size limits; null when it does not decode.
    static QImage decodeImage(const QByteArray& data);
    // The picture a data: URL carries; null for any other URL or when it does not decode.
    static QImage embeddedImage(const QUrl& url);
    // The picture `url` names: embedded in a data: URL, or a file (a local, "file" or "qrc" URL) that may be
    // read. Null for anything else.
    static QImage image(const QUrl& url);
    // The local path a "file" or "qrc" URL, or one without a scheme, stands for; empty for any other URL.
    static QString localPath(const QUrl& url);
};
