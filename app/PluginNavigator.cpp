#include "PluginNavigator.h"

#include "AttentionAnimator.h"
#include "CAbstractKolPlugin.h"
#include "PluginHeader.h"

#include <QAbstractItemModel>
#include <QApplication>
#include <QDateTime>
#include <QStackedWidget>
#include <QTimer>
#include <QTreeView>
#include <QVBoxLayout>

namespace {
const char* const kPluginDataChangedSignal = "pluginDataChanged()";
} // namespace

PluginNavigator::PluginNavigator(CAbstractKolPlugin* plugin, QWidget* parent)
    : QWidget(parent)
    , m_plugin(plugin)
    , m_header(new PluginHeader(this))
    , m_listStack(new QStackedWidget(this))
    , m_tree(new QTreeView(m_listStack))
    , m_populationTimer(new QTimer(this))
{
    m_animator = new AttentionAnimator(m_header);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_header);
    layout->addWidget(m_listStack, 1);
    m_listStack->addWidget(m_tree);

    // Model signals come in bursts (reset, then inserts); look at the result once the burst is over.
    m_populationTimer->setSingleShot(true);
    m_populationTimer->setInterval(0);
    connect(m_populationTimer, &QTimer::timeout, this, &PluginNavigator::afterPopulation);
    connect(m_header, &PluginHeader::clicked, this, &PluginNavigator::pageRequested);

    setUpTree();
    connectPluginRequests();
    refreshPluginData();
    schedulePopulationCheck();
}

PluginNavigator::~PluginNavigator()
{
    // The tree's editors and delegate belong to the plugin's model and delegate: detach before they go.
    m_tree->setModel(nullptr);
    if (m_emptyListWidget && m_plugin)
        m_plugin->releaseEmptyListWidget();
}

CAbstractKolPlugin* PluginNavigator::plugin() const
{
    return m_plugin;
}

QModelIndex PluginNavigator::currentIndex() const
{
    return m_tree->currentIndex();
}

bool PluginNavigator::isShowingEmptyListWidget() const
{
    return m_emptyListWidget && m_listStack->currentWidget() == m_emptyListWidget;
}

void PluginNavigator::setPageShown(bool shown)
{
    m_header->setSelected(shown);
}

void PluginNavigator::refreshPluginData()
{
    if (!m_plugin)
        return;
    m_header->setIcon(m_plugin->getPluginIcon());
    const QString caption = m_plugin->getCaption();
    m_header->setCaption(caption.isEmpty() ? m_plugin->getPluginTitle() : caption);
    m_header->setToolTip(m_plugin->getTooltip());
    const PluginVisibility visibility = m_plugin->getPluginVisibility();
    setVisible(visibility != PluginHidden);
    setEnabled(visibility != PluginVisibleDisabled);
}

void PluginNavigator::setUpTree()
{
    m_tree->setHeaderHidden(true);
    m_tree->setMouseTracking(true);
    m_tree->setUniformRowHeights(false);
    m_tree->setSelectionMode(QAbstractItemView::SingleSelection);
    m_tree->setSelectionBehavior(QAbstractItemView::SelectRows);
    // Editors are only the persistent ones the plugin's delegate provides; expansion is the plugin's call.
    m_tree->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_tree->setExpandsOnDoubleClick(false);
    m_tree->setFrameShape(QFrame::NoFrame);
    m_tree->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    if (!m_plugin)
        return;

    const int indentation = m_plugin->getViewItemIndentation();
    if (indentation >= 0)
        m_tree->setIndentation(indentation);
    m_tree->setRootIsDecorated(m_plugin->getViewItemRootDecorated());
    if (QAbstractItemDelegate* delegate = m_plugin->getPluginItemDelegate())
        m_tree->setItemDelegate(delegate);

    m_model = m_plugin->getPluginModel();
    if (!m_model)
        return;
    m_tree->setModel(m_model.get());
    connectModel();

    connect(m_tree->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex& current, const QModelIndex& previous) {
                if (m_plugin)
                    m_plugin->onPluginItemSelected(current, previous);
            });
    // Only the user's own choice brings the page forward; the plugin's selection requests do not.
    connect(m_tree, &QTreeView::pressed, this, &PluginNavigator::pageRequested);
    connect(m_tree, &QTreeView::clicked, this, &PluginNavigator::onItemClicked);
    connect(m_tree, &QTreeView::activated, this, &PluginNavigator::onItemActivated);
    connect(m_tree, &QTreeView::expanded, this, [this](const QModelIndex& index) {
        if (m_plugin)
            m_plugin->onListItemExpanded(index);
    });
    connect(m_tree, &QTreeView::collapsed, this, [this](const QModelIndex& index) {
        if (m_plugin)
            m_plugin->onListItemCollapsed(index);
    });
}

