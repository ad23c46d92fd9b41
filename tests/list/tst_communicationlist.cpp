// The communication list against the stand-in host's news fetcher and simulated server: the folders a user
// sees, what a row tells the views, rebuilds that keep what the views hold, the draft keepers (when drafts
// are saved, replaced and deleted, and a send that overtakes a draft being created), the plugin's operations
// on the list as the host's tree sees them (expansion and activation, restoring the selection, entries asked
// for by the host, hiding an entry from end to end), and how the delegates paint and size rows: a sheet of
// every row state compared with the stored rendering in data/ (within a small tolerance for font
// rasterisation; with NEWSREADER_UPDATE_RENDERINGS set it is rewritten instead), the hide button, and the
// news delegate created by its registered name.
#include "HostTestMain.h"

#include "CCommunicationObjectModel.h"
#include "CNewsFetcher.h"
#include "CNewsItemDelegate.h"
#include "CNewsReaderPlugin.h"
#include "CPluginItemDelegate.h"
#include "CReadNewsEntryRequest.h"
#include "DraftMessageItem.h"
#include "QtHelpersImages.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QContextMenuEvent>
#include <QJsonArray>
#include <QJsonDocument>
#include <QMenu>
#include <QPainter>
#include <QSignalSpy>
#include <QStandardItemModel>
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

using Model = CCommunicationObjectModel;

