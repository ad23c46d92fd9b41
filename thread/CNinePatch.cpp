#include "CNinePatch.h"

#include <QPainter>

#include <algorithm>

namespace {

// One direction of the split: where the source's three spans go along the target.
struct Spans
{
    qreal first;  // end of the leading span in the target
    qreal middle; // end of the stretched span in the target
};

Spans spans(qreal start, qreal length, int middlePixel, int pixels, qreal ratio)
{
    const qreal leading = middlePixel / ratio;
    const qreal trailing = (pixels - middlePixel - 1) / ratio;
    const qreal stretched = std::max(length - leading - trailing, 0.0);
    return {start + leading, start + leading + stretched};
}

} // namespace

CNinePatch::CNinePatch(const QImage& image)
    : m_image(image)
    , m_column(image.width() / 2)
    , m_row(image.height() / 2)
{}

void CNinePatch::draw(QPainter* painter, const QRectF& target, const QRectF& visible, Centre centre) const
{
    if (m_image.isNull() || target.isEmpty())
        return;
    const qreal ratio = m_image.devicePixelRatio();
    const Spans across = spans(target.left(), target.width(), m_column, m_image.width(), ratio);
    const Spans down = spans(target.top(), target.height(), m_row, m_image.height(), ratio);
    const qreal xs[] = {target.left(), across.first, across.middle, target.right()};
    const qreal ys[] = {target.top(), down.first, down.middle, target.bottom()};
    const int sourceXs[] = {0, m_column, m_column + 1, m_image.width()};
    const int sourceYs[] = {0, m_row, m_row + 1, m_image.height()};

    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            QRectF piece(QPointF(xs[column], ys[row]), QPointF(xs[column + 1], ys[row + 1]));
            // A stretched piece is the same all along its length, so it may be cut to what is seen.
            if (visible.isValid() && column == 1) {
                piece.setLeft(std::max(piece.left(), visible.left()));
                piece.setRight(std::min(piece.right(), visible.right()));
            }
            if (visible.isValid() && row == 1) {
                piece.setTop(std::max(piece.top(), visible.top()));
                piece.setBottom(std::min(piece.bottom(), visible.bottom()));
            }
            if (piece.width() <= 0 || piece.height() <= 0 ||
                (visible.isValid() && !piece.intersects(visible)))
                continue;
            if (row == 1 && column == 1) {
                if (centre == Hollow)
                    continue;
                painter->fillRect(piece, m_image.pixelColor(m_column, m_row));
                continue;
            }
            const QRect source(QPoint(sourceXs[column], sourceYs[row]),
                               QPoint(sourceXs[column + 1] - 1, sourceYs[row + 1] - 1));
            painter->drawImage(piece, m_image, source);
        }
    }
}
