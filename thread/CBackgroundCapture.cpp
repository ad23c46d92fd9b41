#include "CBackgroundCapture.h"

#include <QPaintEngine>
#include <QTransform>

namespace {

constexpr int kDefaultDpi = 96;
constexpr int kDefaultSize = 1;
constexpr int kDefaultDepth = 32;

} // namespace

class CBackgroundCapture::Engine : public QPaintEngine
{
public:
    Engine()
        : QPaintEngine(AllFeatures)
    {}

    bool begin(QPaintDevice*) override { return true; }
    bool end() override { return true; }
    Type type() const override { return User; }

    void updateState(const QPaintEngineState& state) override
    {
        const DirtyFlags dirty = state.state();
        if (dirty & DirtyBrush)
            m_brush = state.brush();
        if (dirty & DirtyTransform)
            m_transform = state.transform();
    }

    void drawRects(const QRectF* rects, int count) override
    {
        if (m_brush.style() != MarkerStyle)
            return;
        for (int i = 0; i < count; ++i)
            fills.push_back({m_brush.color().rgba(), m_transform.mapRect(rects[i])});
    }
    void drawRects(const QRect* rects, int count) override
    {
        for (int i = 0; i < count; ++i) {
            const QRectF rect(rects[i]);
            drawRects(&rect, 1);
        }
    }

    // Nothing else is of interest; these keep the base from turning text and shapes into paths.
    void drawPixmap(const QRectF&, const QPixmap&, const QRectF&) override {}
    void drawImage(const QRectF&, const QImage&, const QRectF&, Qt::ImageConversionFlags) override {}
    void drawTiledPixmap(const QRectF&, const QPixmap&, const QPointF&) override {}
    void drawTextItem(const QPointF&, const QTextItem&) override {}
    void drawPath(const QPainterPath&) override {}
    void drawPolygon(const QPointF*, int, PolygonDrawMode) override {}
    void drawPolygon(const QPoint*, int, PolygonDrawMode) override {}
    void drawLines(const QLineF*, int) override {}
    void drawLines(const QLine*, int) override {}
    void drawEllipse(const QRectF&) override {}
    void drawEllipse(const QRect&) override {}
    void drawPoints(const QPointF*, int) override {}
    void drawPoints(const QPoint*, int) override {}

    std::vector<Fill> fills;

private:
    QBrush m_brush;
    QTransform m_transform;
};

CBackgroundCapture::CBackgroundCapture(const QPaintDevice* standIn)
    : m_standIn(standIn)
    , m_engine(std::make_unique<Engine>())
{}

CBackgroundCapture::~CBackgroundCapture() = default;

QPaintEngine* CBackgroundCapture::paintEngine() const
{
    return m_engine.get();
}

const std::vector<CBackgroundCapture::Fill>& CBackgroundCapture::fills() const
{
    return m_engine->fills;
}

int CBackgroundCapture::metric(PaintDeviceMetric metric) const
{
    const QPaintDevice* d = m_standIn;
    switch (metric) {
    case PdmWidth:
        return d ? d->width() : kDefaultSize;
    case PdmHeight:
        return d ? d->height() : kDefaultSize;
    case PdmWidthMM:
        return d ? d->widthMM() : kDefaultSize;
    case PdmHeightMM:
        return d ? d->heightMM() : kDefaultSize;
    case PdmNumColors:
        return d ? d->colorCount() : 0;
    case PdmDepth:
        return d ? d->depth() : kDefaultDepth;
    case PdmDpiX:
        return d ? d->logicalDpiX() : kDefaultDpi;
    case PdmDpiY:
        return d ? d->logicalDpiY() : kDefaultDpi;
    case PdmPhysicalDpiX:
        return d ? d->physicalDpiX() : kDefaultDpi;
    case PdmPhysicalDpiY:
        return d ? d->physicalDpiY() : kDefaultDpi;
    case PdmDevicePixelRatio:
        return d ? qRound(d->devicePixelRatio()) : 1;
    case PdmDevicePixelRatioScaled:
        return qRound((d ? d->devicePixelRatio() : 1.0) * devicePixelRatioFScale());
    }
    return 0;
}
