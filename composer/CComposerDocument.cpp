#include "CComposerDocument.h"

#include "CResourceGuard.h"
#include "TextImageHandler.h"

#include <QPixmap>

CComposerDocument::CComposerDocument(QObject* parent)
    : QTextDocument(parent)
{}

QVariant CComposerDocument::loadResource(int type, const QUrl& name)
{
    if (type != ImageResource)
        return {};
    const QImage image = CResourceGuard::image(name);
    // Never empty: on an empty answer the editor's image handler would open the file itself.
    const QPixmap picture =
        image.isNull() ? QPixmap(TextImageHandler::fallbackImageName()) : QPixmap::fromImage(image);
    addResource(type, name, picture);
    return picture;
}
