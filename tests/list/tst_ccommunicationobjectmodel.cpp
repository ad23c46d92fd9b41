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
using listTest::newsEntry;
using Model = CCommunicationObjectModel;

namespace {

const QString kImportant = QStringLiteral("important");
const QString kOffer = QStringLiteral("offer");

QJsonObject expiredOffer(const QString& id, const QString& title, bool read = true)
{
    return newsEntry(id, kOffer, title, read, {{QStringLiteral("expires"), QStringLiteral("-1d")}});
}

// One entry in each folder.
bool loadOneOfEach(bool read = false)
{
    return listTest::loadScenario(
        {newsEntry(QStringLiteral("n-important"), kImportant, QStringLiteral("Maintenance"), read),
         newsEntry(QStringLiteral("n-offer"), kOffer, QStringLiteral("Spring offer"), read),
         expiredOffer(QStringLiteral("n-old"), QStringLiteral("Winter offer"), read)},
        {conversation(QStringLiteral("c-printer"), QStringLiteral("Printer blocked"),
                      {{QStringLiteral("read"), read}})});
}

QStringList folderNames(const Model& model)
{
    QStringList names;
    for (int row = 0; row < model.rowCount(); ++row)
        names << model.index(row, 0).data().toString();
    return names;
}

std::shared_ptr<Messenger::MessageEntry> fetcherEntry(const QString& id, unsigned filter)
{
    for (const auto& entry :
         listTest::fetcher()->getNewsList(CNewsFetcher::NewsListFilter::fromInt(filter))) {
        if (entry->id == id)
            return entry;
    }
    return nullptr;
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

private slots:
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
        QTest::addColumn<QStringList>("folders");
        QTest::addColumn<QList<int>>("folderIds");
        QTest::newRow("default") << false << QVariant()
                                 << QStringList{"Important messages", "Offers", "Offers history", "Issues"}
                                 << QList<int>{0, 1, 2, 3};
        QTest::newRow("news switched on")
            << false << QVariant(true)
            << QStringList{"Important messages", "Offers", "Offers history", "Issues"}
            << QList<int>{0, 1, 2, 3};
        QTest::newRow("news switched off")
            << false << QVariant(false) << QStringList{"Important messages", "Issues"} << QList<int>{0, 3};
        QTest::newRow("pre-installation") << true << QVariant() << QStringList{"Issues"} << QList<int>{3};
        QTest::newRow("pre-installation, news off")
            << true << QVariant(false) << QStringList{"Issues"} << QList<int>{3};
    }

    void foldersFollowTheTableAndTheSwitches()
    {
        QFETCH(bool, windowsPE);
        QFETCH(QVariant, showNews);
        QFETCH(QStringList, folders);
        QFETCH(QList<int>, folderIds);
        QVERIFY(loadOneOfEach());
        HostControl::setWindowsPE(windowsPE);
        if (showNews.isValid())
            HostControl::setSetting(QStringLiteral("UIShowNews"), showNews);

        Model model;
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.populate();
        QCOMPARE(folderNames(model), folders);
        for (int row = 0; row < model.rowCount(); ++row) {
            const QModelIndex folder = model.index(row, 0);
            QCOMPARE(folder.data(Model::FolderIdRole).toInt(), folderIds.at(row));
            QCOMPARE(folder.data(Model::KeyRole).toString(),
                     QStringLiteral("folder-%1").arg(folderIds.at(row)));
            QCOMPARE(folder.data(Model::IsFolderRole), QVariant(true));
            QCOMPARE(model.rowCount(folder), 1);
            QCOMPARE(model.parent(model.index(0, 0, folder)), folder);
        }
    }

    void emptyListsMakeNoFolder()
    {
        QVERIFY(
            listTest::loadScenario({newsEntry(QStringLiteral("n-offer"), kOffer, QStringLiteral("Offer"))}));
        Model model;
        model.populate();
        QCOMPARE(folderNames(model), QStringList{"Offers"});
        QCOMPARE(model.index(0, 0).data(Model::FolderIdRole).toInt(), 1);
    }

