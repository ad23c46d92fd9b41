#pragma once
// The reference host's main window: the navigation area on the left (one PluginNavigator per loaded page
// plugin), the selected plugin's page on the right, and the docks of the reference host (support server
// simulation, host log, plugin list). It carries out the plugins' requests that concern the window as a
// whole: page selection and toasts.

#include "PluginLoadResult.h"

#include <QHash>
#include <QList>
#include <QMainWindow>
#include <QPointer>

class HostLogDock;
class PluginListDock;
class PluginNavigator;
class QLabel;
class QStackedWidget;
class QVBoxLayout;
class SimulationDock;
class ToastPopup;

class HostMainWindow : public QMainWindow
{
    Q_OBJECT
public:
    HostMainWindow(const QString& pluginFolder, const QList<PluginLoadResult>& plugins,
                   QWidget* parent = nullptr);
    ~HostMainWindow() override;

    QList<PluginNavigator*> navigators() const { return m_navigators; }
    PluginNavigator* currentNavigator() const;
    ToastPopup* toast() const { return m_toast; }

    // Shows the navigator's plugin page and tells the plugins which one is selected now.
    void showPluginPage(PluginNavigator* navigator);

private:
    void buildNavigation(const QList<PluginLoadResult>& plugins);
    void buildDocks(const QString& pluginFolder, const QList<PluginLoadResult>& plugins);
    void buildMenus();
    void connectWindowRequests(PluginNavigator* navigator);
    void showFirstVisiblePage();
    QWidget* pageFor(PluginNavigator* navigator);
    void refreshAllPluginData();
    QString currentItemKey() const;

    QWidget* m_navigationArea = nullptr;
    QVBoxLayout* m_navigationLayout = nullptr;
    QStackedWidget* m_pages = nullptr;
    QLabel* m_noPluginPage = nullptr;
    QList<PluginNavigator*> m_navigators;
    QHash<PluginNavigator*, QPointer<QWidget>> m_pageWidgets;
    QPointer<PluginNavigator> m_current;
    ToastPopup* m_toast = nullptr;
    SimulationDock* m_simulationDock = nullptr;
    HostLogDock* m_logDock = nullptr;
    PluginListDock* m_pluginListDock = nullptr;
};
