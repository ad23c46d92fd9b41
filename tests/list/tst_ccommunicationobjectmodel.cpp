// CCommunicationObjectModel against the stand-in host's news fetcher: folders, roles, flags, writes,
// rebuilds that keep what the views hold, the order of its signals, and input the fetcher should not give.
#include "HostTestMain.h"

#include "CCommunicationObjectModel.h"
#include "ChatServiceApi.h"
#include "DraftMessageItem.h"
#include "EntityDto.h"
#include "ListTestSupport.h"
#include "QtHelpersImages.h"

#include <QAbstractItemModelTester>
#include <QScopeGuard>
#include <QSignalSpy>

using listTest::conversation;
using listTest::fetcherEntry;
using listTest::newsEntry;
using Model = CCommunicationObjectModel;
using Tester = QAbstractItemModelTester;

namespace {

const QString kImportant = QStringLiteral("important");
const QString kOffer = QStringLiteral("offer");

// One entry in each folder: "Important messages", "Offers", "Offers history" and "Issues".
bool loadOneOfEach(bool read = false)
{
    return listTest::loadScenario({newsEntry("n-important", kImportant, "Maintenance", read),
                                   newsEntry("n-offer", kOffer, "Spring offer", read),
                                   newsEntry("n-old", kOffer, "Winter offer", read, {{"expires", "-1d"}})},
                                  {conversation("c-printer", "Printer blocked", {{"read", read}})});
}

QVariantList rolesOf(const QModelIndex& index, const QList<int>& roles)
{
    QVariantList values;
    for (int role : roles)
        values << index.data(role);
    return values;
}

int countIf(const QList<HostControl::Request>& requests, const QString& pathPart)
{
    return int(std::count_if(requests.begin(), requests.end(), [&](const HostControl::Request& request) {
        return request.path.contains(pathPart);
    }));
}

QImage iconImage(const QVariant& icon)
{
    return qvariant_cast<QIcon>(icon).pixmap(32).toImage();
}

QImage namedIcon(const QString& name)
{
    return qtHelpers::images::icon(name).pixmap(32).toImage();
}

} // namespace

class TestCommunicationObjectModel : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<Model> m_model;

    Model& populatedModel()
    {
        m_model = std::make_unique<Model>();
        m_model->populate();
        return *m_model;
    }

