#pragma once
// Helpers shared by the communication list tests: server scenarios in the scenario format and a paint
// device that records what a delegate draws (geometry, pen colours, opacities) instead of rasterising it.

#include "CNewsFetcher.h"
#include "CVantrelApp.h"
#include "HostControl.h"

#include <QDir>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPaintEngine>
#include <QTest>

namespace listTest {

inline QJsonObject withExtra(QJsonObject entry, const QJsonObject& extra)
{
    for (auto it = extra.begin(); it != extra.end(); ++it)
        entry.insert(it.key(), it.value());
    return entry;
}

// A news entry of the given kind ("important" or "offer") with fixed texts, so renderings stay stable.
inline QJsonObject newsEntry(const QString& id, const QString& kind, const QString& title, bool read = false,
                             const QJsonObject& extra = {})
{
    return withExtra({{"id", id},
                      {"kind", kind},
                      {"title", title},
                      {"subtitle", QStringLiteral("About %1").arg(title)},
                      {"dateText", "12.06.2024"},
                      {"html", QStringLiteral("<p>%1</p>").arg(title)},
                      {"read", read}},
                     extra);
}

inline QJsonObject conversation(const QString& id, const QString& subject, const QJsonObject& extra = {})
{
    return withExtra({{"id", id}, {"subject", subject}, {"firstMessage", "Hello"}}, extra);
}

inline std::shared_ptr<CNewsFetcher> fetcher()
{
    return vantrelApp ? vantrelApp->getNewsFetcher() : nullptr;
}

// The fetcher's shared entry with this id, news or conversation.
inline std::shared_ptr<Messenger::MessageEntry> fetcherEntry(const QString& id)
{
    const auto all = CNewsFetcher::FilterImportant | CNewsFetcher::FilterOffers | CNewsFetcher::FilterIssues;
    for (const auto& entry : fetcher()->getNewsList(all)) {
        if (entry->id == id)
            return entry;
    }
    return nullptr;
}

// Replaces the server's data and waits until the fetcher lists all of it.
inline bool loadScenario(const QList<QJsonObject>& news, const QList<QJsonObject>& conversations = {})
{
    int visible = 0;
    const auto toArray = [&visible](const QList<QJsonObject>& entries) {
        QJsonArray array;
        for (const QJsonObject& entry : entries) {
            array.append(entry);
            visible += entry.value("hidden").toBool() ? 0 : 1;
        }
        return array;
    };
    const QJsonObject root{{"news", toArray(news)}, {"conversations", toArray(conversations)}};
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
    const auto listed = [&newsFetcher] {
        return int(
            newsFetcher->getNewsList(CNewsFetcher::FilterImportant | CNewsFetcher::FilterOffers).size() +
            newsFetcher->getNewsList(CNewsFetcher::FilterIssues).size());
    };
    const bool done = QTest::qWaitFor([&] { return refreshed && listed() == visible; });
    QObject::disconnect(connection);
    return done;
}

// Writes a rendering to the folder named by NEWSREADER_PNG_DIR, if set, for people to look at.
inline void keepForPeople(const QImage& image, const QString& name)
{
    const QString folder = qEnvironmentVariable("NEWSREADER_PNG_DIR");
    if (!folder.isEmpty() && QDir().mkpath(folder))
        image.save(QDir(folder).filePath(name));
}

// One drawing operation as the recording engine saw it.
struct PaintRecord
{
    enum Kind
    {
        Text,
        Pixmap,
        Fill
    };
    Kind kind = Text;
    QRectF rect;    // text: the item's bounding box estimated from its baseline origin
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
        if (state.state() & DirtyTransform)
            m_transform = state.transform();
    }

    void drawTextItem(const QPointF& p, const QTextItem& item) override
    {
        const QPointF origin = m_transform.map(p);
        const QFontMetricsF metrics(item.font());
        records << PaintRecord{
            PaintRecord::Text,
            QRectF(origin.x(), origin.y() - metrics.ascent(), item.width(), metrics.height()),
            origin,
            item.text(),
            m_pen.color(),
            m_opacity,
            item.font()};
    }

    // Images reach here too: the base engine turns them into pixmaps.
    void drawPixmap(const QRectF& r, const QPixmap&, const QRectF&) override
    {
        records << PaintRecord{PaintRecord::Pixmap, m_transform.mapRect(r), {}, {}, {}, m_opacity, {}};
    }

    using QPaintEngine::drawRects;
    void drawRects(const QRectF* rects, int count) override
    {
        for (int i = 0; i < count && m_brush.style() != Qt::NoBrush; ++i)
            records << PaintRecord{
                PaintRecord::Fill, m_transform.mapRect(rects[i]), {}, {}, m_brush.color(), m_opacity, {}};
    }

    void drawPolygon(const QPointF*, int, PolygonDrawMode) override {}
    void drawPath(const QPainterPath&) override {}

private:
    QPen m_pen;
    QBrush m_brush;
    qreal m_opacity = 1.0;
    QTransform m_transform;
};

// An image whose painter records instead of drawing; it measures fonts like the rows' images at 96 dpi.
class RecordingPaintDevice : public QImage
{
public:
    explicit RecordingPaintDevice(const QSize& size)
        : QImage(size, QImage::Format_ARGB32_Premultiplied)
    {
        constexpr int kDotsPerMeterAt96Dpi = 3780;
        setDotsPerMeterX(kDotsPerMeterAt96Dpi);
        setDotsPerMeterY(kDotsPerMeterAt96Dpi);
    }

    QPaintEngine* paintEngine() const override { return &m_engine; }
    QList<PaintRecord> ofKind(PaintRecord::Kind kind) const
    {
        QList<PaintRecord> result;
        for (const PaintRecord& record : m_engine.records) {
            if (record.kind == kind)
                result << record;
        }
        return result;
    }

private:
    mutable RecordingPaintEngine m_engine;
};

} // namespace listTest
