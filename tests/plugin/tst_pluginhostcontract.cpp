// What the plugin object answers the host and asks of it, on a plugin constructed inside the stand-in host.
#include "HostTestMain.h"

#include "CNewsFetcher.h"
#include "CNewsReaderPlugin.h"
#include "CReadNewsEntryRequest.h"
#include "QtHelpersImages.h"

#include "CNewIncidentDialog.h"

#include <QApplication>
#include <QJsonObject>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTimer>

namespace {

bool sameIcon(const QIcon& a, const QIcon& b)
{
    return a.pixmap(32).toImage() == b.pixmap(32).toImage();
}

} // namespace

class TestPluginHostContract : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        HostControl::resetSwitches();
        HostControl::clearServer();
        HostControl::removeSetting(QStringLiteral("UIShowNews"));
        HostControl::clearEvents();
        HostControl::clearRequestLog();
        // The fetcher learns of the emptied server through the event loop, like of any other change.
        const auto everything = CNewsFetcher::FilterImportant | CNewsFetcher::FilterOffers |
                                CNewsFetcher::FilterIssues | CNewsFetcher::FilterIncludeHidden;
        QTRY_VERIFY(vantrelApp->getNewsFetcher()->getNewsList(everything).empty());
    }

    void visibilityFollowsTheFeatureSwitches_data()
    {
        QTest::addColumn<bool>("showNews");
        QTest::addColumn<bool>("incidents");
        QTest::addColumn<bool>("zendesk");
        QTest::addColumn<int>("expected");
        QTest::newRow("news shown") << true << false << true << int(PluginVisible);
        QTest::newRow("conversations on Zendesk") << false << true << true << int(PluginHidden);
        QTest::newRow("conversations only") << false << true << false << int(PluginVisible);
    }

    void visibilityFollowsTheFeatureSwitches()
    {
        QFETCH(bool, showNews);
        QFETCH(bool, incidents);
        QFETCH(bool, zendesk);
        QFETCH(int, expected);
        HostControl::setVisible(QStringLiteral("showNews"), showNews);
        HostControl::setVisible(QStringLiteral("allowUseIncidents"), incidents);
        HostControl::setAllowed(QStringLiteral("useZendeskTickets"), zendesk);

        CNewsReaderPlugin plugin;
        QCOMPARE(int(plugin.getPluginVisibility()), expected);
        // The switches are read on every call, not once.
        HostControl::setVisible(QStringLiteral("showNews"), true);
        QCOMPARE(int(plugin.getPluginVisibility()), int(PluginVisible));
    }

    void tooltipNamesTheLastUrgentEntryElseTheLastUnreadOne()
    {
        HostControl::setNewsFetcherAvailable(false);
        CNewsReaderPlugin withoutFetcher;
        QCOMPARE(withoutFetcher.getTooltip(), withoutFetcher.CAbstractKolPlugin::getTooltip());
        HostControl::setNewsFetcherAvailable(true);
        const auto news = [](const char* id, const char* kind, const char* title, const char* published,
                             bool read) {
            return QJsonObject{
                {"id", id}, {"kind", kind}, {"title", title}, {"published", published}, {"read", read}};
        };
        HostControl::addNewsEntry(news("offer", "offer", "Unread offer", "-1d", false));
        HostControl::addNewsEntry(news("old-offer", "offer", "Older unread offer", "-3d", false));
        CNewsReaderPlugin plugin;
        // No urgent news: the last of the unread list (newest first) is the tooltip.
        QTRY_COMPARE(plugin.getTooltip(), QStringLiteral("Older unread offer"));

        HostControl::addNewsEntry(news("urgent-new", "important", "Newer urgent", "-1h", false));
        HostControl::addNewsEntry(news("urgent-old", "important", "Older urgent", "-2h", false));
        HostControl::addNewsEntry(news("urgent-read", "important", "Read urgent", "-9d", true));
        QTRY_COMPARE(plugin.getTooltip(), QStringLiteral("Older urgent"));
        QTRY_VERIFY(sameIcon(plugin.getPluginIcon(),
                             qtHelpers::images::icon(QStringLiteral("ico-plugin-urgent-news"))));
    }

    void leavingThePageAnimatesItForUnreadNews_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QVariant>("showNews");
        QTest::addColumn<QList<int>>("modes");
        QTest::newRow("nothing unread") << QString() << QVariant() << QList<int>{};
        QTest::newRow("urgent news, news switched off") << "important" << QVariant(false) << QList<int>{-1};
        QTest::newRow("an offer") << "offer" << QVariant() << QList<int>{2};
        QTest::newRow("an offer, news switched off") << "offer" << QVariant(false) << QList<int>{};
    }

    void leavingThePageAnimatesItForUnreadNews()
    {
        QFETCH(QString, kind);
        QFETCH(QVariant, showNews);
        QFETCH(QList<int>, modes);
        if (showNews.isValid())
            HostControl::setSetting("UIShowNews", showNews);
        if (!kind.isEmpty())
            HostControl::addNewsEntry({{"id", "n1"}, {"kind", kind}, {"title", "News"}, {"read", false}});
        const auto news = CNewsFetcher::FilterImportant | CNewsFetcher::FilterOffers;
        QTRY_COMPARE(vantrelApp->getNewsFetcher()->getNewsList(news).size(), size_t(kind.isEmpty() ? 0 : 1));
        CNewsReaderPlugin plugin;
        HostControl::recordPluginRequests(&plugin);
        plugin.setIsSelected(true);
        QCOMPARE(HostControl::events("animationStop").size(), 1);
        plugin.setIsSelected(false);
        QList<int> begun;
        for (const HostControl::Event& event : HostControl::events("animationBegin"))
            begun << event.details.value("mode").toInt();
        QCOMPARE(begun, modes);
    }

    void readNewsEntryRequestReloadsConversationsAndSelectsThePage()
    {
        CNewsReaderPlugin plugin;
        HostControl::recordPluginRequests(&plugin);

        QEvent other(QEvent::User);
        other.ignore();
        QVERIFY(!vantrelApp->postApplicationEvent(&other));
        QVERIFY(HostControl::events(QStringLiteral("selectPage")).isEmpty());

        CReadNewsEntryRequest request(QStringLiteral("no-such-entry"), 3);
        QVERIFY(vantrelApp->postApplicationEvent(&request));
        QVERIFY(plugin.isSelected());
        QCOMPARE(HostControl::events(QStringLiteral("selectPage")).size(), 1);
        // The entry is not listed: the fetcher is asked to reload the conversations from the server.
        QTRY_VERIFY(!HostControl::requestLog().isEmpty());
    }

    void writeToSupportBroadcastOpensTheDialogAndListsTheNewConversation()
    {
        HostControl::setShowBalloons(false);
        CNewsReaderPlugin plugin;
        HostControl::recordPluginRequests(&plugin);
        vantrelApp->broadcastRequest(BroadcastShowAbout);
        QVERIFY(!plugin.isSelected());
        QVERIFY(HostControl::events(QStringLiteral("dialogExecuted")).isEmpty());

        // The dialog runs modally: fill it in and press OK from inside its own event loop.
        bool filledIn = false;
        QTimer::singleShot(0, this, [&filledIn] {
            auto* dialog = qobject_cast<CNewIncidentDialog*>(QApplication::activeModalWidget());
            if (!dialog)
                return;
            dialog->findChild<QLineEdit*>(QStringLiteral("subjectEdit"))
                ->setText(QStringLiteral("Printer offline"));
            dialog->findChild<QPlainTextEdit*>(QStringLiteral("messageEdit"))
                ->setPlainText(QStringLiteral("It stopped printing this morning."));
            dialog->okButton()->click();
            filledIn = true;
        });
        vantrelApp->broadcastRequest(BroadcastWriteToSupport);

        QVERIFY(filledIn);
        QVERIFY(plugin.isSelected());
        const QList<HostControl::Event> dialogs = HostControl::events(QStringLiteral("dialogExecuted"));
        QCOMPARE(dialogs.size(), 1);
        QCOMPARE(dialogs.first().details.value(QStringLiteral("class")).toString(),
                 QStringLiteral("CNewIncidentDialog"));
        // The created conversation reaches the list through the news fetcher.
        auto model = plugin.getPluginModel();
        QTRY_VERIFY(model
                        ->match(model->index(0, 0), Qt::DisplayRole, QStringLiteral("Printer offline"), 1,
                                Qt::MatchStartsWith | Qt::MatchRecursive)
                        .size() == 1);
    }
};

HOST_TEST_MAIN(TestPluginHostContract)
#include "tst_pluginhostcontract.moc"
