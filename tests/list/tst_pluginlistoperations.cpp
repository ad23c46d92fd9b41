// The plugin's operations on its communication list as the host's tree sees them: expansion and
// activation, restoring the selection, entries asked for by the host, and hiding an entry from end to end.
#include "HostTestMain.h"

#include "CCommunicationObjectModel.h"
#include "CNewsReaderPlugin.h"
#include "CReadNewsEntryRequest.h"
#include "ListTestSupport.h"

#include <QToolButton>
#include <QTreeView>

using listTest::newsEntry;
using Model = CCommunicationObjectModel;

namespace {

QStringList eventKeys(const QString& kind)
{
    QStringList keys;
    for (const HostControl::Event& event : HostControl::events(kind))
        keys << event.details.value("key").toString();
    return keys;
}

// The plugin, recorded by the host, with a tree that shows its model and follows its requests.
struct ListScreen
{
    CNewsReaderPlugin plugin;
    QTreeView tree;
    Model* model = static_cast<Model*>(plugin.getPluginModel().get());

    ListScreen()
    {
        HostControl::recordPluginRequests(&plugin);
        tree.setModel(model);
        tree.setItemDelegate(plugin.getPluginItemDelegate());
        tree.setHeaderHidden(true);
        tree.resize(340, 500);
        QObject::connect(&plugin, &CAbstractKolPlugin::listItemExpandRequest, &tree, &QTreeView::expand);
        QObject::connect(&plugin, &CAbstractKolPlugin::listItemEditorRequest, &tree,
                         [this](const QModelIndex& index) { tree.openPersistentEditor(index); });
        QObject::connect(&plugin, &CAbstractKolPlugin::listItemSelectionRequest, &tree,
                         [this](const QModelIndex& index, QItemSelectionModel::SelectionFlags flags) {
                             tree.selectionModel()->setCurrentIndex(index, flags);
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
        HostControl::removeSetting("UIShowNews");
        HostControl::clearServer();
        QVERIFY(listTest::loadScenario(
            {newsEntry("n-important", "important", "Maintenance", true),
             newsEntry("n-offer", "offer", "Spring offer"),
             newsEntry("n-offer-2", "offer", "Summer offer", true, {{"published", "-1d"}})},
            {listTest::conversation("c-printer", "Printer blocked")}));
        HostControl::clearEvents();
    }

    void activatingAFolderTogglesIt()
    {
        ListScreen screen;
        const QModelIndex offers = screen.model->indexForKey("folder-1");
        screen.plugin.onPluginItemActivated(offers);
        QCOMPARE(eventKeys("collapse"), QStringList{"folder-1"});
        screen.plugin.onListItemCollapsed(offers);
        QCOMPARE(offers.data(Model::ExpandedRole), QVariant(false));

        HostControl::clearEvents();
        screen.plugin.onPluginItemActivated(screen.model->indexForKey("folder-3"));
        QCOMPARE(eventKeys("expand"), QStringList{"folder-3"});
        QCOMPARE(eventKeys("select"), QStringList{"c-printer"});
    }

    void restoringTheSelectionReopensFoldersAndEditors()
    {
        ListScreen screen;
        screen.plugin.restoreSelection();
        // Expanded: "Important messages" and "Offers" (unread); editors on every hideable entry; nothing
        // selected yet: the first entry of the first folder.
        QCOMPARE(eventKeys("expand"), (QStringList{"folder-0", "folder-1", "folder-0"}));
        QCOMPARE(eventKeys("editor"), (QStringList{"n-offer", "n-offer-2", "c-printer"}));
        QCOMPARE(eventKeys("select"), QStringList{"n-important"});
        HostControl::clearEvents();
        screen.plugin.setCurrentIndex(screen.model->indexForKey("c-printer"));
        screen.plugin.restoreSelection();
        QCOMPARE(eventKeys("select"), QStringList{"c-printer"});
    }

    void aRequestedEntryIsSelectedOnceListed()
    {
        ListScreen screen;
        QEvent other(QEvent::User);
        other.ignore();
        QVERIFY(!vantrelApp->postApplicationEvent(&other));
        CReadNewsEntryRequest known("n-offer-2", 0);
        QVERIFY(vantrelApp->postApplicationEvent(&known));
        QVERIFY(screen.plugin.isSelected());
        QCOMPARE(HostControl::events("selectPage").size(), 1);
        QCOMPARE(eventKeys("expand"), QStringList{"folder-1"});
        QCOMPARE(eventKeys("select"), QStringList{"n-offer-2"});
        // An entry not listed yet: the conversations are fetched again, and it is selected once it arrives.
        HostControl::clearRequestLog();
        CReadNewsEntryRequest unknown("c-new", 0);
        QVERIFY(vantrelApp->postApplicationEvent(&unknown));
        QTRY_VERIFY(!HostControl::requestLog().isEmpty());
        HostControl::addConversation(listTest::conversation("c-new", "Fresh question"));
        QTRY_VERIFY(eventKeys("select").contains("c-new"));
    }

    void hidingAnEntryRemovesItAndKeepsTheSelection()
    {
        ListScreen screen;
        screen.tree.show();
        screen.plugin.setIsSelected(true);
        screen.plugin.restoreSelection();
        QVERIFY(QTest::qWaitForWindowExposed(&screen.tree));
        screen.tree.expandAll();
        const QModelIndex talk = screen.model->indexForKey("c-printer");
        screen.tree.selectionModel()->setCurrentIndex(talk, QItemSelectionModel::ClearAndSelect);
        screen.plugin.setCurrentIndex(talk);
        QCOMPARE(screen.tree.visualRect(screen.model->indexForKey("folder-0")).height(), 41);
        QVERIFY(!screen.tree.indexWidget(screen.model->indexForKey("n-important")));
        auto* button =
            qobject_cast<QToolButton*>(screen.tree.indexWidget(screen.model->indexForKey("n-offer")));
        QVERIFY(button && button->isVisible());
        QTest::mouseClick(button, Qt::LeftButton);
        QTRY_VERIFY(HostControl::isNewsEntryHidden("n-offer"));
        QTRY_VERIFY(!screen.model->indexForKey("n-offer").isValid());
        QVERIFY(!HostControl::isNewsEntryHidden("n-offer-2"));
        QCOMPARE(screen.tree.currentIndex().data(Model::KeyRole), QVariant("c-printer"));
    }
};

HOST_TEST_MAIN(TestPluginListOperations)
#include "tst_pluginlistoperations.moc"
