#include "HostMainWindow.h"

#include "CAbstractKolPlugin.h"
#include "CVantrelApp.h"
#include "HostLogDock.h"
#include "PluginListDock.h"
#include "PluginNavigator.h"
#include "SimulationDock.h"
#include "ToastPopup.h"

#include <QApplication>
#include <QLabel>
#include <QMenuBar>
#include <QScrollArea>
#include <QSplitter>
#include <QStackedWidget>
#include <QStatusBar>
#include <QTreeView>
#include <QVBoxLayout>

namespace {
constexpr int kNavigationWidth = 300;
constexpr int kNavigationMinimumWidth = 200;
constexpr int kPageStretch = 1;
constexpr int kSimulationDockWidth = 290;
constexpr int kLogDockHeight = 150;
} // namespace

HostMainWindow::HostMainWindow(const QString& pluginFolder, const QList<PluginLoadResult>& plugins,
                               QWidget* parent)
    : QMainWindow(parent)
{
    setWindowTitle(tr("Vantrel Desktop — reference host"));
    setObjectName(QStringLiteral("hostMainWindow"));
    setDockOptions(QMainWindow::AnimatedDocks | QMainWindow::AllowTabbedDocks);

    auto* splitter = new QSplitter(Qt::Horizontal, this);
    splitter->setChildrenCollapsible(false);
    auto* navigationScroll = new QScrollArea(splitter);
    navigationScroll->setWidgetResizable(true);
    navigationScroll->setFrameShape(QFrame::NoFrame);
    navigationScroll->setMinimumWidth(kNavigationMinimumWidth);
    m_navigationArea = new QWidget(navigationScroll);
    m_navigationArea->setObjectName(QStringLiteral("navigationArea"));
    m_navigationLayout = new QVBoxLayout(m_navigationArea);
    m_navigationLayout->setContentsMargins(0, 0, 0, 0);
    m_navigationLayout->setSpacing(0);
    navigationScroll->setWidget(m_navigationArea);

    m_pages = new QStackedWidget(splitter);
    m_pages->setObjectName(QStringLiteral("pluginPages"));
    m_noPluginPage =
        new QLabel(tr("No page plugin is shown. The Plugins list tells which modules were found."), m_pages);
    m_noPluginPage->setAlignment(Qt::AlignCenter);
    m_noPluginPage->setWordWrap(true);
    m_pages->addWidget(m_noPluginPage);

    splitter->addWidget(navigationScroll);
    splitter->addWidget(m_pages);
    splitter->setStretchFactor(1, kPageStretch);
    splitter->setSizes({kNavigationWidth, width() - kNavigationWidth});
    setCentralWidget(splitter);
    CVantrelApp::setWidgetStyleSheetFromPalette(splitter);

    m_toast = new ToastPopup(this);
    buildNavigation(plugins);
    buildDocks(pluginFolder, plugins);
    buildMenus();

    int loaded = 0;
    for (const PluginLoadResult& result : plugins)
        loaded += result.loaded ? 1 : 0;
    statusBar()->showMessage(tr("%1 of %2 plugin modules loaded").arg(loaded).arg(plugins.size()));

    showFirstVisiblePage();
}

HostMainWindow::~HostMainWindow()
{
    // Tell the shown plugin it is going away from view before its page and tree are destroyed.
    if (m_current && m_current->plugin())
        m_current->plugin()->setIsSelected(false);
}

PluginNavigator* HostMainWindow::currentNavigator() const
{
    return m_current;
}

void HostMainWindow::buildNavigation(const QList<PluginLoadResult>& plugins)
{
    QList<CAbstractKolPlugin*> loaded;
    for (const PluginLoadResult& result : plugins) {
        if (result.loaded && result.plugin)
            loaded.append(result.plugin);
    }
    std::stable_sort(loaded.begin(), loaded.end(), [](CAbstractKolPlugin* a, CAbstractKolPlugin* b) {
        return a->getSortWeight() < b->getSortWeight();
    });
    for (CAbstractKolPlugin* plugin : loaded) {
        auto* navigator = new PluginNavigator(plugin, m_navigationArea);
        m_navigationLayout->addWidget(navigator, 1);
        m_navigators.append(navigator);
        connect(navigator, &PluginNavigator::pageRequested, this,
                [this, navigator] { showPluginPage(navigator); });
        connectWindowRequests(navigator);
    }
    if (m_navigators.isEmpty())
        m_navigationLayout->addStretch(1);
}

