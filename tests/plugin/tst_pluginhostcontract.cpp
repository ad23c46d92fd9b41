// What the plugin object answers the host and asks of it, on a plugin constructed inside the stand-in host.
#include "HostTestMain.h"

#include "CIncidentAttachment.h"
#include "CIncidentCommunication.h"
#include "CNewsFetcher.h"
#include "CNewsReaderPlugin.h"
#include "CReadNewsEntryRequest.h"
#include "EntityDto.h"
#include "QtHelpersImages.h"

#include "CNewIncidentDialog.h"

#include <QApplication>
#include <QJsonObject>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTimer>

namespace {

bool sameIcon(const QIcon& a, const QIcon& b)
{
    return a.pixmap(32).toImage() == b.pixmap(32).toImage();
}

QList<int> animationModes()
{
    QList<int> modes;
    for (const HostControl::Event& event : HostControl::events(QStringLiteral("animationBegin")))
        modes << event.details.value(QStringLiteral("mode")).toInt();
    return modes;
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
        QTest::newRow("nothing shown") << false << false << false << int(PluginHidden);
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

    void fixedAnswersHoldInEveryState()
    {
        CNewsReaderPlugin plugin;
        for (bool selected : {false, true}) {
            plugin.setIsSelected(selected);
            QCOMPARE(plugin.keepItemSelected(), false);
            QCOMPARE(plugin.hasPluginView(), true);
            QCOMPARE(plugin.hasCustomToolbar(), false);
        }
        QCOMPARE(plugin.getCaption(), QStringLiteral("Communications"));
        QCOMPARE(plugin.getPluginName(), QStringLiteral("Communications"));
        QCOMPARE(plugin.getPluginId(), QStringLiteral("newsReader"));
        QCOMPARE(plugin.getTranslationName(), QStringLiteral("newsReader"));
        QCOMPARE(plugin.releaseEmptyListWidget(), nullptr);
        QVERIFY(
            sameIcon(plugin.getPluginIcon(), qtHelpers::images::icon(QStringLiteral("ico-plugin-no-news"))));

        QCOMPARE(plugin.isMessengerModeDisabled(), false);
        HostControl::setAllowed(QStringLiteral("allowMessengerMode"), false);
        QCOMPARE(plugin.isMessengerModeDisabled(), true);
    }

    void tooltipFallsBackToTheBaseWithoutNews()
    {
        CNewsReaderPlugin plugin;
        QCOMPARE(plugin.getTooltip(), plugin.CAbstractKolPlugin::getTooltip());

        HostControl::setNewsFetcherAvailable(false);
        CNewsReaderPlugin withoutFetcher;
        QCOMPARE(withoutFetcher.getTooltip(), withoutFetcher.CAbstractKolPlugin::getTooltip());
        HostControl::setNewsFetcherAvailable(true);
    }

    void tooltipNamesTheLastUrgentEntryElseTheLastUnreadOne()
    {
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

    void selectingThePageStopsTheAttentionAnimation()
    {
        CNewsReaderPlugin plugin;
        HostControl::recordPluginRequests(&plugin);
        plugin.setIsSelected(true);
        QCOMPARE(HostControl::events(QStringLiteral("animationStop")).size(), 1);
        QVERIFY(plugin.isSelected());

        // Without any news, leaving the page starts no animation.
        plugin.setIsSelected(false);
        QVERIFY(animationModes().isEmpty());
        QVERIFY(!plugin.isSelected());
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

    void recordTypesAreKnownUnderTheirNames_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QMetaType>("type");
        QTest::newRow("entity") << QByteArray("EntityDto::EntityDto")
                                << QMetaType::fromType<EntityDto::EntityDto>();
        QTest::newRow("entities") << QByteArray("QList<EntityDto::EntityDto>")
                                  << QMetaType::fromType<QList<EntityDto::EntityDto>>();
        QTest::newRow("message") << QByteArray("CIncidentCommunication")
                                 << QMetaType::fromType<CIncidentCommunication>();
        QTest::newRow("attachment") << QByteArray("CIncidentAttachment")
                                    << QMetaType::fromType<CIncidentAttachment>();
        QTest::newRow("entry pointer") << QByteArray("std::shared_ptr<Messenger::MessageEntry>")
                                       << QMetaType::fromType<Messenger::MessageEntryPtr>();
        QTest::newRow("entry alias") << QByteArray("Messenger::MessageEntryPtr")
                                     << QMetaType::fromType<Messenger::MessageEntryPtr>();
        QTest::newRow("integers") << QByteArray("QList<int>") << QMetaType::fromType<QList<int>>();
        QTest::newRow("reals") << QByteArray("QList<double>") << QMetaType::fromType<QList<double>>();
    }

    void recordTypesAreKnownUnderTheirNames()
    {
        QFETCH(QByteArray, name);
        QFETCH(QMetaType, type);
        CNewsReaderPlugin plugin;
        QCOMPARE(QMetaType::fromName(name), type);
    }
};

HOST_TEST_MAIN(TestPluginHostContract)
#include "tst_pluginhostcontract.moc"
