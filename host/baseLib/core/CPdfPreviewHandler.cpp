#include "CPdfPreviewHandler.h"

#include <QImage>
#include <QPainter>
#include <QPdfDocument>

namespace {

constexpr int firstPage = 0;

} // namespace

QStringList CPdfPreviewHandler::mimeTypes() const
{
    return {QStringLiteral("application/pdf")};
}

QPixmap CPdfPreviewHandler::getThumbnail(unsigned size, const VantrelBrowser::CBrowserItemMetaData& item)
{
    if (size == 0)
        return QPixmap();
    QPdfDocument document(nullptr);
    if (document.load(item.path()) != QPdfDocument::Error::None || document.pageCount() <= firstPage)
        return QPixmap();

    const QSizeF pageSize = document.pagePointSize(firstPage);
    if (pageSize.isEmpty())
        return QPixmap();
    const QSize target =
        pageSize.scaled(QSizeF(size, size), Qt::KeepAspectRatio).toSize().expandedTo(QSize(1, 1));
    const QImage page = document.render(firstPage, target);
    if (page.isNull())
        return QPixmap();

    // Pages without a background would otherwise show the tile colour through the text.
    QImage paper(page.size(), QImage::Format_RGB32);
    paper.fill(Qt::white);
    QPainter painter(&paper);
    painter.drawImage(0, 0, page);
    painter.end();
    return QPixmap::fromImage(paper);
}
