#pragma once
// Helpers shared by the communication list tests: server scenarios in the scenario format and a paint
// device that records what a delegate draws (geometry, pen colours, opacities) instead of rasterising it.

#include "CNewsFetcher.h"
#include "CVantrelApp.h"
#include "HostControl.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPaintDevice>
#include <QPaintEngine>
#include <QTest>

namespace listTest {

// A news entry of the given kind ("important" or "offer") with fixed texts, so renderings stay stable.
inline QJsonObject newsEntry(const QString& id, const QString& kind, const QString& title, bool read = false,
                             const QJsonObject& extra = {})
{
    QJsonObject entry{{QStringLiteral("id"), id},
                      {QStringLiteral("kind"), kind},
                      {QStringLiteral("title"), title},
                      {QStringLiteral("subtitle"), QStringLiteral("About %1").arg(title)},
                      {QStringLiteral("dateText"), QStringLiteral("12.06.2024")},
                      {QStringLiteral("html"), QStringLiteral("<p>%1</p>").arg(title)},
                      {QStringLiteral("read"), read}};
    for (auto it = extra.begin(); it != extra.end(); ++it)
        entry.insert(it.key(), it.value());
    return entry;
}

inline QJsonObject conversation(const QString& id, const QString& subject, const QJsonObject& extra = {})
{
    QJsonObject entry{{QStringLiteral("id"), id},
                      {QStringLiteral("subject"), subject},
                      {QStringLiteral("firstMessage"), QStringLiteral("Hello")}};
    for (auto it = extra.begin(); it != extra.end(); ++it)
        entry.insert(it.key(), it.value());
    return entry;
}

inline std::shared_ptr<CNewsFetcher> fetcher()
{
    return vantrelApp ? vantrelApp->getNewsFetcher() : nullptr;
}

// Every entry the fetcher lists, news and conversations.
inline int listedEntryCount()
{
    const auto newsFetcher = fetcher();
    if (!newsFetcher)
        return 0;
    return int(newsFetcher->getNewsList(CNewsFetcher::FilterImportant | CNewsFetcher::FilterOffers).size() +
               newsFetcher->getNewsList(CNewsFetcher::FilterIssues).size());
}

// Replaces the server's data and waits until the fetcher lists all of it.
inline bool loadScenario(const QList<QJsonObject>& news, const QList<QJsonObject>& conversations = {})
{
    QJsonArray newsArray;
    int visible = 0;
    for (const QJsonObject& entry : news) {
        newsArray.append(entry);
        visible += entry.value(QStringLiteral("hidden")).toBool() ? 0 : 1;
    }
    QJsonArray conversationArray;
    for (const QJsonObject& entry : conversations) {
        conversationArray.append(entry);
        visible += entry.value(QStringLiteral("hidden")).toBool() ? 0 : 1;
    }
    const QJsonObject root{{QStringLiteral("news"), newsArray},
                           {QStringLiteral("conversations"), conversationArray}};
    QString error;
    if (!HostControl::loadScenarioJson(QJsonDocument(root).toJson(), QStringLiteral("test"), &error)) {
        qWarning() << error;
        return false;
    }
    const auto newsFetcher = fetcher();
    if (!newsFetcher)
        return true;
    // Any refresh from now on reads the new data; wait for the one this call asks for.
    bool refreshed = false;
    const QMetaObject::Connection connection =
        QObject::connect(newsFetcher.get(), &CNewsFetcher::newsChanged, [&refreshed] { refreshed = true; });
    newsFetcher->startFetchAll();
    const bool done =
        QTest::qWaitFor([&refreshed, visible] { return refreshed && listedEntryCount() == visible; });
    QObject::disconnect(connection);
    return done;
}

// One drawing operation as the recording engine saw it.
struct PaintRecord
{
    enum Kind
    {
        Text,
        Pixmap,
        Fill,
        Other
    };
    Kind kind = Other;
    QRectF rect;    // target rectangle (text: the item's bounding box estimated from its position)
    QPointF origin; // text: baseline origin
    QString text;
    QColor color; // text: pen colour; fill: brush colour
    qreal opacity = 1.0;
    QFont font;
};

class RecordingPaintEngine : public QPaintEngine
{
public:
    RecordingPaintEngine()
        : QPaintEngine(QPaintEngine::AllFeatures)
    {}

    QList<PaintRecord> records;

