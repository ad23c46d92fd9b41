// The plugin's operations on its communication list: the model and delegate it hands the host, expansion
// and activation, restoring the selection, the empty-list widget and hiding an entry from end to end.
#include "HostTestMain.h"

#include "CCommunicationObjectModel.h"
#include "CNewsReaderPlugin.h"
#include "CPluginItemDelegate.h"
#include "CReadNewsEntryRequest.h"
#include "HostColors.h"
#include "ListTestSupport.h"

#include <QLabel>
#include <QLayout>
#include <QSignalSpy>
#include <QToolButton>
#include <QTreeView>

using listTest::conversation;
using listTest::newsEntry;
using Model = CCommunicationObjectModel;

namespace {

constexpr int kClearSelectRows = 19;

bool loadList()
{
    return listTest::loadScenario(
        {newsEntry("n-important", "important", "Maintenance", true),
         newsEntry("n-offer", "offer", "Spring offer"),
         newsEntry("n-offer-2", "offer", "Summer offer", true, {{"published", "-1d"}})},
        {conversation("c-printer", "Printer blocked")});
}

QStringList eventKeys(const QString& kind)
{
    QStringList keys;
    for (const HostControl::Event& event : HostControl::events(kind))
        keys << event.details.value("key").toString();
    return keys;
}

int firstSelectFlags()
{
    return HostControl::events("select").first().details.value("flags").toInt();
}

Model* modelOf(CNewsReaderPlugin& plugin)
{
    return static_cast<Model*>(plugin.getPluginModel().get());
}

// The host's tree: shows the plugin's model with its delegate and follows the plugin's requests.
class HostTree : public QTreeView
{
public:
    explicit HostTree(CNewsReaderPlugin& plugin)
    {
        setModel(plugin.getPluginModel().get());
        setItemDelegate(plugin.getPluginItemDelegate());
        setHeaderHidden(true);
        setRootIsDecorated(false);
        resize(340, 500);
        connect(&plugin, &CAbstractKolPlugin::listItemExpandRequest, this, &QTreeView::expand);
        connect(&plugin, &CAbstractKolPlugin::listItemCollapseRequest, this, &QTreeView::collapse);
        connect(&plugin, &CAbstractKolPlugin::listItemEditorRequest, this, [this](const QModelIndex& index) {
            if (index.flags() & Qt::ItemIsEditable)
                openPersistentEditor(index);
        });
        connect(&plugin, &CAbstractKolPlugin::listItemSelectionRequest, this,
                [this](const QModelIndex& index, QItemSelectionModel::SelectionFlags flags) {
                    selectionModel()->setCurrentIndex(index, flags);
                });
    }
};

} // namespace

