#include "HostLogDock.h"

#include "HostControl.h"

#include <QHeaderView>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMetaMethod>
#include <QPushButton>
#include <QTime>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {
enum Column
{
    TimeColumn,
    KindColumn,
    DetailsColumn,
    ColumnCount
};
constexpr int kTimeColumnWidth = 90;
constexpr int kKindColumnWidth = 120;
const char* const kEventRecordedSignal = "eventRecorded";
} // namespace

HostLogDock::HostLogDock(QWidget* parent)
    : QDockWidget(tr("Host log"), parent)
    , m_list(new QTreeWidget(this))
    , m_appendTimer(new QTimer(this))
{
    m_appendTimer->setSingleShot(true);
    m_appendTimer->setInterval(0);
    connect(m_appendTimer, &QTimer::timeout, this, &HostLogDock::appendNewEvents);
    setObjectName(QStringLiteral("hostLogDock"));
    auto* body = new QWidget(this);
    auto* layout = new QVBoxLayout(body);
    layout->setContentsMargins(0, 0, 0, 0);
    m_list->setColumnCount(ColumnCount);
    m_list->setHeaderLabels({tr("Time"), tr("Request"), tr("Details")});
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->setColumnWidth(TimeColumn, kTimeColumnWidth);
    m_list->setColumnWidth(KindColumn, kKindColumnWidth);
    m_list->header()->setStretchLastSection(true);
    auto* clearButton = new QPushButton(tr("Clear"), body);
    connect(clearButton, &QPushButton::clicked, this, &HostLogDock::clearLog);
    layout->addWidget(m_list, 1);
    layout->addWidget(clearButton, 0, Qt::AlignRight);
    setWidget(body);

    // The event source's signal carries the event; its exact parameter types belong to the stand-in, so the
    // connection is made by name and the log reads the events back instead.
    if (QObject* source = HostControl::eventSource()) {
        const QMetaObject* meta = source->metaObject();
        for (int i = meta->methodOffset(); i < meta->methodCount(); ++i) {
            const QMetaMethod method = meta->method(i);
            if (method.methodType() == QMetaMethod::Signal && method.name() == kEventRecordedSignal) {
                const int slot = metaObject()->indexOfSlot("scheduleAppend()");
                connect(source, method, this, metaObject()->method(slot));
                break;
            }
        }
    }
    appendNewEvents();
}

int HostLogDock::entryCount() const
{
    return m_list->topLevelItemCount();
}

void HostLogDock::scheduleAppend()
{
    m_appendTimer->start();
}

void HostLogDock::appendNewEvents()
{
    const QList<HostControl::Event> events = HostControl::events();
    // Someone else cleared the log: start over.
    if (events.size() < m_shownEvents) {
        m_list->clear();
        m_shownEvents = 0;
    }
    const QString now = QTime::currentTime().toString(Qt::ISODateWithMs);
    for (int i = m_shownEvents; i < events.size(); ++i) {
        const HostControl::Event& event = events.at(i);
        const QString details = QString::fromUtf8(
            QJsonDocument(QJsonObject::fromVariantMap(event.details)).toJson(QJsonDocument::Compact));
        auto* item = new QTreeWidgetItem(m_list, {now, event.kind, details});
        item->setToolTip(DetailsColumn, details);
    }
    if (events.size() > m_shownEvents)
        m_list->scrollToBottom();
    m_shownEvents = int(events.size());
}

void HostLogDock::clearLog()
{
    HostControl::clearEvents();
    m_list->clear();
    m_shownEvents = 0;
}
