#pragma once
// Draws an image into a rectangle at least as large as the image in nine pieces: the four corners as they
// are, the four edges stretched along their length from the image's middle column or row, and the centre
// filled with the image's middle pixel. Right for images that do not change along their middle row and
// column, such as the blurred bubble shadows; the cost is that of the nine pieces, whatever the size.

#include <QImage>
#include <QRectF>

class QPainter;

class CNinePatch
{
public:
    explicit CNinePatch(const QImage& image);

    enum Centre
    {
        WithCentre,
        // The centre is left out: something opaque is painted over it anyway.
        Hollow,
    };

    // Draws into `target` (logical coordinates). Only the part within `visible`, when that is valid, need be
    // painted: pieces outside it are left out and the stretched ones are cut down to it.
    void draw(QPainter* painter, const QRectF& target, const QRectF& visible = QRectF(),
              Centre centre = WithCentre) const;

private:
    QImage m_image;
    // The middle column and row, in image pixels.
    int m_column;
    int m_row;
};
