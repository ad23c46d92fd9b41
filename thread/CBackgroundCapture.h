#pragma once
// A paint device that draws nothing and only remembers where rectangles were filled with brushes of the
// marker style, and with which colour. The thread layout runs the toolkit's own drawing against it to learn
// where backgrounds go while a long document is still being laid out lazily: the toolkit's geometry calls
// would finish the whole layout first, which made the first paint of a long thread as slow as laying out all
// of it. The device reports the metrics of the device it stands in for, so the drawing takes the same paths.

#include <QPaintDevice>
#include <QRectF>
#include <QRgb>

#include <memory>
#include <vector>

class CBackgroundCapture : public QPaintDevice
{
public:
    struct Fill
    {
        QRgb colour;
        QRectF rect;
    };

    // Brushes of this style are recorded; every other fill, text and image is ignored.
    static constexpr Qt::BrushStyle MarkerStyle = Qt::Dense7Pattern;

    explicit CBackgroundCapture(const QPaintDevice* standIn);
    ~CBackgroundCapture() override;

    QPaintEngine* paintEngine() const override;
    // Marker fills in the order they were painted, in the painter's logical coordinates.
    const std::vector<Fill>& fills() const;

protected:
    int metric(PaintDeviceMetric metric) const override;

private:
    class Engine;

    const QPaintDevice* m_standIn;
    std::unique_ptr<Engine> m_engine;
};
