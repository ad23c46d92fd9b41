#include "PluginListDock.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QLabel>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {
enum Column
{
    FileColumn,
    ClassColumn,
    InterfaceColumn,
    MetaDataColumn,
    StateColumn,
    ColumnCount
};
constexpr int kFileColumnWidth = 160;
constexpr int kClassColumnWidth = 140;
constexpr int kInterfaceColumnWidth = 240;
constexpr int kMetaDataColumnWidth = 180;
} // namespace

PluginListDock::PluginListDock(const QString& folder, const QList<PluginLoadResult>& results, QWidget* parent)
    : QDockWidget(tr("Plugins"), parent)
    , m_list(new QTreeWidget(this))
{
    setObjectName(QStringLiteral("pluginListDock"));
    auto* body = new QWidget(this);
    auto* layout = new QVBoxLayout(body);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* folderLabel = new QLabel(folder.isEmpty() ? tr("No plugin folder found")
                                                    : tr("Folder: %1").arg(QDir::toNativeSeparators(folder)),
                                   body);
    folderLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_list->setColumnCount(ColumnCount);
    m_list->setHeaderLabels({tr("File"), tr("Class"), tr("Interface"), tr("MetaData"), tr("State")});
    m_list->setRootIsDecorated(false);
    m_list->setColumnWidth(FileColumn, kFileColumnWidth);
    m_list->setColumnWidth(ClassColumn, kClassColumnWidth);
    m_list->setColumnWidth(InterfaceColumn, kInterfaceColumnWidth);
    m_list->setColumnWidth(MetaDataColumn, kMetaDataColumnWidth);
    for (const PluginLoadResult& result : results) {
        const QString metaData =
            QString::fromUtf8(QJsonDocument(result.userMetaData).toJson(QJsonDocument::Compact));
        auto* item = new QTreeWidgetItem(m_list, {QFileInfo(result.filePath).fileName(), result.className,
                                                  result.interfaceId, metaData,
                                                  result.loaded ? tr("loaded") : tr("refused")});
        item->setToolTip(FileColumn, QDir::toNativeSeparators(result.filePath));
        item->setToolTip(StateColumn, result.loaded ? tr("loaded") : result.refusal);
        if (!result.loaded)
            item->setForeground(StateColumn, palette().brush(QPalette::Disabled, QPalette::WindowText));
    }
    layout->addWidget(folderLabel);
    layout->addWidget(m_list, 1);
    setWidget(body);
}