    bool begin(QPaintDevice*) override { return true; }
    bool end() override { return true; }
    Type type() const override { return QPaintEngine::User; }

    void updateState(const QPaintEngineState& state) override
    {
        if (state.state() & DirtyPen)
            m_pen = state.pen();
        if (state.state() & DirtyBrush)
            m_brush = state.brush();
        if (state.state() & DirtyOpacity)
            m_opacity = state.opacity();
        if (state.state() & DirtyFont)
            m_font = state.font();
        if (state.state() & DirtyTransform)
            m_transform = state.transform();
    }

    void drawTextItem(const QPointF& p, const QTextItem& item) override
    {
        PaintRecord record;
        record.kind = PaintRecord::Text;
        record.origin = m_transform.map(p);
        record.text = item.text();
        record.color = m_pen.color();
        record.opacity = m_opacity;
        record.font = item.font();
        const QFontMetricsF metrics(item.font());
        record.rect =
            QRectF(record.origin.x(), record.origin.y() - metrics.ascent(), item.width(), metrics.height());
        records << record;
    }

    void drawPixmap(const QRectF& r, const QPixmap&, const QRectF&) override
    {
        PaintRecord record;
        record.kind = PaintRecord::Pixmap;
        record.rect = m_transform.mapRect(r);
        record.opacity = m_opacity;
        records << record;
    }

    void drawImage(const QRectF& r, const QImage&, const QRectF&, Qt::ImageConversionFlags) override
    {
        PaintRecord record;
        record.kind = PaintRecord::Pixmap;
        record.rect = m_transform.mapRect(r);
        record.opacity = m_opacity;
        records << record;
    }

    void drawRects(const QRectF* rects, int count) override
    {
        for (int i = 0; i < count; ++i) {
            PaintRecord record;
            record.kind = PaintRecord::Fill;
            record.rect = m_transform.mapRect(rects[i]);
            record.color = m_brush.color();
            record.opacity = m_opacity;
            if (m_brush.style() != Qt::NoBrush)
                records << record;
        }
    }

    void drawRects(const QRect* rects, int count) override
    {
        for (int i = 0; i < count; ++i) {
            const QRectF rect(rects[i]);
            drawRects(&rect, 1);
        }
    }

    void drawPolygon(const QPointF*, int, PolygonDrawMode) override
    {
        PaintRecord record;
        record.color = m_pen.color();
        records << record;
    }

    void drawPath(const QPainterPath&) override
    {
        PaintRecord record;
        record.color = m_pen.color();
        records << record;
    }

    QList<PaintRecord> ofKind(PaintRecord::Kind kind) const
    {
        QList<PaintRecord> result;
        for (const PaintRecord& record : records) {
            if (record.kind == kind)
                result << record;
        }
        return result;
    }

private:
    QPen m_pen;
    QBrush m_brush;
    qreal m_opacity = 1.0;
    QFont m_font;
    QTransform m_transform;
};

class RecordingPaintDevice : public QPaintDevice
{
public:
    explicit RecordingPaintDevice(const QSize& size)
        : m_size(size)
    {}
    ~RecordingPaintDevice() override = default;

    QPaintEngine* paintEngine() const override { return &m_engine; }
    QList<PaintRecord> records() const { return m_engine.records; }
    QList<PaintRecord> ofKind(PaintRecord::Kind kind) const { return m_engine.ofKind(kind); }

protected:
    int metric(PaintDeviceMetric metric) const override
    {
        constexpr int kDpi = 96;
        switch (metric) {
        case PdmWidth:
            return m_size.width();
        case PdmHeight:
            return m_size.height();
        case PdmDpiX:
        case PdmDpiY:
        case PdmPhysicalDpiX:
        case PdmPhysicalDpiY:
            return kDpi;
        case PdmDepth:
            return 32;
        case PdmDevicePixelRatio:
            return 1;
        case PdmDevicePixelRatioScaled:
            return int(QPaintDevice::devicePixelRatioFScale());
        case PdmNumColors:
            return INT_MAX;
        case PdmWidthMM:
            return m_size.width() * 254 / (kDpi * 10);
        case PdmHeightMM:
            return m_size.height() * 254 / (kDpi * 10);
        }
        return 0;
    }

private:
    QSize m_size;
    mutable RecordingPaintEngine m_engine;
};

} // namespace listTest
