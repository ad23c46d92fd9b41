// The communication list against the stand-in host's news fetcher and simulated server: the folders a user
// sees, what a row tells the views, rebuilds that keep what the views hold, the draft keepers (when drafts
// are saved, replaced and deleted, and a send that overtakes a draft being created), and the plugin's
// operations on the list as the host's tree sees them: expansion and activation, restoring the selection,
// entries asked for by the host, and hiding an entry from end to end.
#include "HostTestMain.h"

#include "CCommunicationObjectModel.h"
#include "CNewsFetcher.h"
#include "CNewsReaderPlugin.h"
#include "CReadNewsEntryRequest.h"
#include "DraftMessageItem.h"
#include "QtHelpersImages.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QContextMenuEvent>
#include <QJsonArray>
#include <QJsonDocument>
#include <QMenu>
#include <QSignalSpy>
#include <QToolButton>
#include <QTreeView>

using Model = CCommunicationObjectModel;
using Tester = QAbstractItemModelTester;

namespace {

// A news entry ("important" or "offer") with fixed texts, so that renderings stay stable.
QJsonObject newsEntry(const QString& id, const QString& kind, const QString& title, bool read = false,
                      QJsonObject extra = {})
{
    const QJsonObject fixed{{"id", id},
                            {"kind", kind},
                            {"title", title},
                            {"read", read},
                            {"dateText", "12.06.2024"},
                            {"subtitle", QString("About " + title)}};
    for (auto it = fixed.begin(); it != fixed.end(); ++it)
        extra.insert(it.key(), it.value());
    return extra;
}

QJsonObject conversation(const QString& id, const QString& subject, QJsonObject extra = {})
{
    extra.insert("id", id);
    extra.insert("subject", subject);
    extra.insert("firstMessage", "Hello");
    return extra;
}

const auto kAll = CNewsFetcher::FilterImportant | CNewsFetcher::FilterOffers | CNewsFetcher::FilterIssues;

// The fetcher's shared entry with this id, news or conversation.
std::shared_ptr<Messenger::MessageEntry> fetcherEntry(const QString& id)
{
    for (const auto& entry : vantrelApp->getNewsFetcher()->getNewsList(kAll)) {
        if (entry->id == id)
            return entry;
    }
    return nullptr;
}

// Replaces the server's data (in the scenario format) and waits until the fetcher lists all of it.
bool loadScenario(const QJsonArray& news, const QJsonArray& conversations = {})
{
    QString error;
    if (!HostControl::loadScenarioJson(
            QJsonDocument(QJsonObject{{"news", news}, {"conversations", conversations}}).toJson(), "test",
            &error))
        return false;
    const auto fetcher = vantrelApp->getNewsFetcher();
    QSignalSpy refreshed(fetcher.get(), &CNewsFetcher::newsChanged);
    fetcher->startFetchAll();
    return QTest::qWaitFor([&] {
        return !refreshed.isEmpty() &&
               fetcher->getNewsList(kAll).size() == size_t(news.size() + conversations.size());
    });
}

// One entry in each folder: "Important messages", "Offers", "Offers history" and "Issues".
bool loadOneOfEach(bool read = false)
{
    return loadScenario({newsEntry("n-important", "important", "Maintenance", read),
                         newsEntry("n-offer", "offer", "Spring offer", read),
                         newsEntry("n-old", "offer", "Winter offer", read, {{"expires", "-1d"}})},
                        {conversation("c-printer", "Printer blocked", {{"read", read}})});
}

QVariantList rolesOf(const QModelIndex& index, const QList<int>& roles)
{
    QVariantList values;
    for (int role : roles)
        values << index.data(role);
    return values;
}

const QString kConversation = QStringLiteral("c-draft");

QStringList draftVerbs()
{
    QStringList verbs;
    for (const HostControl::Request& request : HostControl::requestLog()) {
        if (request.path.contains("/communications") || request.path == "/entities")
            verbs << QString::fromLatin1(request.verb);
    }
    return verbs;
}

QString savedDraftText()
{
    const QList<QJsonObject> drafts = HostControl::drafts(kConversation);
    return drafts.size() == 1 ? drafts.first().value("text").toString() : QString();
}

QString lastThreadMessage()
{
    const QList<QJsonObject> messages = HostControl::threadMessages(kConversation);
    return messages.isEmpty() ? QString() : messages.last().value("text").toString();
}

bool loadConversation()
{
    const bool loaded = loadScenario({}, {conversation(kConversation, "Printer")});
    HostControl::clearRequestLog();
    return loaded;
}

QStringList eventKeys(const QString& kind)
{
    QStringList keys;
    for (const HostControl::Event& event : HostControl::events(kind))
        keys << event.details.value("key").toString();
    return keys;
}

// The plugin, recorded by the host, with a tree that shows its model and follows its requests.
bool loadListScenario()
{
    return loadScenario({newsEntry("n-important", "important", "Maintenance", true),
                         newsEntry("n-offer", "offer", "Spring offer"),
                         newsEntry("n-offer-2", "offer", "Summer offer", true, {{"published", "-1d"}})},
                        {conversation("c-printer", "Printer blocked")});
}

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

class TestCommunicationList : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        HostControl::resetSwitches();
        HostControl::setWindowsPE(false);
        HostControl::removeSetting("UIShowNews");
        HostControl::setHoldRequests(false);
        HostControl::clearServer();
        HostControl::clearRequestLog();
        HostControl::clearEvents();
    }

    void foldersFollowTheSwitches_data()
    {
        QTest::addColumn<bool>("windowsPE");
        QTest::addColumn<QVariant>("showNews");
        QTest::addColumn<QList<int>>("folderIds");
        QTest::newRow("default") << false << QVariant() << QList<int>{0, 1, 2, 3};
        QTest::newRow("news switched off") << false << QVariant(false) << QList<int>{0, 3};
        QTest::newRow("pre-installation") << true << QVariant() << QList<int>{3};
    }

    void foldersFollowTheSwitches()
    {
        QFETCH(bool, windowsPE);
        QFETCH(QVariant, showNews);
        QFETCH(QList<int>, folderIds);
        const QStringList names{"Important messages", "Offers", "Offers history", "Issues"};
        QVERIFY(loadOneOfEach());
        HostControl::setWindowsPE(windowsPE);
        if (showNews.isValid())
            HostControl::setSetting("UIShowNews", showNews);
        Model model;
        Tester tester(&model, Tester::FailureReportingMode::QtTest);
        model.populate();
        QCOMPARE(model.rowCount(), folderIds.size());
        for (int row = 0; row < model.rowCount(); ++row) {
            const int id = folderIds.at(row);
            QCOMPARE(rolesOf(model.index(row, 0), {Qt::DisplayRole, Model::FolderIdRole, Model::KeyRole}),
                     (QVariantList{names.at(id), id, QStringLiteral("folder-%1").arg(id)}));
            QCOMPARE(model.rowCount(model.index(row, 0)), 1);
        }
    }

    void rowsTellTheirEntry()
    {
        QVERIFY(loadScenario({newsEntry("n-important", "important", "Maintenance", false, {{"pinned", true}}),
                              newsEntry("n-offer", "offer", "Offer", true)},
                             {conversation("c-printer", "Printer blocked",
                                           {{"draft", QJsonObject{{"text", "Half a reply"}}}})}));
        Model model;
        model.populate();
        const QModelIndex news = model.indexForKey("n-important");
        QCOMPARE(rolesOf(news, {Qt::DisplayRole, Qt::ToolTipRole, Model::DateTextRole, Model::ImportantRole,
                                Model::ReadRole, Model::FlagBit1Role, Model::HasDefaultThreadRole}),
                 (QVariantList{"Maintenance", "Maintenance - About Maintenance\n12.06.2024", "12.06.2024", 1,
                               0, 1, false}));
        const QModelIndex talk = model.indexForKey("c-printer");
        QCOMPARE(rolesOf(talk, {Model::ConversationRole, Model::HasDefaultThreadRole, Model::DraftTextRole}),
                 (QVariantList{1, true, "Half a reply"}));
        QVERIFY(talk.data().toString().startsWith("Printer blocked - "));
        const auto icon = [](const QVariant& value) {
            return qvariant_cast<QIcon>(value).pixmap(32).toImage();
        };
        QCOMPARE(icon(news.data(Qt::DecorationRole)), icon(qtHelpers::images::icon("ico-attention-unread")));
        QCOMPARE(icon(model.indexForKey("n-offer").data(Qt::DecorationRole)),
                 icon(qtHelpers::images::icon("ico-offers-read")));

        // Only plain offers and folders can be hidden (edited).
        QVERIFY(!(model.flags(news) & Qt::ItemIsEditable));
        QVERIFY(!(model.flags(talk) & Qt::ItemIsEditable));
        QVERIFY(model.flags(model.indexForKey("n-offer")) & Qt::ItemIsEditable);
    }

    void rebuildsKeepIndexesAndExpansion()
    {
        QVERIFY(loadScenario({newsEntry("n-important", "important", "Read news", true),
                              newsEntry("n-offer", "offer", "Unread offer"),
                              newsEntry("n-old", "offer", "Winter offer", true, {{"expires", "-1d"}})},
                             {conversation("c-1", "Question")}));
        Model model;
        Tester tester(&model, Tester::FailureReportingMode::QtTest);
        model.populate();
        const auto expanded = [&model](const QString& key) {
            return model.indexForKey(key).data(Model::ExpandedRole).toBool();
        };
        // New folders: unread ones open, otherwise only "Important messages".
        QVERIFY(expanded("folder-0") && expanded("folder-1") && !expanded("folder-3"));
        QVERIFY(model.setData(model.indexForKey("folder-0"), false, Model::ExpandedRole));
        QVERIFY(model.setData(model.indexForKey("folder-1"), false, Model::ExpandedRole));
        QVERIFY(model.setData(model.indexForKey("folder-3"), true, Model::ExpandedRole));

        const QPersistentModelIndex offer = model.indexForKey("n-offer");
        const QPersistentModelIndex old = model.indexForKey("n-old");
        // A newer offer comes first; the old offer leaves and its emptied history folder goes with it.
        HostControl::addNewsEntry(
            newsEntry("n-newer", "offer", "Summer offer", true, {{"published", "+1m"}}));
        HostControl::removeNewsEntry("n-old");
        QTRY_VERIFY(model.indexForKey("n-newer").isValid() && !model.indexForKey("n-old").isValid());
        QCOMPARE(offer.data(Model::KeyRole), QVariant("n-offer"));
        QCOMPARE(offer.row(), 1);
        QVERIFY(!old.isValid());
        QCOMPARE(model.indexForKey("folder-3").row(), 2);
        // What the user chose stands, except that a folder with unread entries opens again.
        QVERIFY(!expanded("folder-0") && expanded("folder-1") && expanded("folder-3"));
    }

    void draftKeepersSurviveRebuildsAndLeaveWithTheirEntry()
    {
        QVERIFY(loadOneOfEach());
        Model model;
        model.populate();
        QPointer<DraftMessageItem> keeper = model.draftKeeper("c-printer");
        QVERIFY(keeper);
        model.setDraftText(model.indexForKey("c-printer"), "Written before the refresh");
        QCOMPARE(model.indexForKey("c-printer").data(Model::DraftBusyRole), QVariant(true));
        // The list is rebuilt while the save is still due: the same keeper saves the text.
        HostControl::emitNewsChanged();
        QTRY_COMPARE(HostControl::drafts("c-printer").size(), 1);
        QCOMPARE(model.draftKeeper("c-printer"), keeper.data());
        QTRY_COMPARE(model.indexForKey("c-printer").data(Model::DraftBusyRole), QVariant(false));
        QPointer<DraftMessageItem> offerKeeper = model.draftKeeper("n-offer");
        HostControl::removeNewsEntry("n-offer");
        QTRY_VERIFY(!offerKeeper);
        QVERIFY(keeper);
    }

    void aBurstOfTypingIsSavedOnceReplacedLaterAndDeletedWhenCleared()
    {
        QVERIFY(loadConversation());
        auto entry = fetcherEntry(kConversation);
        DraftMessageItem keeper(nullptr, entry);
        HostControl::setHoldRequests(true);
        keeper.setDraftText("f");
        keeper.setDraftText("first");
        QVERIFY(keeper.isBusy());
        QTRY_COMPARE(HostControl::pendingRequests().size(), 1);
        // The next save falls due while the first is still in flight: it waits and replaces the draft.
        keeper.setDraftText("first and more");
        QTest::qWait(DraftMessageItem::kSaveDelayMs + 300);
        HostControl::setHoldRequests(false);
        HostControl::releaseAllRequests();
        QTRY_COMPARE_WITH_TIMEOUT(savedDraftText(), "first and more", 6000);
        QTRY_VERIFY(!keeper.isBusy());
        QCOMPARE(draftVerbs(), (QStringList{"POST", "PUT"}));
        QCOMPARE(DraftMessageItem::entityFrom(entry->draftEntity).id,
                 HostControl::drafts(kConversation).first().value("id").toString());
        // Clearing the text deletes the draft.
        keeper.setDraftText(QString());
        QTRY_VERIFY(HostControl::drafts(kConversation).isEmpty());
        QCOMPARE(draftVerbs(), (QStringList{"POST", "PUT", "DELETE"}));
        QTRY_VERIFY(!entry->draftEntity.isValid());
    }

    void aSendThatOvertakesACreatedDraftDiscardsIt()
    {
        QVERIFY(loadConversation());
        auto entry = fetcherEntry(kConversation);
        DraftMessageItem keeper(nullptr, entry);
        HostControl::setHoldRequests(true);
        keeper.setDraftText("Quick");
        QTRY_COMPARE(HostControl::pendingRequests().size(), 1);
        const int draftCreation = HostControl::pendingRequests().first().id;
        QVERIFY(keeper.sendDraft({}));
        QVERIFY(keeper.isDiscarding());
        QTRY_COMPARE(HostControl::pendingRequests().size(), 2);
        // The draft is created after the send started: the keeper deletes it at once and keeps nothing.
        QVERIFY(HostControl::releaseRequest(draftCreation));
        HostControl::setHoldRequests(false);
        HostControl::releaseAllRequests();
        QTRY_VERIFY(HostControl::drafts(kConversation).isEmpty() && !lastThreadMessage().isEmpty());
        QTRY_COMPARE(draftVerbs().last(), "DELETE");
        QVERIFY(!entry->draftEntity.isValid());
        QCOMPARE(lastThreadMessage(), "Quick");
    }

    void activatingAFolderTogglesIt()
    {
        QVERIFY(loadListScenario());
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
        QVERIFY(loadListScenario());
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
        QVERIFY(loadListScenario());
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
        HostControl::addConversation(conversation("c-new", "Fresh question"));
        QTRY_VERIFY(eventKeys("select").contains("c-new"));
    }

    void entriesAreHiddenByMouseAndKeyboard()
    {
        QVERIFY(loadListScenario());
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
        // The hide button removes its row and leaves the selection where it is.
        auto* button =
            qobject_cast<QToolButton*>(screen.tree.indexWidget(screen.model->indexForKey("n-offer")));
        QVERIFY(button && button->isVisible());
        QTest::mouseClick(button, Qt::LeftButton);
        QTRY_VERIFY(HostControl::isNewsEntryHidden("n-offer"));
        QTRY_VERIFY(!screen.model->indexForKey("n-offer").isValid());
        QVERIFY(!HostControl::isNewsEntryHidden("n-offer-2"));
        QCOMPARE(screen.tree.currentIndex().data(Model::KeyRole), QVariant("c-printer"));

        // Delete does nothing on a row that cannot be hidden, and hides one that can.
        screen.tree.setCurrentIndex(screen.model->indexForKey("n-important"));
        QTest::keyClick(&screen.tree, Qt::Key_Delete);
        screen.tree.setCurrentIndex(screen.model->indexForKey("n-offer-2"));
        QTest::keyClick(&screen.tree, Qt::Key_Delete);
        QTRY_VERIFY(HostControl::isNewsEntryHidden("n-offer-2"));
        QVERIFY(!HostControl::isNewsEntryHidden("n-important"));

        // The Menu key opens the current row's menu; its one action hides the row.
        screen.tree.setCurrentIndex(screen.model->indexForKey("c-printer"));
        QContextMenuEvent menuKey(QContextMenuEvent::Keyboard, QPoint(), QPoint());
        QApplication::sendEvent(&screen.tree, &menuKey);
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        QVERIFY(menu);
        QCOMPARE(menu->actions().size(), 1);
        QCOMPARE(menu->actions().first()->text(), QStringLiteral("Hide"));
        menu->actions().first()->trigger();
        QTRY_VERIFY(HostControl::isNewsEntryHidden("c-printer"));
    }
};

HOST_TEST_MAIN(TestCommunicationList)
#include "tst_communicationlist.moc"