private slots:
    void cleanup() { m_model.reset(); }

    void init()
    {
        HostControl::resetSwitches();
        HostControl::setWindowsPE(false);
        HostControl::setNewsFetcherAvailable(true);
        HostControl::removeSetting(QStringLiteral("UIShowNews"));
        HostControl::setHoldRequests(false);
        HostControl::clearServer();
        HostControl::clearRequestLog();
    }

    void foldersFollowTheTableAndTheSwitches_data()
    {
        QTest::addColumn<bool>("windowsPE");
        QTest::addColumn<QVariant>("showNews");
        QTest::addColumn<QList<int>>("folderIds");
        QTest::newRow("default") << false << QVariant() << QList<int>{0, 1, 2, 3};
        QTest::newRow("news switched on") << false << QVariant(true) << QList<int>{0, 1, 2, 3};
        QTest::newRow("news switched off") << false << QVariant(false) << QList<int>{0, 3};
        QTest::newRow("pre-installation") << true << QVariant() << QList<int>{3};
        QTest::newRow("pre-installation, news off") << true << QVariant(false) << QList<int>{3};
    }

    void foldersFollowTheTableAndTheSwitches()
    {
        QFETCH(bool, windowsPE);
        QFETCH(QVariant, showNews);
        QFETCH(QList<int>, folderIds);
        const QStringList allNames{"Important messages", "Offers", "Offers history", "Issues"};
        QVERIFY(loadOneOfEach());
        HostControl::setWindowsPE(windowsPE);
        if (showNews.isValid())
            HostControl::setSetting(QStringLiteral("UIShowNews"), showNews);

        Model model;
        Tester tester(&model, Tester::FailureReportingMode::QtTest);
        model.populate();
        QCOMPARE(model.rowCount(), folderIds.size());
        for (int row = 0; row < model.rowCount(); ++row) {
            const QModelIndex folder = model.index(row, 0);
            const int id = folderIds.at(row);
            QCOMPARE(
                rolesOf(folder, {Qt::DisplayRole, Model::FolderIdRole, Model::KeyRole, Model::IsFolderRole}),
                (QVariantList{allNames.at(id), id, QStringLiteral("folder-%1").arg(id), true}));
            QCOMPARE(model.rowCount(folder), 1);
            QCOMPARE(model.parent(model.index(0, 0, folder)), folder);
        }
    }

    void entryRolesAnswerTheEntryFields()
    {
        QVERIFY(listTest::loadScenario(
            {newsEntry("n-important", kImportant, "Maintenance", false, {{"pinned", true}}),
             newsEntry("n-read", kImportant, "Read", true), newsEntry("n-offer", kOffer, "Offer"),
             newsEntry("n-read-offer", kOffer, "Read offer", true)},
            {conversation("c-printer", "Printer blocked",
                          {{"read", true}, {"draft", QJsonObject{{"text", "Half a reply"}}}})}));
        Model& model = populatedModel();

        const QModelIndex news = model.indexForKey("n-important");
        const auto newsSource = fetcherEntry("n-important");
        QVERIFY(news.isValid() && newsSource);
        QCOMPARE(rolesOf(news, {Qt::DisplayRole, Qt::ToolTipRole, Model::KeyRole, Model::TitleRole,
                                Model::DateTextRole, Model::ExtraTextRole, Model::SubtitleRole}),
                 (QVariantList{"Maintenance", "Maintenance - About Maintenance\n12.06.2024", "n-important",
                               "Maintenance", "12.06.2024", "<p>Maintenance</p>", "About Maintenance"}));
        QCOMPARE(rolesOf(news, {Model::ImportantRole, Model::ReadRole, Model::ConversationRole,
                                Model::FlagBit1Role, Model::StatusRole, Model::FolderIdRole}),
                 (QVariantList{1, 0, 0, 1, 0, 0}));
        QCOMPARE(rolesOf(news, {Model::IsFolderRole, Model::FolderHasUnreadRole, Model::ExpandedRole,
                                Model::DraftBusyRole, Model::HasDefaultThreadRole}),
                 (QVariantList{false, false, false, false, false}));
        QCOMPARE(rolesOf(news, {Model::DraftIdRole, Model::DraftTextRole}),
                 (QVariantList{QString(), QString()}));
        QCOMPARE(rolesOf(news, {Model::FirstTimeRole, Model::SecondTimeRole}),
                 (QVariantList{newsSource->firstTime, newsSource->secondTime}));
        QCOMPARE(news.data(Model::EntityRole).metaType(), QMetaType::fromType<EntityDto::EntityDto>());
        QCOMPARE(DraftMessageItem::entityFrom(news.data(Model::EntityRole)).id,
                 DraftMessageItem::entityFrom(newsSource->entity).id);

        const QModelIndex talk = model.indexForKey("c-printer");
        const auto talkSource = fetcherEntry("c-printer");
        QVERIFY(talk.isValid() && talkSource);
        QVERIFY(!DraftMessageItem::entityFrom(talkSource->draftEntity).id.isEmpty());
        QCOMPARE(rolesOf(talk, {Qt::DisplayRole, Model::ConversationRole, Model::ReadRole,
                                Model::FolderIdRole, Model::StatusRole, Model::HasDefaultThreadRole,
                                Model::DraftTextRole, Model::DraftIdRole}),
                 (QVariantList{QStringLiteral("Printer blocked - %1").arg(talkSource->subtitle), 1, 1, 0,
                               talkSource->status, true, "Half a reply",
                               DraftMessageItem::entityFrom(talkSource->draftEntity).id}));

        // The icon follows importance and read mark.
        const QStringList icons{"ico-attention-unread", "ico-attention-read", "ico-offers-unread",
                                "ico-offers-read"};
        const QStringList keys{"n-important", "n-read", "n-offer", "n-read-offer"};
        for (int i = 0; i < icons.size(); ++i)
            QVERIFY2(iconImage(model.indexForKey(keys.at(i)).data(Qt::DecorationRole)) ==
                         namedIcon(icons.at(i)),
                     qPrintable(icons.at(i)));

        // Anything else answers nothing.
        QVERIFY(!news.data(Qt::EditRole).isValid());
        QVERIFY(!news.data(Model::HasDefaultThreadRole + 1).isValid());
        QVERIFY(!model.data(QModelIndex(), Model::KeyRole).isValid());
    }

    void foldersAnswerEntryRolesAsAnEmptyEntry()
    {
        QVERIFY(loadOneOfEach());
        Model& model = populatedModel();
        const QModelIndex folder = model.index(1, 0);
        QCOMPARE(iconImage(folder.data(Qt::DecorationRole)), namedIcon("ico-offers-unread"));
        QCOMPARE(rolesOf(folder, {Qt::DisplayRole, Qt::ToolTipRole, Model::KeyRole, Model::TitleRole,
                                  Model::DraftIdRole, Model::FirstTimeRole}),
                 (QVariantList{"Offers", " - \n", "folder-1", QString(), QString(), QDateTime()}));
        QCOMPARE(rolesOf(folder, {Model::ImportantRole, Model::ReadRole, Model::ConversationRole,
                                  Model::FlagBit1Role, Model::FolderIdRole}),
                 (QVariantList{0, 0, 0, 0, 1}));
        QCOMPARE(rolesOf(folder, {Model::IsFolderRole, Model::FolderHasUnreadRole, Model::ExpandedRole,
                                  Model::DraftBusyRole, Model::HasDefaultThreadRole}),
                 (QVariantList{true, true, true, false, false}));
        QVERIFY(!folder.data(Model::EntityRole).isValid());
    }

    void onlyPlainNewsAndFoldersAreEditable()
    {
        QVERIFY(loadOneOfEach());
        Model& model = populatedModel();
        const Qt::ItemFlags fixed = Qt::ItemIsSelectable | Qt::ItemIsEnabled;
        const Qt::ItemFlags editable = fixed | Qt::ItemIsEditable;
        QCOMPARE(model.flags(model.indexForKey("n-important")), fixed);
        QCOMPARE(model.flags(model.indexForKey("c-printer")), fixed);
        QCOMPARE(model.flags(model.indexForKey("n-offer")), editable);
        QCOMPARE(model.flags(model.indexForKey("n-old")), editable);
        QCOMPARE(model.flags(model.index(0, 0)), editable);
        QCOMPARE(model.flags(QModelIndex()), Qt::NoItemFlags);
    }

    void markingReadAsksTheFetcherOnlyForTheChange()
    {
        QVERIFY(loadOneOfEach());
        Model& model = populatedModel();
        const QPersistentModelIndex offer = model.indexForKey("n-offer");
        QStringList order;
        connect(&model, &Model::markNewsEntryReadRequest, this,
                [&order](const QString& id) { order << "request " + id; });
        connect(&model, &Model::dataChanged, this,
                [&order](const QModelIndex& from, const QModelIndex&, const QList<int>& roles) {
                    order << "changed " + from.data(Model::KeyRole).toString() +
                                 (roles.isEmpty() ? "" : " with roles");
                });

        QVERIFY(model.setData(offer, true, Model::ReadRole));
        QCOMPARE(order, (QStringList{"request n-offer", "changed n-offer"}));
        QCOMPARE(offer.data(Model::ReadRole), QVariant(1));
        QTRY_VERIFY(HostControl::isNewsEntryRead("n-offer"));

        order.clear();
        QVERIFY(!model.setData(offer, true, Model::ReadRole));
        QVERIFY(order.isEmpty());

        // Unread again: only the local mark changes.
        HostControl::clearRequestLog();
        QVERIFY(model.setData(offer, false, Model::ReadRole));
        QCOMPARE(order, QStringList{"changed n-offer"});
        QTest::qWait(50);
        QVERIFY(HostControl::requestLog().isEmpty());
        QVERIFY(HostControl::isNewsEntryRead("n-offer"));
    }

    void rebuildKeepsPersistentIndexesByKey()
    {
        QVERIFY(loadOneOfEach(true));
        Model model;
        Tester tester(&model, Tester::FailureReportingMode::QtTest);
        model.populate();
        const QPersistentModelIndex offer = model.indexForKey("n-offer");
        const QPersistentModelIndex old = model.indexForKey("n-old");
        const QPersistentModelIndex issues = model.indexForKey("folder-3");
        QCOMPARE(offer.row(), 0);
        QCOMPARE(issues.row(), 3);

        // A newer offer comes first; the old offer leaves and its emptied history folder goes with it.
        HostControl::addNewsEntry(newsEntry("n-newer", kOffer, "Summer offer", true, {{"published", "+1m"}}));
        HostControl::removeNewsEntry("n-old");
        QTRY_VERIFY(model.indexForKey("n-newer").isValid() && !model.indexForKey("n-old").isValid());

        QCOMPARE(offer.data(Model::KeyRole), QVariant("n-offer"));
        QCOMPARE(offer.row(), 1);
        QCOMPARE(offer.parent().data(Model::KeyRole), QVariant("folder-1"));
        QVERIFY(!old.isValid());
        QCOMPARE(issues.data(Model::KeyRole), QVariant("folder-3"));
        QCOMPARE(issues.row(), 2);
    }

    void expansionIsStoredAsToldAndSurvivesRebuildsByTheRules()
    {
        QVERIFY(listTest::loadScenario({newsEntry("n-important", kImportant, "Read news", true),
                                        newsEntry("n-offer", kOffer, "Unread offer")},
                                       {conversation("c-1", "Question")}));
        Model& model = populatedModel();
        const auto expanded = [&model](const QString& key) {
            return model.indexForKey(key).data(Model::ExpandedRole).toBool();
        };
        // New folders: unread ones open, otherwise only "Important messages".
        QVERIFY(expanded("folder-0") && expanded("folder-1") && !expanded("folder-3"));

        // Every write is stored and reported, even one that changes nothing.
        QSignalSpy changed(&model, &Model::dataChanged);
        QVERIFY(model.setData(model.indexForKey("folder-0"), false, Model::ExpandedRole));
        QVERIFY(model.setData(model.indexForKey("folder-0"), false, Model::ExpandedRole));
        QVERIFY(model.setData(model.indexForKey("folder-1"), false, Model::ExpandedRole));
        QVERIFY(model.setData(model.indexForKey("folder-3"), true, Model::ExpandedRole));
        QCOMPARE(changed.size(), 4);
        QVERIFY(!model.setData(model.indexForKey("folder-0"), "x", Model::TitleRole));
        QVERIFY(!model.setData(QModelIndex(), true, Model::ExpandedRole));
        QCOMPARE(changed.size(), 4);

        // A rebuild keeps what was told, except that a folder with unread entries opens again.
        model.populate();
        QVERIFY(!expanded("folder-0") && expanded("folder-1") && expanded("folder-3"));
        QCOMPARE(model.indexForKey("folder-1").data(Model::FolderHasUnreadRole), QVariant(true));
        QCOMPARE(model.indexForKey("folder-0").data(Model::FolderHasUnreadRole), QVariant(false));
    }

    void rebuildSignalsComeInOrder()
    {
        QVERIFY(loadOneOfEach());
        Model& model = populatedModel();
        const QPersistentModelIndex offer = model.indexForKey("n-offer");
        const QPersistentModelIndex gone = model.indexForKey("n-old");
        HostControl::removeNewsEntry("n-old");
        QTRY_VERIFY(!gone.isValid());

        QStringList order;
        connect(&model, &Model::layoutAboutToBeChanged, this, [&order] { order << "aboutToChange"; });
        connect(&model, &Model::layoutChanged, this, [&order] { order << "changed"; });
        connect(&model, &Model::modelPopulated, this, [&order] { order << "populated"; });
        connect(&model, &Model::dataChanged, this, [&order](const QModelIndex& from, const QModelIndex& to) {
            QCOMPARE(from, to);
            order << "data " + from.data(Model::KeyRole).toString();
        });
        model.populate();
        QCOMPARE(order, (QStringList{"aboutToChange", "changed", "populated", "data n-offer"}));
        QVERIFY(offer.isValid());
    }

    void aFetcherWithNothingToGiveLeavesTheModelEmpty_data()
    {
        QTest::addColumn<bool>("fetcherAvailable");
        QTest::addColumn<int>("populatedSignals");
        QTest::newRow("empty fetcher") << true << 1;
        QTest::newRow("no fetcher") << false << 0;
    }

    void aFetcherWithNothingToGiveLeavesTheModelEmpty()
    {
        QFETCH(bool, fetcherAvailable);
        QFETCH(int, populatedSignals);
        QVERIFY(fetcherAvailable ? listTest::loadScenario({}) : loadOneOfEach());
        HostControl::setNewsFetcherAvailable(fetcherAvailable);
        auto restore = qScopeGuard([] { HostControl::setNewsFetcherAvailable(true); });
        Model model;
        QSignalSpy populated(&model, &Model::modelPopulated);
        model.populate();
        QCOMPARE(model.rowCount(), 0);
        QCOMPARE(populated.size(), populatedSignals);
        QVERIFY(!model.setData(model.index(0, 0), true, Model::ReadRole));
        QCOMPARE(model.sendDraft(QModelIndex(), {}), nullptr);
    }

    void draftKeepersSurviveRebuildsAndLeaveWithTheirEntry()
    {
        QVERIFY(loadOneOfEach());
        Model& model = populatedModel();
        QPointer<DraftMessageItem> keeper = model.draftKeeper("c-printer");
        QVERIFY(keeper);
        QVERIFY(model.draftKeeper("n-offer"));
        QVERIFY(!model.draftKeeper("folder-3"));

        const QString text = QStringLiteral("Written before the refresh");
        model.setDraftText(model.indexForKey("c-printer"), text);
        QCOMPARE(model.indexForKey("c-printer").data(Model::DraftBusyRole), QVariant(true));

        // The list is rebuilt while the save is still due: the same keeper saves the text, once.
        QSignalSpy populated(&model, &Model::modelPopulated);
        HostControl::emitNewsChanged();
        QTRY_COMPARE(populated.size(), 1);
        QCOMPARE(model.draftKeeper("c-printer"), keeper.data());
        QCOMPARE(model.indexForKey("c-printer").data(Model::DraftTextRole), QVariant(text));
        QTRY_COMPARE(HostControl::drafts("c-printer").size(), 1);
        QTRY_COMPARE(model.indexForKey("c-printer").data(Model::DraftBusyRole), QVariant(false));
        const QList<QJsonObject> drafts = HostControl::drafts("c-printer");
        QCOMPARE(countIf(HostControl::requestLog(), "/communications"), 1);
        QCOMPARE(drafts.first().value("text").toString(), text);

        // A list built later shows the saved draft with its server identity.
        Model later;
        later.populate();
        QCOMPARE(rolesOf(later.indexForKey("c-printer"), {Model::DraftTextRole, Model::DraftIdRole}),
                 (QVariantList{text, drafts.first().value("id").toString()}));

        QPointer<DraftMessageItem> offerKeeper = model.draftKeeper("n-offer");
        HostControl::removeNewsEntry("n-offer");
        QTRY_VERIFY(!offerKeeper);
        QVERIFY(!model.draftKeeper("n-offer"));
        QVERIFY(keeper);
    }

    void draftOperationsReachTheItem()
    {
        QVERIFY(loadOneOfEach());
        Model& model = populatedModel();
        const QModelIndex talk = model.indexForKey("c-printer");

        QSignalSpy refreshed(&model, &Model::dataChanged);
        model.refreshItem(talk);
        model.refreshItem(QModelIndex());
        QCOMPARE(refreshed.size(), 1);
        QCOMPARE(refreshed.first().at(2).value<QList<int>>(), QList<int>());

        EntityDto::EntityDto draft;
        draft.id = QStringLiteral("draft-7");
        draft.setAttribute(QStringLiteral("TEXT"), QStringLiteral("From elsewhere"));
        auto update = std::make_shared<Messenger::MessageEntry>();
        update->id = QStringLiteral("c-printer");
        update->draftEntity = QVariant::fromValue(draft);
        QSignalSpy drafts(&model, &Model::draftChanged);
        model.onDraftUpdated(update);
        QCOMPARE(drafts.size(), 1);
        QCOMPARE(drafts.first().first().value<QModelIndex>(), talk);
        QCOMPARE(rolesOf(talk, {Model::DraftIdRole, Model::DraftTextRole}),
                 (QVariantList{"draft-7", ChatServiceApi::draftMessage(update->draftEntity)}));

        update->id = QStringLiteral("nobody");
        model.onDraftUpdated(update);
        model.onDraftUpdated(nullptr);
        QCOMPARE(drafts.size(), 1);
        QCOMPARE(model.sendDraft(model.index(0, 0), {}), nullptr);
    }

    void badEntriesDoNotBreakTheModel()
    {
        QVERIFY(loadOneOfEach());
        const auto offer = fetcherEntry("n-offer");
        const auto talk = fetcherEntry("c-printer");
        QVERIFY(offer && talk);
        // The fetcher shares its entries; bend them the way a faulty host could.
        const QVariant talkEntity = talk->entity;
        auto restore = qScopeGuard([=] {
            offer->id = QStringLiteral("n-offer");
            talk->id = QStringLiteral("c-printer");
            talk->entity = talkEntity;
            talk->draftEntity = QVariant();
        });
        offer->id.clear();
        talk->id = QStringLiteral("n-important");
        talk->entity = QVariant(42);
        talk->draftEntity = QVariant(QStringLiteral("not an entity"));

        Model model;
        Tester tester(&model, Tester::FailureReportingMode::QtTest);
        model.populate();
        const QPersistentModelIndex first = model.index(0, 0, model.indexForKey("folder-0"));
        QCOMPARE(model.rowCount(), 4);

        // An entry without id is listed under the empty key.
        const QModelIndex anonymous = model.indexForKey(QString());
        QVERIFY(anonymous.isValid());
        QCOMPARE(anonymous.parent().data(Model::KeyRole), QVariant("folder-1"));

        // The same id twice: both rows exist, the key names the last one listed.
        const QModelIndex duplicate = model.indexForKey("n-important");
        QCOMPARE(duplicate.parent().data(Model::KeyRole), QVariant("folder-3"));
        QCOMPARE(rolesOf(first, {Model::KeyRole, Model::ConversationRole}), (QVariantList{"n-important", 0}));

        // Variants that hold no entity read as an entity without attributes.
        QCOMPARE(rolesOf(duplicate, {Model::HasDefaultThreadRole, Model::DraftIdRole}),
                 (QVariantList{false, QString()}));

        model.populate();
        QCOMPARE(first.parent().data(Model::KeyRole), QVariant("folder-3"));
    }
};

HOST_TEST_MAIN(TestCommunicationObjectModel)
#include "tst_ccommunicationobjectmodel.moc"
