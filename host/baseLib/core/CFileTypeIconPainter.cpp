#include "CFileTypeIconPainter.h"

#include <QFont>
#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>

namespace {

// Proportions of the drawing, in parts of the icon's side.
constexpr qreal pageWidth = 0.76;
constexpr qreal pageHeight = 0.94;
constexpr qreal foldSize = 0.26;
constexpr qreal bandTop = 0.52;
constexpr qreal bandHeight = 0.26;
constexpr qreal bandInset = -0.06; // the band sticks out of the page a little, like a label
constexpr qreal labelPadding = 0.04;
constexpr qreal strokeWidth = 1.0 / 32.0;
constexpr qreal minimumStroke = 1.0;
constexpr int smallestLabelledSize = 14; // below this the label is unreadable and only clutters
constexpr int maxLabelCharacters = 4;
constexpr int lighterFold = 160;
constexpr int darkerOutline = 130;
constexpr int paleFill = 0xfbfcfd;
constexpr qreal labelHeightInBand = 0.72;
constexpr int darkerFolderBack = 110;

constexpr qreal folderTabWidth = 0.42;
constexpr qreal folderTabHeight = 0.12;
constexpr qreal folderTop = 0.16;
constexpr qreal folderBottom = 0.86;
constexpr qreal folderMargin = 0.06;
constexpr qreal folderRadius = 0.06;

const QColor imageColor(0x3a9d5d);
const QColor videoColor(0x8e5cc4);
const QColor audioColor(0xe08a2c);
const QColor textColor(0x5f7284);
const QColor pdfColor(0xd2463b);
const QColor archiveColor(0xa67c35);
const QColor spreadsheetColor(0x21875a);
const QColor presentationColor(0xd9652b);
const QColor wordColor(0x2f6fc5);
const QColor otherColor(0x7d8996);
const QColor folderColor(0xe8b54a);

bool inheritsAny(const QMimeType& type, std::initializer_list<const char*> names)
{
    for (const char* name : names) {
        if (type.inherits(QString::fromLatin1(name)))
            return true;
    }
    return false;
}

QPixmap transparentPixmap(int size)
{
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    return pixmap;
}

} // namespace

QColor CFileTypeIconPainter::familyColor(const QMimeType& type)
{
    const QString name = type.name();
    if (inheritsAny(type, {"application/pdf"}))
        return pdfColor;
    if (name.contains(QLatin1String("spreadsheet")) || name.contains(QLatin1String("ms-excel")) ||
        inheritsAny(type, {"text/csv"}))
        return spreadsheetColor;
    if (name.contains(QLatin1String("presentation")) || name.contains(QLatin1String("ms-powerpoint")))
        return presentationColor;
    if (name.contains(QLatin1String("wordprocessing")) || name.contains(QLatin1String("msword")) ||
        name.contains(QLatin1String("opendocument.text")) || inheritsAny(type, {"application/rtf"}))
        return wordColor;
    // Office documents are zip containers underneath, so archives are asked after them.
    if (inheritsAny(type, {"application/zip", "application/x-7z-compressed", "application/x-tar",
                           "application/gzip", "application/vnd.rar", "application/x-rar",
                           "application/x-bzip2", "application/x-xz"}))
        return archiveColor;
    if (name.startsWith(QLatin1String("image/")))
        return imageColor;
    if (name.startsWith(QLatin1String("video/")))
        return videoColor;
    if (name.startsWith(QLatin1String("audio/")))
        return audioColor;
    if (inheritsAny(type, {"text/plain"}))
        return textColor;
    return otherColor;
}

QPixmap CFileTypeIconPainter::document(const QMimeType& type, const QString& label, int size)
{
    QPixmap pixmap = transparentPixmap(size);
    const QColor color = familyColor(type);
    const qreal side = size;
    const qreal stroke = qMax(minimumStroke, side * strokeWidth);

    // Half a stroke inside the page keeps the outline on whole pixels.
    const QRectF page(QPointF((side - side * pageWidth) / 2.0 + stroke / 2.0,
                              (side - side * pageHeight) / 2.0 + stroke / 2.0),
                      QSizeF(side * pageWidth - stroke, side * pageHeight - stroke));
    const qreal fold = side * foldSize;

    QPainterPath outline;
    outline.moveTo(page.topLeft());
    outline.lineTo(page.right() - fold, page.top());
    outline.lineTo(page.right(), page.top() + fold);
    outline.lineTo(page.bottomRight());
    outline.lineTo(page.bottomLeft());
    outline.closeSubpath();

    QPainterPath corner;
    corner.moveTo(page.right() - fold, page.top());
    corner.lineTo(page.right() - fold, page.top() + fold);
    corner.lineTo(page.right(), page.top() + fold);
    corner.closeSubpath();

    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing, true);
    painter.setRenderHint(QPainter::TextAntialiasing, true);
    QPen outlinePen(color.darker(darkerOutline), stroke);
    outlinePen.setJoinStyle(Qt::MiterJoin);
    painter.setPen(outlinePen);
    painter.setBrush(QColor::fromRgb(paleFill));
    painter.drawPath(outline);
    painter.setBrush(color.lighter(lighterFold));
    painter.drawPath(corner);

    if (size < smallestLabelledSize || label.isEmpty()) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(color);
        painter.drawRect(QRectF(page.left(), side * bandTop, page.width(), side * bandHeight / 2.0));
        return pixmap;
    }

    const QRectF band(QPointF(page.left() + side * bandInset, side * bandTop),
                      QSizeF(page.width() - 2.0 * side * bandInset, side * bandHeight));
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawRoundedRect(band, stroke, stroke);

    const QString text = label.left(maxLabelCharacters).toUpper();
    QFont font;
    font.setBold(true);
    font.setPixelSize(qMax(1, int(band.height() * labelHeightInBand)));
    const qreal available = band.width() - 2.0 * side * labelPadding;
    const qreal advance = QFontMetricsF(font).horizontalAdvance(text);
    if (advance > available)
        font.setPixelSize(qMax(1, int(font.pixelSize() * available / advance)));
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.drawText(band, Qt::AlignCenter, text);
    return pixmap;
}

QPixmap CFileTypeIconPainter::folder(int size)
{
    QPixmap pixmap = transparentPixmap(size);
    const qreal side = size;
    const qreal stroke = qMax(minimumStroke, side * strokeWidth);
    const qreal left = side * folderMargin + stroke / 2.0;
    const qreal right = side - side * folderMargin - stroke / 2.0;
    const qreal top = side * folderTop;
    const qreal bottom = side * folderBottom;
    const qreal radius = side * folderRadius;

    QPainterPath back;
    back.moveTo(left, top + side * folderTabHeight);
    back.lineTo(left, top);
    back.lineTo(left + side * folderTabWidth, top);
    back.lineTo(left + side * folderTabWidth + side * folderTabHeight, top + side * folderTabHeight);
    back.lineTo(right, top + side * folderTabHeight);
    back.lineTo(right, bottom);
    back.lineTo(left, bottom);
    back.closeSubpath();

    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing, true);
    painter.setPen(QPen(folderColor.darker(darkerOutline), stroke));
    painter.setBrush(folderColor.darker(darkerFolderBack));
    painter.drawPath(back);
    painter.setBrush(folderColor);
    painter.drawRoundedRect(QRectF(QPointF(left, top + 2.0 * side * folderTabHeight), QPointF(right, bottom)),
                            radius, radius);
    return pixmap;
}