class TestPluginListOperations : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        HostControl::resetSwitches();
        HostControl::setHoldRequests(false);
        HostControl::removeSetting(QStringLiteral("UIShowNews"));
        HostControl::clearServer();
        QVERIFY(loadList());
        HostControl::clearEvents();
        HostControl::clearRequestLog();
    }

    void handsTheHostItsModelAndDelegateAndFollowsExpansion()
    {
        CNewsReaderPlugin plugin;
        const std::shared_ptr<QAbstractItemModel> model = plugin.getPluginModel();
        QVERIFY(qobject_cast<Model*>(model.get()));
        QCOMPARE(plugin.getPluginModel(), model);
        QVERIFY(qobject_cast<CPluginItemDelegate*>(plugin.getPluginItemDelegate()));
        // Built in the constructor.
        QCOMPARE(model->rowCount(), 3);

        const QModelIndex issues = modelOf(plugin)->indexForKey("folder-3");
        plugin.onListItemExpanded(issues);
        QCOMPARE(issues.data(Model::ExpandedRole), QVariant(true));
        plugin.onListItemCollapsed(issues);
        QCOMPARE(issues.data(Model::ExpandedRole), QVariant(false));
    }

    void activatingAFolderTogglesIt()
    {
        CNewsReaderPlugin plugin;
        HostControl::recordPluginRequests(&plugin);
        Model* model = modelOf(plugin);

        plugin.onPluginItemActivated(model->indexForKey("n-offer"));
        QVERIFY(HostControl::events().isEmpty());

        const QModelIndex offers = model->indexForKey("folder-1");
        QVERIFY(offers.data(Model::ExpandedRole).toBool());
        plugin.onPluginItemActivated(offers);
        QCOMPARE(eventKeys("collapse"), QStringList{"folder-1"});
        QVERIFY(HostControl::events("select").isEmpty());

        HostControl::clearEvents();
        const QModelIndex issues = model->indexForKey("folder-3");
        QVERIFY(!issues.data(Model::ExpandedRole).toBool());
        plugin.onPluginItemActivated(issues);
        QCOMPARE(eventKeys("expand"), QStringList{"folder-3"});
        QCOMPARE(eventKeys("select"), QStringList{"c-printer"});
        QCOMPARE(firstSelectFlags(), kClearSelectRows);
        QVERIFY(HostControl::events("collapse").isEmpty());
    }

    void restoringTheSelectionReopensFoldersAndEditors()
    {
        CNewsReaderPlugin plugin;
        HostControl::recordPluginRequests(&plugin);
        plugin.restoreSelection();
        // Expanded: "Important messages" (folder 0) and "Offers" (unread). Editors: every entry of a folder
        // with a non-zero number. Nothing selected yet: the first entry of the first folder.
        QCOMPARE(eventKeys("expand"), (QStringList{"folder-0", "folder-1", "folder-0"}));
        QCOMPARE(eventKeys("editor"), (QStringList{"n-offer", "n-offer-2", "c-printer"}));
        QCOMPARE(eventKeys("select"), QStringList{"n-important"});

        HostControl::clearEvents();
        plugin.setCurrentIndex(modelOf(plugin)->indexForKey("c-printer"));
        plugin.restoreSelection();
        QCOMPARE(eventKeys("select"), QStringList{"c-printer"});
        QCOMPARE(firstSelectFlags(), kClearSelectRows);
    }

    void emptyListGetsTheNoCommunicationsWidget()
    {
        {
            CNewsReaderPlugin plugin;
            QCOMPARE(plugin.createEmptyListWidget(), nullptr);
        }
        HostControl::clearServer();
        QVERIFY(listTest::loadScenario({}));
        CNewsReaderPlugin plugin;
        std::unique_ptr<QWidget> widget(plugin.createEmptyListWidget());
        QVERIFY(widget);
        QCOMPARE(widget->parent(), nullptr);
        const QList<QLabel*> labels = widget->findChildren<QLabel*>();
        QCOMPARE(labels.size(), 1);
        QCOMPARE(labels.first()->text(), QStringLiteral("No communications received yet"));
        QVERIFY(labels.first()->wordWrap());
        QCOMPARE(labels.first()->font().pointSize(), 11);
        QCOMPARE(widget->layout()->contentsMargins(), QMargins(24, 24, 24, 24));
    }

    void aRequestedEntryIsSelectedInItsFolder()
    {
        CNewsReaderPlugin plugin;
        HostControl::recordPluginRequests(&plugin);
        CReadNewsEntryRequest request(QStringLiteral("n-offer-2"), 0);
        QVERIFY(vantrelApp->postApplicationEvent(&request));
        QCOMPARE(eventKeys("expand"), QStringList{"folder-1"});
        QCOMPARE(eventKeys("select"), QStringList{"n-offer-2"});
        // Found at once: nothing is fetched.
        QTest::qWait(20);
        QVERIFY(HostControl::requestLog().isEmpty());
    }

    void aRequestedConversationIsSelectedOnceListed()
    {
        CNewsReaderPlugin plugin;
        HostControl::recordPluginRequests(&plugin);
        CReadNewsEntryRequest request(QStringLiteral("c-new"), 0);
        QVERIFY(vantrelApp->postApplicationEvent(&request));
        QVERIFY(HostControl::events("select").isEmpty());
        HostControl::addConversation(conversation("c-new", "Fresh question"));
        QTRY_VERIFY(eventKeys("select").contains("c-new"));
    }

    void theHostTreeShowsTheListAndHidingAnEntryRemovesIt()
    {
        CNewsReaderPlugin plugin;
        HostTree tree(plugin);
        tree.show();
        plugin.setIsSelected(true);
        plugin.restoreSelection();
        QVERIFY(QTest::qWaitForWindowExposed(&tree));
        Model* model = modelOf(plugin);
        const QModelIndex important = model->indexForKey("folder-0");
        const QModelIndex offer = model->indexForKey("n-offer");
        QCOMPARE(tree.visualRect(important).height(), 41);
        QCOMPARE(tree.visualRect(offer).height(), 58);
        QCOMPARE(tree.currentIndex(), model->index(0, 0, important));

        const QImage shot = tree.grab().toImage();
        listTest::keepForPeople(shot, QStringLiteral("list-tree.png"));
        // The selected row carries the selection colour at its edge.
        const QPoint probe =
            tree.viewport()->mapTo(&tree, tree.visualRect(tree.currentIndex()).topLeft() + QPoint(4, 4));
        QCOMPARE(shot.pixelColor(probe).rgb(), getPaletteColor(clrListSelection).rgb());

        auto* button = qobject_cast<QToolButton*>(tree.indexWidget(offer));
        QVERIFY(button);
        QVERIFY(button->isVisible());
        // Important entries have no button.
        QVERIFY(!tree.indexWidget(model->indexForKey("n-important")));

        QTest::mouseClick(button, Qt::LeftButton);
        QTRY_VERIFY(HostControl::isNewsEntryHidden("n-offer"));
        QTRY_VERIFY(!model->indexForKey("n-offer").isValid());
        QCOMPARE(model->rowCount(model->indexForKey("folder-1")), 1);
        QVERIFY(!HostControl::isNewsEntryHidden("n-offer-2"));
    }

    void hidingAnInvalidIndexDoesNothing()
    {
        CNewsReaderPlugin plugin;
        plugin.onHideNewsEntryClicked(QModelIndex());
        QTest::qWait(20);
        QVERIFY(HostControl::requestLog().isEmpty());
    }

    void theSelectedConversationStaysSelectedAcrossARebuild()
    {
        CNewsReaderPlugin plugin;
        HostTree tree(plugin);
        tree.show();
        Model* model = modelOf(plugin);
        tree.expandAll();
        tree.selectionModel()->setCurrentIndex(
            model->indexForKey("c-printer"), QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
        plugin.setCurrentIndex(tree.currentIndex());

        HostControl::addNewsEntry(
            newsEntry("n-urgent", "important", "Urgent", false, {{"published", "+1m"}}));
        QTRY_VERIFY(model->indexForKey("n-urgent").isValid());
        QCOMPARE(tree.currentIndex().data(Model::KeyRole), QVariant("c-printer"));
        const QModelIndexList selected = tree.selectionModel()->selectedRows();
        QCOMPARE(selected.size(), 1);
        QCOMPARE(selected.first().data(Model::KeyRole), QVariant("c-printer"));
    }
};

HOST_TEST_MAIN(TestPluginListOperations)
#include "tst_pluginlistoperations.moc"