void PluginNavigator::connectModel()
{
    QAbstractItemModel* model = m_model.get();
    connect(model, &QAbstractItemModel::modelReset, this, &PluginNavigator::schedulePopulationCheck);
    connect(model, &QAbstractItemModel::layoutChanged, this, &PluginNavigator::schedulePopulationCheck);
    connect(model, &QAbstractItemModel::rowsInserted, this, &PluginNavigator::schedulePopulationCheck);
    connect(model, &QAbstractItemModel::rowsRemoved, this, &PluginNavigator::schedulePopulationCheck);
    // Item flags may change with the data (a row gains its button).
    connect(model, &QAbstractItemModel::dataChanged, this, &PluginNavigator::schedulePopulationCheck);
}

void PluginNavigator::connectPluginRequests()
{
    CAbstractKolPlugin* plugin = m_plugin;
    if (!plugin)
        return;
    connect(plugin, &CAbstractKolPlugin::listItemSelectionRequest, this,
            [this](const QModelIndex& index, QItemSelectionModel::SelectionFlags flags) {
                if (QItemSelectionModel* selection = m_tree->selectionModel()) {
                    selection->setCurrentIndex(index, flags);
                    // Before the tree has its size, scrolling would push the rows above out of view.
                    if (index.isValid() && m_tree->isVisible())
                        m_tree->scrollTo(index);
                }
            });
    connect(plugin, &CAbstractKolPlugin::listItemExpandRequest, m_tree, &QTreeView::expand);
    connect(plugin, &CAbstractKolPlugin::listItemCollapseRequest, m_tree, &QTreeView::collapse);
    connect(plugin, &CAbstractKolPlugin::listItemEditorRequest, m_tree, [this](const QModelIndex& index) {
        if (index.isValid() && !m_tree->isPersistentEditorOpen(index))
            m_tree->openPersistentEditor(index);
    });
    connect(plugin, &CAbstractKolPlugin::showEmptyListWidgetRequest, this,
            &PluginNavigator::showEmptyListWidget);
    connect(plugin, &CAbstractKolPlugin::hideEmptyListWidgetRequest, this,
            &PluginNavigator::hideEmptyListWidget);
    connect(plugin, &CAbstractKolPlugin::beginPluginAnimation, this,
            [this](QObject*, int mode) { m_animator->start(mode); });
    connect(plugin, &CAbstractKolPlugin::stopPluginAnimation, this, [this](QObject*) { m_animator->stop(); });

    // Not every plugin announces its data changes; the host then keeps what it read at start.
    if (plugin->metaObject()->indexOfSignal(kPluginDataChangedSignal) >= 0)
        connect(plugin, SIGNAL(pluginDataChanged()), this, SLOT(refreshPluginData()));
}

void PluginNavigator::schedulePopulationCheck()
{
    m_populationTimer->start();
}

void PluginNavigator::afterPopulation()
{
    if (!m_plugin)
        return;
    openPersistentEditors(QModelIndex());
    const bool empty = !m_model || m_model->rowCount() == 0;
    if (empty && !m_emptyListWidget) {
        if (QWidget* widget = m_plugin->createEmptyListWidget())
            showEmptyListWidget(widget);
    } else if (!empty && isShowingEmptyListWidget()) {
        hideEmptyListWidget();
    }
}

void PluginNavigator::openPersistentEditors(const QModelIndex& parent)
{
    if (!m_model)
        return;
    const int rows = m_model->rowCount(parent);
    for (int row = 0; row < rows; ++row) {
        const QModelIndex index = m_model->index(row, 0, parent);
        if (m_model->flags(index).testFlag(Qt::ItemIsEditable) && !m_tree->isPersistentEditorOpen(index))
            m_tree->openPersistentEditor(index);
        openPersistentEditors(index);
    }
}

void PluginNavigator::showEmptyListWidget(QWidget* widget)
{
    if (!widget)
        return;
    if (m_emptyListWidget && m_emptyListWidget != widget) {
        m_listStack->removeWidget(m_emptyListWidget);
        m_emptyListWidget->deleteLater();
    }
    m_emptyListWidget = widget;
    if (m_listStack->indexOf(widget) < 0)
        m_listStack->addWidget(widget);
    m_listStack->setCurrentWidget(widget);
}

void PluginNavigator::hideEmptyListWidget()
{
    m_listStack->setCurrentWidget(m_tree);
    if (!m_emptyListWidget)
        return;
    QWidget* widget = m_emptyListWidget;
    m_emptyListWidget.clear();
    if (m_plugin)
        m_plugin->releaseEmptyListWidget();
    m_listStack->removeWidget(widget);
    widget->deleteLater();
}

void PluginNavigator::onItemClicked(const QModelIndex& index)
{
    m_lastClicked = index;
    m_lastClickMs = QDateTime::currentMSecsSinceEpoch();
    if (m_plugin && index.isValid())
        m_plugin->onPluginItemActivated(index);
}

void PluginNavigator::onItemActivated(const QModelIndex& index)
{
    const bool partOfClick = index == m_lastClicked && QDateTime::currentMSecsSinceEpoch() - m_lastClickMs <
                                                           QApplication::doubleClickInterval();
    if (partOfClick || !m_plugin || !index.isValid())
        return;
    m_plugin->onPluginItemActivated(index);
}
