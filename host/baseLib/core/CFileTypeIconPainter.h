#pragma once
// The host's own file-type icons, drawn for desktops whose icon theme has none: a page with a folded
// corner, coloured by the family of the MIME type, with the file's extension written on a band across it;
// and a folder. Drawn as vectors at the requested size, so they stay crisp at every size.

#include <QColor>
#include <QMimeType>
#include <QPixmap>
#include <QString>

class CFileTypeIconPainter
{
public:
    static QPixmap document(const QMimeType& type, const QString& label, int size);
    static QPixmap folder(int size);
    // The colour of the family that `type` belongs to (images, archives, PDF, ...).
    static QColor familyColor(const QMimeType& type);
};