    void entryRolesAnswerTheEntryFields()
    {
        QVERIFY(listTest::loadScenario(
            {newsEntry(QStringLiteral("n-important"), kImportant, QStringLiteral("Maintenance"), false,
                       {{QStringLiteral("pinned"), true}})},
            {conversation(QStringLiteral("c-printer"), QStringLiteral("Printer blocked"),
                          {{QStringLiteral("read"), true},
                           {QStringLiteral("draft"), QJsonObject{{"text", "Half a reply"}}}})}));
        Model model;
        model.populate();

        const QModelIndex news = model.indexForKey(QStringLiteral("n-important"));
        const auto newsEntryPtr = fetcherEntry(QStringLiteral("n-important"), 1);
        QVERIFY(news.isValid() && newsEntryPtr);
        QCOMPARE(news.data(Qt::DisplayRole), QVariant(QStringLiteral("Maintenance")));
        QCOMPARE(news.data(Qt::ToolTipRole),
                 QVariant(QStringLiteral("Maintenance - About Maintenance\n12.06.2024")));
        QCOMPARE(news.data(Model::KeyRole), QVariant(QStringLiteral("n-important")));
        QCOMPARE(news.data(Model::TitleRole), QVariant(QStringLiteral("Maintenance")));
        QCOMPARE(news.data(Model::DateTextRole), QVariant(QStringLiteral("12.06.2024")));
        QCOMPARE(news.data(Model::ExtraTextRole), QVariant(QStringLiteral("<p>Maintenance</p>")));
        QCOMPARE(news.data(Model::ImportantRole), QVariant(1));
        QCOMPARE(news.data(Model::ReadRole), QVariant(0));
        QCOMPARE(news.data(Model::IsFolderRole), QVariant(false));
        QCOMPARE(news.data(Model::FolderIdRole), QVariant(0));
        QCOMPARE(news.data(Model::ConversationRole), QVariant(0));
        QCOMPARE(news.data(Model::FolderHasUnreadRole), QVariant(false));
        QCOMPARE(news.data(Model::ExpandedRole), QVariant(false));
        QCOMPARE(news.data(Model::FlagBit1Role), QVariant(1));
        QCOMPARE(news.data(Model::StatusRole), QVariant(0));
        QCOMPARE(news.data(Model::SubtitleRole), QVariant(QStringLiteral("About Maintenance")));
        QCOMPARE(news.data(Model::FirstTimeRole), QVariant(newsEntryPtr->firstTime));
        QCOMPARE(news.data(Model::SecondTimeRole), QVariant(newsEntryPtr->secondTime));
        QCOMPARE(news.data(Model::EntityRole).metaType(), QMetaType::fromType<EntityDto::EntityDto>());
        QCOMPARE(DraftMessageItem::entityFrom(news.data(Model::EntityRole)).id,
                 DraftMessageItem::entityFrom(newsEntryPtr->entity).id);
        QCOMPARE(news.data(Model::DraftIdRole), QVariant(QString()));
        QCOMPARE(news.data(Model::DraftTextRole), QVariant(QString()));
        QCOMPARE(news.data(Model::DraftBusyRole), QVariant(false));
        QCOMPARE(news.data(Model::HasDefaultThreadRole), QVariant(false));

        const QModelIndex talk = model.indexForKey(QStringLiteral("c-printer"));
        const auto talkEntry = fetcherEntry(QStringLiteral("c-printer"), 64);
        QVERIFY(talk.isValid() && talkEntry);
        QCOMPARE(talk.data(Qt::DisplayRole),
                 QVariant(QStringLiteral("Printer blocked - %1").arg(talkEntry->subtitle)));
        QCOMPARE(talk.data(Model::ConversationRole), QVariant(1));
        QCOMPARE(talk.data(Model::ReadRole), QVariant(1));
        QCOMPARE(talk.data(Model::FolderIdRole), QVariant(0));
        QCOMPARE(talk.data(Model::StatusRole), QVariant(talkEntry->status));
        QCOMPARE(talk.data(Model::HasDefaultThreadRole), QVariant(true));
        QCOMPARE(talk.data(Model::DraftTextRole), QVariant(QStringLiteral("Half a reply")));
        QVERIFY(!talk.data(Model::DraftIdRole).toString().isEmpty());
        QCOMPARE(talk.data(Model::DraftIdRole).toString(),
                 DraftMessageItem::entityFrom(talkEntry->draftEntity).id);

        // Anything else answers nothing.
        QVERIFY(!news.data(Qt::EditRole).isValid());
        QVERIFY(!news.data(Model::HasDefaultThreadRole + 1).isValid());
        QVERIFY(!model.data(QModelIndex(), Model::KeyRole).isValid());
    }

