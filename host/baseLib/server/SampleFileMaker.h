#pragma once
// Makes real file contents for the simulated server's sample attachments, so that downloads, thumbnails
// and external viewers get genuine files: a PNG or JPEG picture, a one-page PDF, a text file, a ZIP archive.

#include <QByteArray>
#include <QString>

class SampleFileMaker
{
public:
    // `kind`: "png", "jpg" (or "jpeg"), "pdf", "text" (or "txt"), "zip". `caption` is drawn into pictures and
    // documents and is the content of text files and archives. Empty for an unknown kind.
    static QByteArray make(const QString& kind, const QString& caption);
    static bool isKnownKind(const QString& kind);

private:
    static QByteArray picture(const QString& caption, const char* format);
    static QByteArray pdf(const QString& caption);
    static QByteArray zip(const QString& entryName, const QByteArray& content);
    static quint32 crc32(const QByteArray& data);
};
