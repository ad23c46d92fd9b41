#pragma once
// One page plugin's part of the host's navigation area: its header and the tree that shows the plugin's
// model through the plugin's delegate, or, while the list is empty, the plugin's empty-list widget in the
// tree's place. Forwards the user's selection, activation and expansion to the plugin and carries out the
// plugin's requests for the tree (selection, expansion, item editors, empty-list widget, attention).

#include <QModelIndex>
#include <QPointer>
#include <QWidget>

#include <memory>

class AttentionAnimator;
class CAbstractKolPlugin;
class PluginHeader;
class QAbstractItemModel;
class QStackedWidget;
class QTimer;
class QTreeView;

class PluginNavigator : public QWidget
{
    Q_OBJECT
public:
    // The key of a list item (entry id or "folder-N").
    static constexpr int kItemKeyRole = Qt::UserRole + 1;

    PluginNavigator(CAbstractKolPlugin* plugin, QWidget* parent = nullptr);
    ~PluginNavigator() override;

    CAbstractKolPlugin* plugin() const;
    PluginHeader* header() const { return m_header; }
    QTreeView* treeView() const { return m_tree; }
    AttentionAnimator* attentionAnimator() const { return m_animator; }
    QModelIndex currentIndex() const;
    bool isShowingEmptyListWidget() const;

    void setPageShown(bool shown);

public slots:
    // Re-reads icon, caption, tooltip and visibility from the plugin.
    void refreshPluginData();

signals:
    // The user picked this plugin (its header or an item of its tree).
    void pageRequested();

private:
    void setUpTree();
    void connectModel();
    void connectPluginRequests();
    void schedulePopulationCheck();
    void afterPopulation();
    void openPersistentEditors(const QModelIndex& parent);
    void showEmptyListWidget(QWidget* widget);
    void hideEmptyListWidget();
    void onItemClicked(const QModelIndex& index);
    void onItemActivated(const QModelIndex& index);

    QPointer<CAbstractKolPlugin> m_plugin;
    // Shared with the plugin: the tree must not outlive the model it shows.
    std::shared_ptr<QAbstractItemModel> m_model;
    PluginHeader* m_header = nullptr;
    AttentionAnimator* m_animator = nullptr;
    QStackedWidget* m_listStack = nullptr;
    QTreeView* m_tree = nullptr;
    QPointer<QWidget> m_emptyListWidget;
    QTimer* m_populationTimer = nullptr;
    // A mouse click is followed by activated() on styles that activate on single click; the plugin must see
    // one activation per gesture.
    QPersistentModelIndex m_lastClicked;
    qint64 m_lastClickMs = 0;
};