namespace {

constexpr int kRowWidth = 320;
constexpr int kEntryHeight = 58;
const QString kStoredSheet = QStringLiteral(NEWSREADER_TEST_DATA_DIR "/list-row-states.png");

QStandardItem* entryItem(const QString& title, bool read = false, bool important = false, bool pinned = false,
                         const QString& icon = {})
{
    auto* item = new QStandardItem(title);
    QPixmap black(CPluginItemDelegate::kIconSize, CPluginItemDelegate::kIconSize);
    black.fill(Qt::black);
    item->setData(icon.isEmpty() ? QIcon(black) : qtHelpers::images::icon(icon), Qt::DecorationRole);
    item->setData("12.06.2024", Model::DateTextRole);
    item->setData(int(read), Model::ReadRole);
    item->setData(int(important), Model::ImportantRole);
    item->setData(int(pinned), Model::FlagBit1Role);
    return item;
}

QStandardItem* folderItem(const QString& name, bool expanded)
{
    auto* item = new QStandardItem(name);
    item->setData(true, Model::IsFolderRole);
    item->setData(expanded, Model::ExpandedRole);
    return item;
}

QStyleOptionViewItem rowOption(int height, int state = QStyle::State_Enabled)
{
    QStyleOptionViewItem option;
    option.rect = QRect(0, 0, kRowWidth, height);
    option.state = QStyle::State(state);
    option.font = QFont("DejaVu Sans");
    return option;
}

// Every row state the list shows, one below the other, with the hide buttons where the view puts them.
QImage renderStateSheet()
{
    const int plain = QStyle::State_Enabled;
    const int hovered = plain | QStyle::State_MouseOver;
    QStandardItemModel model;
    const QList<std::pair<QStandardItem*, int>> rows{
        {folderItem("Important messages", true), plain},
        {folderItem("Offers (collapsed, hovered)", false), hovered},
        {entryItem("Unread important news", false, true, false, "ico-attention-unread"), plain},
        {entryItem("Unread offer with a title too long to fit", false, false, false, "ico-offers-unread"),
         plain},
        {entryItem("Read offer", true, false, false, "ico-offers-read"), plain},
        {entryItem("Read offer, selected", true, false, false, "ico-offers-read"),
         plain | QStyle::State_Selected},
        {entryItem("Read offer, hovered", true, false, false, "ico-offers-read"), hovered},
        {entryItem("Pinned offer (faded)", false, false, true, "ico-offers-unread"), plain},
        {entryItem("Unread offer with focus", false, false, false, "ico-offers-unread"),
         plain | QStyle::State_HasFocus}};
    CPluginItemDelegate delegate;
    QStyleOptionViewItem option = rowOption(0);
    int height = 0;
    for (const auto& row : rows) {
        model.appendRow(row.first);
        height += delegate.sizeHint(option, row.first->index()).height();
    }
    QImage sheet(kRowWidth, height, QImage::Format_ARGB32_Premultiplied);
    sheet.fill(QColor("#f4f5f7"));
    QPainter painter(&sheet);
    for (int row = 0, top = 0; row < model.rowCount(); ++row, top += option.rect.height()) {
        const QModelIndex index = model.index(row, 0);
        option.rect = QRect(QPoint(0, top), delegate.sizeHint(option, index));
        option.state = QStyle::State(rows.at(row).second);
        delegate.paint(&painter, option, index);
        if (std::unique_ptr<QWidget> editor{delegate.createEditor(nullptr, option, index)}) {
            delegate.updateEditorGeometry(editor.get(), option, index);
            editor->resize(editor->geometry().size());
            editor->render(&painter, editor->geometry().topLeft(), QRegion(), QWidget::DrawChildren);
        }
    }
    return sheet;
}

// The share of pixels of which a channel differs by more than anti-aliasing of glyphs across font builds
// does.
double differentShare(const QImage& a, const QImage& b)
{
    const QImage left = a.convertToFormat(QImage::Format_ARGB32);
    const QImage right = b.convertToFormat(QImage::Format_ARGB32);
    qint64 different = 0;
    for (int y = 0; y < left.height(); ++y) {
        for (int x = 0; x < left.width(); ++x) {
            const QRgb p = left.pixel(x, y), q = right.pixel(x, y);
            different += qAbs(qRed(p) - qRed(q)) > 24 || qAbs(qGreen(p) - qGreen(q)) > 24 ||
                         qAbs(qBlue(p) - qBlue(q)) > 24;
        }
    }
    return double(different) / double(left.width() * left.height());
}

// The columns and rows of `image` that hold anything but white.
QRect inkIn(const QImage& image, const QRect& area)
{
    QRect ink;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            if (image.pixel(x, y) != qRgb(255, 255, 255))
                ink |= QRect(x, y, 1, 1);
        }
    }
    return ink;
}

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

    void rowStatesMatchTheStoredRendering()
    {
        const QImage sheet = renderStateSheet();
        if (qEnvironmentVariableIsSet("NEWSREADER_UPDATE_RENDERINGS")) {
            QVERIFY(sheet.save(kStoredSheet));
            QSKIP("Stored rendering rewritten");
        }
        const QImage stored(kStoredSheet);
        QCOMPARE(sheet.size(), stored.size());
        const double share = differentShare(sheet, stored);
        QVERIFY2(share < 0.01, qPrintable(QStringLiteral("%1 of the pixels differ").arg(share)));
    }

    void hideButtonSitsAtTheRightAndNamesItsRow()
    {
        QStandardItemModel model;
        model.appendRow(entryItem("First"));
        model.appendRow(entryItem("Second"));
        model.appendRow(entryItem("Important", false, true));
        CPluginItemDelegate delegate;
        QSignalSpy requests(&delegate, &CPluginItemDelegate::hideMessageRequest);
        QWidget parent;
        QStyleOptionViewItem option = rowOption(kEntryHeight);
        const auto button = [&](int row) {
            return qobject_cast<QToolButton*>(delegate.createEditor(&parent, option, model.index(row, 0)));
        };
        QToolButton* first = button(0);
        QToolButton* second = button(1);
        QVERIFY(first && second && !button(2));
        QCOMPARE(first->toolTip(), "Click to hide this message");
        QCOMPARE(first->focusPolicy(), Qt::NoFocus);
        option.rect.moveTop(100);
        delegate.updateEditorGeometry(first, option, model.index(0, 0));
        QCOMPARE(first->geometry(), QRect(284, 117, 24, 24));

        // After the rows move, a button still names its own entry; a vanished row asks for nothing.
        model.insertRow(0, entryItem("New"));
        first->click();
        QCOMPARE(requests.size(), 1);
        QCOMPARE(requests.last().first().value<QModelIndex>().data().toString(), "First");
        model.removeRow(2);
        second->click();
        QCOMPARE(requests.size(), 1);
    }

    void sizeAndLayoutFollowTheIconAndTheSecondLine_data()
    {
        QTest::addColumn<bool>("withIcon");
        QTest::addColumn<QVariant>("secondLine");
        QTest::addColumn<int>("extraWidth");
        QTest::addColumn<int>("titleLeft");
        QTest::newRow("icon") << true << QVariant(1) << 66 << 54;
        QTest::newRow("no icon, no second line") << false << QVariant() << 24 << 12;
    }

    void sizeAndLayoutFollowTheIconAndTheSecondLine()
    {
        QFETCH(bool, withIcon);
        QFETCH(QVariant, secondLine);
        QFETCH(int, extraWidth);
        QFETCH(int, titleLeft);
        const QMetaType type = QMetaType::fromName("CNewsItemDelegate");
        std::unique_ptr<CNewsItemDelegate> delegate(static_cast<CNewsItemDelegate*>(type.create()));
        QVERIFY(delegate);
        QStandardItemModel model;
        auto* item = new QStandardItem("Spring offer");
        QPixmap icon(32, 32);
        icon.fill(Qt::darkGreen);
        item->setData(withIcon ? QIcon(icon) : QIcon(), Qt::DecorationRole);
        item->setData(secondLine, Qt::UserRole + 5);
        model.appendRow(item);
        QStyleOptionViewItem option;
        option.rect = QRect(0, 0, 320, 64);
        option.font = QFont("DejaVu Sans");
        option.font.setBold(true);
        // Measured at 11 points and regular weight, whatever the view's font.
        QFont measured(option.font);
        measured.setPointSize(11);
        measured.setWeight(QFont::Normal);
        const int advance = QFontMetrics(measured).horizontalAdvance("Spring offer");
        QCOMPARE(delegate->sizeHint(option, item->index()), QSize(advance + extraWidth, 64));

        QImage row(option.rect.size(), QImage::Format_RGB32);
        row.fill(Qt::white);
        {
            QPainter painter(&row);
            delegate->paint(&painter, option, item->index());
        }
        // The icon at the left, centred; the title above the middle; the second line below it.
        QCOMPARE(row.pixelColor(12, 16) == QColor(Qt::darkGreen), withIcon);
        QCOMPARE(row.pixelColor(12, 15) == QColor(Qt::darkGreen), false);
        const QRect title = inkIn(row, QRect(titleLeft - 4, 0, 200, 32));
        QVERIFY(qAbs(title.left() - titleLeft) <= 2);
        QCOMPARE(inkIn(row, QRect(titleLeft - 4, 33, 200, 31)).isValid(), secondLine.isValid());
    }
};

HOST_TEST_MAIN(TestCommunicationList)
#include "tst_communicationlist.moc"
