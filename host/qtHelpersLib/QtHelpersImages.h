#pragma once
// The host's named images. Every image is an SVG (or PNG) in the host's resources under
// ":/qtHelpers/images/<name>.svg"; callers only ever use the name.

#include "qtHelpersGlobal.h"

#include <QByteArray>
#include <QIcon>
#include <QImage>
#include <QPixmap>
#include <QString>
#include <QStringList>

namespace qtHelpers::images {

// An icon for the name; a null icon when the host has no such image.
QTHELPERS_EXPORT QIcon icon(const QString& name);

// The image rendered at `size` x `size` logical pixels (-1: its natural size). With `hiDpi` the pixmap is
// rendered for the primary screen's device pixel ratio and carries that ratio.
QTHELPERS_EXPORT QPixmap pixmap(const QString& name, int size = -1, bool hiDpi = true);

// The image at its natural size; null when unknown.
QTHELPERS_EXPORT QImage image(const QString& name);

// The raw SVG document of the image ("currentColor" left in place); empty for unknown or bitmap images.
QTHELPERS_EXPORT QByteArray svgData(const QString& name);

// Whether the host has an image of that name, and all names it has.
QTHELPERS_EXPORT bool contains(const QString& name);
QTHELPERS_EXPORT QStringList names();

} // namespace qtHelpers::images
