// The plugin's operations on its communication list: the model and delegate it hands the host, expansion
// and activation, restoring the selection, the empty-list widget and hiding an entry from end to end.
#include "HostTestMain.h"

#include "CCommunicationObjectModel.h"
#include "CNewsReaderPlugin.h"
#include "CPluginItemDelegate.h"
#include "CReadNewsEntryRequest.h"
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
        {newsEntry(QStringLiteral("n-important"), QStringLiteral("important"), QStringLiteral("Maintenance"),
                   true),
         newsEntry(QStringLiteral("n-offer"), QStringLiteral("offer"), QStringLiteral("Spring offer")),
         newsEntry(QStringLiteral("n-offer-2"), QStringLiteral("offer"), QStringLiteral("Summer offer"), true,
                   {{QStringLiteral("published"), QStringLiteral("-1d")}})},
        {conversation(QStringLiteral("c-printer"), QStringLiteral("Printer blocked"))});
}

QStringList eventKeys(const QString& kind)
{
    QStringList keys;
    for (const HostControl::Event& event : HostControl::events(kind))
        keys << event.details.value(QStringLiteral("key")).toString();
    return keys;
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

    void handsTheHostItsModelAndDelegate()
    {
        CNewsReaderPlugin plugin;
        const std::shared_ptr<QAbstractItemModel> model = plugin.getPluginModel();
        QVERIFY(qobject_cast<Model*>(model.get()));
        QCOMPARE(plugin.getPluginModel(), model);
        // Built in the constructor.
        QCOMPARE(model->rowCount(), 3);
        QVERIFY(qobject_cast<CPluginItemDelegate*>(plugin.getPluginItemDelegate()));
    }

    void expansionReportsReachTheModel()
    {
        CNewsReaderPlugin plugin;
        Model* model = modelOf(plugin);
        const QModelIndex issues = model->indexForKey(QStringLiteral("folder-3"));
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

        plugin.onPluginItemActivated(model->indexForKey(QStringLiteral("n-offer")));
        QVERIFY(HostControl::events().isEmpty());

        const QModelIndex offers = model->indexForKey(QStringLiteral("folder-1"));
        QVERIFY(offers.data(Model::ExpandedRole).toBool());
        plugin.onPluginItemActivated(offers);
        QCOMPARE(eventKeys(QStringLiteral("collapse")), QStringList{"folder-1"});
        QVERIFY(HostControl::events(QStringLiteral("select")).isEmpty());

        HostControl::clearEvents();
        const QModelIndex issues = model->indexForKey(QStringLiteral("folder-3"));
        QVERIFY(!issues.data(Model::ExpandedRole).toBool());
        plugin.onPluginItemActivated(issues);
        QCOMPARE(eventKeys(QStringLiteral("expand")), QStringList{"folder-3"});
        QCOMPARE(eventKeys(QStringLiteral("select")), QStringList{"c-printer"});
        QCOMPARE(HostControl::events(QStringLiteral("select"))
                     .first()
                     .details.value(QStringLiteral("flags"))
                     .toInt(),
                 kClearSelectRows);
        QVERIFY(HostControl::events(QStringLiteral("collapse")).isEmpty());
    }

    void restoringTheSelectionReopensFoldersAndEditors()
    {
        CNewsReaderPlugin plugin;
        HostControl::recordPluginRequests(&plugin);
        plugin.restoreSelection();
        // Expanded: "Important messages" (folder 0) and "Offers" (unread). Editors: every entry of a folder
        // with a non-zero number. Nothing selected yet: the first entry of the first folder.
        QCOMPARE(eventKeys(QStringLiteral("expand")), (QStringList{"folder-0", "folder-1", "folder-0"}));
        QCOMPARE(eventKeys(QStringLiteral("editor")), (QStringList{"n-offer", "n-offer-2", "c-printer"}));
        QCOMPARE(eventKeys(QStringLiteral("select")), QStringList{"n-important"});

        HostControl::clearEvents();
        plugin.setCurrentIndex(modelOf(plugin)->indexForKey(QStringLiteral("c-printer")));
        plugin.restoreSelection();
        QCOMPARE(eventKeys(QStringLiteral("select")), QStringList{"c-printer"});
        QCOMPARE(HostControl::events(QStringLiteral("select"))
                     .first()
                     .details.value(QStringLiteral("flags"))
                     .toInt(),
                 kClearSelectRows);
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
        QCOMPARE(eventKeys(QStringLiteral("expand")), QStringList{"folder-1"});
        QCOMPARE(eventKeys(QStringLiteral("select")), QStringList{"n-offer-2"});
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
        QVERIFY(HostControl::events(QStringLiteral("select")).isEmpty());
        HostControl::addConversation(conversation(QStringLiteral("c-new"), QStringLiteral("Fresh question")));
        QTRY_VERIFY(eventKeys(QStringLiteral("select")).contains(QStringLiteral("c-new")));
    }

    void hidingAnEntryRemovesItOnceTheFetcherReports()
    {
        CNewsReaderPlugin plugin;
        HostTree tree(plugin);
        tree.show();
        plugin.setIsSelected(true);
        plugin.restoreSelection();
        QVERIFY(QTest::qWaitForWindowExposed(&tree));
        Model* model = modelOf(plugin);

        const QModelIndex offer = model->indexForKey(QStringLiteral("n-offer"));
        auto* button = qobject_cast<QToolButton*>(tree.indexWidget(offer));
        QVERIFY(button);
        QVERIFY(button->isVisible());
        // Important entries have no button.
        QVERIFY(!tree.indexWidget(model->indexForKey(QStringLiteral("n-important"))));

        QTest::mouseClick(button, Qt::LeftButton);
        QTRY_VERIFY(HostControl::isNewsEntryHidden(QStringLiteral("n-offer")));
        QTRY_VERIFY(!model->indexForKey(QStringLiteral("n-offer")).isValid());
        QCOMPARE(model->rowCount(model->indexForKey(QStringLiteral("folder-1"))), 1);
        QVERIFY(!HostControl::isNewsEntryHidden(QStringLiteral("n-offer-2")));
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
        tree.selectionModel()->setCurrentIndex(model->indexForKey(QStringLiteral("c-printer")),
                                               QItemSelectionModel::ClearAndSelect |
                                                   QItemSelectionModel::Rows);
        plugin.setCurrentIndex(tree.currentIndex());

        HostControl::addNewsEntry(newsEntry(QStringLiteral("n-urgent"), QStringLiteral("important"),
                                            QStringLiteral("Urgent"), false,
                                            {{QStringLiteral("published"), QStringLiteral("+1m")}}));
        QTRY_VERIFY(model->indexForKey(QStringLiteral("n-urgent")).isValid());
        QCOMPARE(tree.currentIndex().data(Model::KeyRole), QVariant(QStringLiteral("c-printer")));
        QCOMPARE(tree.selectionModel()->selectedRows().size(), 1);
        QCOMPARE(tree.selectionModel()->selectedRows().first().data(Model::KeyRole),
                 QVariant(QStringLiteral("c-printer")));
    }
};

HOST_TEST_MAIN(TestPluginListOperations)
#include "tst_pluginlistoperations.moc"
