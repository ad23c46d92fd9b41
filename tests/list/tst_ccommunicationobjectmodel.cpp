// CCommunicationObjectModel against the stand-in host's news fetcher: the folders a user sees, what a row
// tells the views, rebuilds that keep what the views hold, and the draft keepers.
#include "HostTestMain.h"

#include "CCommunicationObjectModel.h"
#include "DraftMessageItem.h"
#include "ListTestSupport.h"
#include "QtHelpersImages.h"

#include <QAbstractItemModelTester>

using listTest::conversation;
using listTest::newsEntry;
using Model = CCommunicationObjectModel;
using Tester = QAbstractItemModelTester;

namespace {

// One entry in each folder: "Important messages", "Offers", "Offers history" and "Issues".
bool loadOneOfEach(bool read = false)
{
    return listTest::loadScenario({newsEntry("n-important", "important", "Maintenance", read),
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
        HostControl::removeSetting("UIShowNews");
        HostControl::clearServer();
        HostControl::clearRequestLog();
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
        QVERIFY(listTest::loadScenario(
            {newsEntry("n-important", "important", "Maintenance", false, {{"pinned", true}}),
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
        QVERIFY(
            listTest::loadScenario({newsEntry("n-important", "important", "Read news", true),
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
};

HOST_TEST_MAIN(TestCommunicationObjectModel)
#include "tst_ccommunicationobjectmodel.moc"