    void foldersAnswerEntryRolesAsAnEmptyEntry()
    {
        QVERIFY(loadOneOfEach());
        Model model;
        model.populate();
        const QModelIndex folder = model.index(1, 0);
        QCOMPARE(folder.data(Qt::DisplayRole), QVariant(QStringLiteral("Offers")));
        QCOMPARE(iconImage(folder.data(Qt::DecorationRole)), namedIcon(QStringLiteral("ico-offers-unread")));
        QCOMPARE(folder.data(Qt::ToolTipRole), QVariant(QStringLiteral(" - \n")));
        QCOMPARE(folder.data(Model::KeyRole), QVariant(QStringLiteral("folder-1")));
        QCOMPARE(folder.data(Model::TitleRole), QVariant(QString()));
        QCOMPARE(folder.data(Model::ImportantRole), QVariant(0));
        QCOMPARE(folder.data(Model::ReadRole), QVariant(0));
        QCOMPARE(folder.data(Model::ConversationRole), QVariant(0));
        QCOMPARE(folder.data(Model::FlagBit1Role), QVariant(0));
        QCOMPARE(folder.data(Model::IsFolderRole), QVariant(true));
        QCOMPARE(folder.data(Model::FolderIdRole), QVariant(1));
        QCOMPARE(folder.data(Model::FolderHasUnreadRole), QVariant(true));
        QCOMPARE(folder.data(Model::ExpandedRole), QVariant(true));
        QVERIFY(!folder.data(Model::EntityRole).isValid());
        QCOMPARE(folder.data(Model::DraftIdRole), QVariant(QString()));
        QCOMPARE(folder.data(Model::DraftBusyRole), QVariant(false));
        QCOMPARE(folder.data(Model::HasDefaultThreadRole), QVariant(false));
        QCOMPARE(folder.data(Model::FirstTimeRole), QVariant(QDateTime()));
    }

