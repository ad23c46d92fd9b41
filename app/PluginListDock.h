#pragma once
// The "Plugins" dock: every library of the plugin folder with the metadata the host read from it and
// whether it was loaded or refused (and why).

#include "PluginLoadResult.h"

#include <QDockWidget>
#include <QList>

class QTreeWidget;

class PluginListDock : public QDockWidget
{
    Q_OBJECT
public:
    PluginListDock(const QString& folder, const QList<PluginLoadResult>& results, QWidget* parent = nullptr);

private:
    QTreeWidget* m_list = nullptr;
};