void HostMainWindow::connectWindowRequests(PluginNavigator* navigator)
{
    CAbstractKolPlugin* plugin = navigator->plugin();
    connect(plugin, &CAbstractKolPlugin::pluginToastRequest, this,
            [this](QObject* receiver, const QString& text, const char* slot, QMessageBox::Icon icon,
                   int timeout) { m_toast->showToast(receiver, text, slot, icon, timeout); });
    connect(plugin, &CAbstractKolPlugin::pluginSelectionChanged, this, [this, navigator](bool selected) {
        if (selected)
            showPluginPage(navigator);
    });
}

void HostMainWindow::buildDocks(const QString& pluginFolder, const QList<PluginLoadResult>& plugins)
{
    m_simulationDock = new SimulationDock([this] { return currentItemKey(); }, this);
    addDockWidget(Qt::RightDockWidgetArea, m_simulationDock);
    connect(m_simulationDock, &SimulationDock::hostStateChanged, this, &HostMainWindow::refreshAllPluginData);

    m_logDock = new HostLogDock(this);
    m_pluginListDock = new PluginListDock(pluginFolder, plugins, this);
    addDockWidget(Qt::BottomDockWidgetArea, m_logDock);
    tabifyDockWidget(m_logDock, m_pluginListDock);
    m_logDock->raise();
    resizeDocks({m_simulationDock}, {kSimulationDockWidth}, Qt::Horizontal);
    resizeDocks({m_logDock}, {kLogDockHeight}, Qt::Vertical);
}

void HostMainWindow::buildMenus()
{
    QMenu* fileMenu = menuBar()->addMenu(tr("&File"));
    fileMenu->addAction(tr("&Quit"), QKeySequence::Quit, qApp, &QApplication::quit);

    QMenu* serverMenu = menuBar()->addMenu(tr("&Support server"));
    m_simulationDock->populateMenu(serverMenu);

    QMenu* viewMenu = menuBar()->addMenu(tr("&View"));
    viewMenu->addAction(m_simulationDock->toggleViewAction());
    viewMenu->addAction(m_logDock->toggleViewAction());
    viewMenu->addAction(m_pluginListDock->toggleViewAction());
}

void HostMainWindow::showFirstVisiblePage()
{
    for (PluginNavigator* navigator : std::as_const(m_navigators)) {
        if (navigator->plugin() && navigator->plugin()->getPluginVisibility() != PluginHidden) {
            showPluginPage(navigator);
            return;
        }
    }
}

void HostMainWindow::showPluginPage(PluginNavigator* navigator)
{
    // The plugin's own setIsSelected(true) comes back here through pluginSelectionChanged: nothing to redo.
    if (!navigator || navigator == m_current || !navigator->plugin())
        return;
    PluginNavigator* previous = m_current;
    m_current = navigator;
    if (previous) {
        previous->setPageShown(false);
        if (previous->plugin())
            previous->plugin()->setIsSelected(false);
    }
    navigator->setPageShown(true);
    m_pages->setCurrentWidget(pageFor(navigator));

    CAbstractKolPlugin* plugin = navigator->plugin();
    if (!plugin->isSelected())
        plugin->setIsSelected(true);
    plugin->onPluginViewShown();
    plugin->restoreSelection();
}

QWidget* HostMainWindow::pageFor(PluginNavigator* navigator)
{
    QPointer<QWidget>& page = m_pageWidgets[navigator];
    if (page)
        return page;
    CAbstractKolPlugin* plugin = navigator->plugin();
    QWidget* view = plugin->hasPluginView() ? plugin->getPluginView(m_pages) : nullptr;
    if (!view) {
        auto* placeholder = new QLabel(tr("%1 has no page.").arg(plugin->getPluginTitle()), m_pages);
        placeholder->setAlignment(Qt::AlignCenter);
        view = placeholder;
    }
    if (m_pages->indexOf(view) < 0)
        m_pages->addWidget(view);
    page = view;
    return view;
}

void HostMainWindow::refreshAllPluginData()
{
    for (PluginNavigator* navigator : std::as_const(m_navigators))
        navigator->refreshPluginData();
}

QString HostMainWindow::currentItemKey() const
{
    if (!m_current)
        return QString();
    return m_current->currentIndex().data(PluginNavigator::kItemKeyRole).toString();
}