    void decorationFollowsImportanceAndReadMark_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<bool>("read");
        QTest::addColumn<QString>("icon");
        QTest::newRow("important unread") << kImportant << false << QStringLiteral("ico-attention-unread");
        QTest::newRow("important read") << kImportant << true << QStringLiteral("ico-attention-read");
        QTest::newRow("offer unread") << kOffer << false << QStringLiteral("ico-offers-unread");
        QTest::newRow("offer read") << kOffer << true << QStringLiteral("ico-offers-read");
    }

    void decorationFollowsImportanceAndReadMark()
    {
        QFETCH(QString, kind);
        QFETCH(bool, read);
        QFETCH(QString, icon);
        QVERIFY(
            listTest::loadScenario({newsEntry(QStringLiteral("n-1"), kind, QStringLiteral("One"), read)}));
        Model model;
        model.populate();
        QCOMPARE(iconImage(model.indexForKey(QStringLiteral("n-1")).data(Qt::DecorationRole)),
                 namedIcon(icon));
    }

    void onlyPlainNewsAndFoldersAreEditable()
    {
        QVERIFY(loadOneOfEach());
        Model model;
        model.populate();
        const Qt::ItemFlags fixed = Qt::ItemIsSelectable | Qt::ItemIsEnabled;
        const Qt::ItemFlags editable = fixed | Qt::ItemIsEditable;
        QCOMPARE(model.flags(model.indexForKey(QStringLiteral("n-important"))), fixed);
        QCOMPARE(model.flags(model.indexForKey(QStringLiteral("c-printer"))), fixed);
        QCOMPARE(model.flags(model.indexForKey(QStringLiteral("n-offer"))), editable);
        QCOMPARE(model.flags(model.indexForKey(QStringLiteral("n-old"))), editable);
        QCOMPARE(model.flags(model.index(0, 0)), editable);
        QCOMPARE(model.flags(QModelIndex()), Qt::NoItemFlags);
    }

    void markingReadAsksTheFetcherOnlyForTheChange()
    {
        QVERIFY(loadOneOfEach());
        Model model;
        model.populate();
        const QPersistentModelIndex offer = model.indexForKey(QStringLiteral("n-offer"));
        QStringList order;
        connect(&model, &Model::markNewsEntryReadRequest, this,
                [&order](const QString& id) { order << QStringLiteral("request ") + id; });
        connect(&model, &Model::dataChanged, this,
                [&order](const QModelIndex& from, const QModelIndex&, const QList<int>& roles) {
                    order << QStringLiteral("changed ") + from.data(Model::KeyRole).toString() +
                                 (roles.isEmpty() ? QString() : QStringLiteral(" with roles"));
                });

        QVERIFY(model.setData(offer, true, Model::ReadRole));
        QCOMPARE(order, (QStringList{"request n-offer", "changed n-offer"}));
        QCOMPARE(offer.data(Model::ReadRole), QVariant(1));
        QTRY_VERIFY(HostControl::isNewsEntryRead(QStringLiteral("n-offer")));

        order.clear();
        QVERIFY(!model.setData(offer, true, Model::ReadRole));
        QVERIFY(order.isEmpty());

        // Unread again: only the local mark changes.
        HostControl::clearRequestLog();
        QVERIFY(model.setData(model.indexForKey(QStringLiteral("n-offer")), false, Model::ReadRole));
        QCOMPARE(order, QStringList{"changed n-offer"});
        QTest::qWait(50);
        QVERIFY(HostControl::requestLog().isEmpty());
        QVERIFY(HostControl::isNewsEntryRead(QStringLiteral("n-offer")));
    }

    void expansionIsStoredWithoutComparing()
    {
        QVERIFY(loadOneOfEach());
        Model model;
        model.populate();
        const QModelIndex folder = model.index(0, 0);
        QSignalSpy changed(&model, &Model::dataChanged);
        QVERIFY(model.setData(folder, true, Model::ExpandedRole));
        QVERIFY(model.setData(folder, true, Model::ExpandedRole));
        QCOMPARE(changed.size(), 2);
        QVERIFY(model.setData(folder, false, Model::ExpandedRole));
        QCOMPARE(folder.data(Model::ExpandedRole), QVariant(false));

        QVERIFY(!model.setData(folder, QStringLiteral("x"), Model::TitleRole));
        QVERIFY(!model.setData(QModelIndex(), true, Model::ExpandedRole));
        QCOMPARE(changed.size(), 3);
    }

    void rebuildKeepsPersistentIndexesByKey()
    {
        QVERIFY(loadOneOfEach(true));
        Model model;
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.populate();
        const QPersistentModelIndex offer = model.indexForKey(QStringLiteral("n-offer"));
        const QPersistentModelIndex old = model.indexForKey(QStringLiteral("n-old"));
        const QPersistentModelIndex issues = model.indexForKey(QStringLiteral("folder-3"));
        QCOMPARE(offer.row(), 0);
        QCOMPARE(issues.row(), 3);

        // A newer offer comes first; the old offer leaves; the history folder goes with it.
        HostControl::addNewsEntry(newsEntry(QStringLiteral("n-newer"), kOffer, QStringLiteral("Summer offer"),
                                            true, {{QStringLiteral("published"), QStringLiteral("+1m")}}));
        HostControl::removeNewsEntry(QStringLiteral("n-old"));
        QTRY_VERIFY(model.indexForKey(QStringLiteral("n-newer")).isValid() &&
                    !model.indexForKey(QStringLiteral("n-old")).isValid());

        QVERIFY(offer.isValid());
        QCOMPARE(offer.data(Model::KeyRole), QVariant(QStringLiteral("n-offer")));
        QCOMPARE(offer.row(), 1);
        QCOMPARE(offer.parent().data(Model::KeyRole), QVariant(QStringLiteral("folder-1")));
        QVERIFY(!old.isValid());
        QCOMPARE(issues.data(Model::KeyRole), QVariant(QStringLiteral("folder-3")));
        QCOMPARE(issues.row(), 2);
    }

    void expansionSurvivesRebuildsByTheRules()
    {
        QVERIFY(listTest::loadScenario(
            {newsEntry(QStringLiteral("n-important"), kImportant, QStringLiteral("Read news"), true),
             newsEntry(QStringLiteral("n-offer"), kOffer, QStringLiteral("Unread offer"))},
            {conversation(QStringLiteral("c-1"), QStringLiteral("Question"))}));
        Model model;
        model.populate();
        const auto expanded = [&model](const QString& key) {
            return model.indexForKey(key).data(Model::ExpandedRole).toBool();
        };
        // New folders: unread ones open, otherwise only "Important messages".
        QVERIFY(expanded(QStringLiteral("folder-0")));
        QVERIFY(expanded(QStringLiteral("folder-1")));
        QVERIFY(!expanded(QStringLiteral("folder-3")));

        model.setData(model.indexForKey(QStringLiteral("folder-0")), false, Model::ExpandedRole);
        model.setData(model.indexForKey(QStringLiteral("folder-1")), false, Model::ExpandedRole);
        model.setData(model.indexForKey(QStringLiteral("folder-3")), true, Model::ExpandedRole);
        model.populate();
        QVERIFY(!expanded(QStringLiteral("folder-0")));
        QVERIFY(expanded(QStringLiteral("folder-1")));
        QVERIFY(expanded(QStringLiteral("folder-3")));
        QCOMPARE(model.indexForKey(QStringLiteral("folder-1")).data(Model::FolderHasUnreadRole),
                 QVariant(true));
        QCOMPARE(model.indexForKey(QStringLiteral("folder-0")).data(Model::FolderHasUnreadRole),
                 QVariant(false));
    }

    void rebuildSignalsComeInOrder()
    {
        QVERIFY(loadOneOfEach());
        Model model;
        model.populate();
        const QPersistentModelIndex offer = model.indexForKey(QStringLiteral("n-offer"));
        const QPersistentModelIndex gone = model.indexForKey(QStringLiteral("n-old"));
        HostControl::removeNewsEntry(QStringLiteral("n-old"));
        QTRY_VERIFY(!gone.isValid());

        QStringList order;
        connect(&model, &Model::layoutAboutToBeChanged, this,
                [&order] { order << QStringLiteral("aboutToChange"); });
        connect(&model, &Model::layoutChanged, this, [&order] { order << QStringLiteral("changed"); });
        connect(&model, &Model::modelPopulated, this, [&order] { order << QStringLiteral("populated"); });
        connect(&model, &Model::dataChanged, this, [&order](const QModelIndex& from, const QModelIndex& to) {
            QCOMPARE(from, to);
            order << QStringLiteral("data ") + from.data(Model::KeyRole).toString();
        });
        model.populate();
        QCOMPARE(order, (QStringList{"aboutToChange", "changed", "populated", "data n-offer"}));
        QVERIFY(offer.isValid());
    }

    void emptyFetcherStillReportsPopulation()
    {
        QVERIFY(listTest::loadScenario({}));
        Model model;
        QSignalSpy populated(&model, &Model::modelPopulated);
        model.populate();
        QCOMPARE(model.rowCount(), 0);
        QCOMPARE(populated.size(), 1);
    }

    void withoutFetcherTheModelStaysEmpty()
    {
        QVERIFY(loadOneOfEach());
        HostControl::setNewsFetcherAvailable(false);
        auto restore = qScopeGuard([] { HostControl::setNewsFetcherAvailable(true); });
        Model model;
        QSignalSpy populated(&model, &Model::modelPopulated);
        model.populate();
        QCOMPARE(model.rowCount(), 0);
        QCOMPARE(populated.size(), 0);
        QVERIFY(!model.index(0, 0).isValid());
        QVERIFY(!model.setData(model.index(0, 0), true, Model::ReadRole));
        QCOMPARE(model.sendDraft(QModelIndex(), {}), nullptr);
    }

    void keepersSurviveRebuildsAndLeaveWithTheirEntry()
    {
        QVERIFY(loadOneOfEach());
        Model model;
        model.populate();
        QPointer<DraftMessageItem> keeper = model.draftKeeper(QStringLiteral("c-printer"));
        QVERIFY(keeper);
        QVERIFY(model.draftKeeper(QStringLiteral("n-offer")));
        QVERIFY(!model.draftKeeper(QStringLiteral("folder-3")));

        model.setDraftText(model.indexForKey(QStringLiteral("c-printer")), QStringLiteral("Typing"));
        QCOMPARE(model.indexForKey(QStringLiteral("c-printer")).data(Model::DraftBusyRole), QVariant(true));
        model.populate();
        QCOMPARE(model.draftKeeper(QStringLiteral("c-printer")), keeper.data());
        QCOMPARE(model.indexForKey(QStringLiteral("c-printer")).data(Model::DraftTextRole),
                 QVariant(QStringLiteral("Typing")));
        QTRY_COMPARE(HostControl::drafts(QStringLiteral("c-printer")).size(), 1);
        QTRY_COMPARE(model.indexForKey(QStringLiteral("c-printer")).data(Model::DraftBusyRole),
                     QVariant(false));
        QVERIFY(
            !model.indexForKey(QStringLiteral("c-printer")).data(Model::DraftIdRole).toString().isEmpty());

        QPointer<DraftMessageItem> offerKeeper = model.draftKeeper(QStringLiteral("n-offer"));
        HostControl::removeNewsEntry(QStringLiteral("n-offer"));
        QTRY_VERIFY(!offerKeeper);
        QVERIFY(!model.draftKeeper(QStringLiteral("n-offer")));
        QVERIFY(keeper);
    }

    void draftOperationsReachTheItem()
    {
        QVERIFY(loadOneOfEach());
        Model model;
        model.populate();
        const QModelIndex talk = model.indexForKey(QStringLiteral("c-printer"));

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
        QCOMPARE(talk.data(Model::DraftIdRole), QVariant(QStringLiteral("draft-7")));
        QCOMPARE(talk.data(Model::DraftTextRole),
                 QVariant(ChatServiceApi::draftMessage(update->draftEntity)));

        update->id = QStringLiteral("nobody");
        model.onDraftUpdated(update);
        model.onDraftUpdated(nullptr);
        QCOMPARE(drafts.size(), 1);
        QCOMPARE(model.sendDraft(model.index(0, 0), {}), nullptr);
    }

    void badEntriesDoNotBreakTheModel()
    {
        QVERIFY(loadOneOfEach());
        const auto offer = fetcherEntry(QStringLiteral("n-offer"), 10);
        const auto important = fetcherEntry(QStringLiteral("n-important"), 1);
        const auto talk = fetcherEntry(QStringLiteral("c-printer"), 64);
        QVERIFY(offer && important && talk);
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
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.populate();
        const QPersistentModelIndex first = model.index(0, 0, model.indexForKey(QStringLiteral("folder-0")));
        QCOMPARE(model.rowCount(), 4);

        // An entry without id is listed under the empty key.
        const QModelIndex anonymous = model.indexForKey(QString());
        QVERIFY(anonymous.isValid());
        QCOMPARE(anonymous.parent().data(Model::KeyRole), QVariant(QStringLiteral("folder-1")));

        // The same id twice: both rows exist, the key names the last one listed.
        const QModelIndex duplicate = model.indexForKey(QStringLiteral("n-important"));
        QCOMPARE(duplicate.parent().data(Model::KeyRole), QVariant(QStringLiteral("folder-3")));
        QCOMPARE(first.data(Model::KeyRole), QVariant(QStringLiteral("n-important")));
        QCOMPARE(first.data(Model::ConversationRole), QVariant(0));

        // Variants that hold no entity read as an entity without attributes.
        QCOMPARE(duplicate.data(Model::HasDefaultThreadRole), QVariant(false));
        QCOMPARE(duplicate.data(Model::DraftIdRole), QVariant(QString()));

        model.populate();
        QCOMPARE(first.parent().data(Model::KeyRole), QVariant(QStringLiteral("folder-3")));
    }
};

HOST_TEST_MAIN(TestCommunicationObjectModel)
#include "tst_ccommunicationobjectmodel.moc"
