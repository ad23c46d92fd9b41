// What the plugin object answers the host and asks of it, on a plugin constructed inside the stand-in host;
// what it shows for the item the host's navigation tree selects: read marks, the right-hand page, the news
// web page, the conversation header, the one toast and the empty list; and the news view's page, which shows
// the entry and nothing else: what the entry's content starts goes to the system browser (web addresses) or
// nowhere (local files, other schemes).
#include "HostTestMain.h"

#include "CNewsWebPage.h"
#include "ConversationScreen.h"
#include "QtHelpersImages.h"

#include <QJsonObject>
#include <QSignalSpy>
#include <QWebEnginePage>
#include <QWebEngineView>

namespace {

bool sameIcon(const QIcon& a, const QIcon& b)
{
    return a.pixmap(32).toImage() == b.pixmap(32).toImage();
}

QJsonObject urgentNews(const QString& id, const QString& title, const QString& published = "-1h",
                       const QString& html = QString())
{
    return {{"id", id},       {"kind", "important"},
            {"title", title}, {"subtitle", QString(title + " in short")},
            {"html", html},   {"published", published},
            {"read", false}};
}

QJsonObject conversation(const QString& id, const QString& created, bool hasThread = false)
{
    return {{"id", id},
            {"subject", "Printer offline"},
            {"hasThread", hasThread},
            {"created", created},
            {"firstMessage", "It stopped printing this morning."}};
}

} // namespace

namespace {

constexpr int kLoadTimeoutMs = 20000;
// Every entry ends by sending the page here; once it arrives, whatever the entry tried before was decided.
const QString kSentinel = QStringLiteral("https://sentinel.example/");

QStringList openedLinks()
{
    QStringList urls;
    for (const HostControl::Event& event : HostControl::events(QStringLiteral("openLink")))
        urls << event.details.value(QStringLiteral("url")).toString();
    return urls;
}

} // namespace

class TestPluginHostContract : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        QVERIFY(emptyServer());
        HostControl::clearEvents();
        HostControl::setOpenExternally(false);
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

    void selectingANewsEntryMarksItReadOnceAndShowsItsPage()
    {
        HostControl::addNewsEntry(urgentNews("n0", "New", "-1m"));
        HostControl::addNewsEntry(urgentNews("n1", "Sale", "-1h", "<h1>Spring sale</h1>"));
        ConversationScreen screen;
        QTRY_VERIFY(screen.item("n1").isValid());
        screen.select("folder-0");
        QTRY_COMPARE(screen.page(), int(FolderPage));
        QSignalSpy readRequests(screen.model(), &CCommunicationObjectModel::markNewsEntryReadRequest);
        HostControl::clearEvents();
        auto* webView = screen.view->findChild<QWebEngineView*>();
        QSignalSpy loads(webView, &QWebEngineView::loadFinished);

        screen.select("n1");
        screen.select("n1");
        QCOMPARE(readRequests.size(), 1);
        QCOMPARE(screen.page("newsStack"), int(NewsViewPage));
        QTRY_COMPARE(screen.page(), int(EntryPage));
        QVERIFY(!HostControl::events("hideEmptyList").isEmpty());
        QTRY_VERIFY(HostControl::isNewsEntryRead("n1"));
        if (!QTest::qWaitFor([&] { return !loads.isEmpty(); }, 15000))
            QSKIP("QtWebEngine does not load pages here; the pages were checked");
        const auto pageHtml = [webView] {
            auto html = std::make_shared<QString>();
            webView->page()->toHtml([html](const QString& text) { *html = text; });
            return html;
        };
        auto html = pageHtml();
        QTRY_VERIFY_WITH_TIMEOUT(html->contains("Spring sale"), 15000);
        // A folder clears the page.
        loads.clear();
        screen.select("folder-0");
        QTRY_VERIFY_WITH_TIMEOUT(!loads.isEmpty(), 15000);
        html = pageHtml();
        QTRY_VERIFY_WITH_TIMEOUT(!html->isEmpty(), 15000);
        QVERIFY(!html->contains("Spring sale"));
    }

    void aConversationShowsItsHeaderAndWhetherItsThreadIsStillComing_data()
    {
        QTest::addColumn<QString>("created");
        QTest::addColumn<bool>("hasThread");
        QTest::addColumn<int>("page");
        QTest::addColumn<int>("noThreadPage");
        QTest::newRow("thread") << "-30s" << true << int(EntryPage) << 0;
        QTest::newRow("created 30 s ago") << "-30s" << false << int(NoThreadPage) << 1;
        QTest::newRow("created 2 min ago") << "-2m" << false << int(NoThreadPage) << 0;
    }

    void aConversationShowsItsHeaderAndWhetherItsThreadIsStillComing()
    {
        QFETCH(QString, created);
        QFETCH(bool, hasThread);
        QFETCH(int, page);
        QFETCH(int, noThreadPage);
        HostControl::addConversation(conversation("c1", created, hasThread));
        ConversationScreen screen;
        QTRY_VERIFY(screen.item("c1").isValid());
        HostControl::clearEvents();
        screen.select("c1");
        QCOMPARE(screen.page("newsStack"), int(ThreadPage));
        QTRY_COMPARE(screen.page(), page);
        QCOMPARE(screen.labelText("issueTitle"), "Printer offline");
        QCOMPARE(screen.labelText("issueState"), "In progress");
        if (hasThread)
            return;
        QCOMPARE(screen.page("noThreadStack"), noThreadPage);
        // Until support answers, the page repeats what the user asked.
        QCOMPARE(screen.labelText("noThreadSubject"), "Printer offline");
        QCOMPARE(screen.labelText("noThreadFirstMessage"), "It stopped printing this morning.");
        if (noThreadPage == 0)
            QCOMPARE(screen.labelText("noMessagesLabel"),
                     "Support has not answered yet. You will find the answer here.");
        // The list is not empty, but the no-thread page leaves the host's list side alone.
        QVERIFY(HostControl::events("hideEmptyList").isEmpty());
        QCOMPARE(screen.labelText("issueCreateDate"),
                 screen.item("c1").data(CCommunicationObjectModel::DateTextRole).toString());
    }

    void urgentNewsRaiseOneToastPerPluginLifetime()
    {
        ConversationScreen screen(false);
        QJsonObject offer = urgentNews("o1", "Offer");
        offer.insert("kind", "offer");
        HostControl::addNewsEntry(offer);
        QTRY_VERIFY(screen.item("o1").isValid());
        QVERIFY(HostControl::events("toast").isEmpty());
        HostControl::addNewsEntry(urgentNews("u1", "Outage"));
        QTRY_COMPARE(HostControl::events("toast").size(), 1);
        const QVariantMap toast = HostControl::events("toast").first().details;
        QCOMPARE(toast.value("text").toString(), "<b>Outage</b><br/>Outage in short");
        QCOMPARE(toast.value("slot").toString(), "1onToastClicked()");
        // Clicking the toast brings the page up.
        QVERIFY(QMetaObject::invokeMethod(screen.plugin.get(), "onToastClicked"));
        QVERIFY(screen.plugin->isSelected());
        HostControl::addNewsEntry(urgentNews("u2", "Update", "-2h"));
        QTRY_VERIFY(screen.item("u2").isValid());
        QCOMPARE(HostControl::events("toast").size(), 1);
    }

    void anEmptyListShowsTheEmptyPageUntilTheFirstEntry()
    {
        ConversationScreen screen;
        connect(screen.plugin.get(), &CAbstractKolPlugin::showEmptyListWidgetRequest, screen.view,
                [&screen](QWidget* widget) { widget->setParent(screen.view, Qt::Window); });
        screen.plugin->onSyncViewRequest();
        QTRY_VERIFY(!HostControl::events("showEmptyList").isEmpty());
        QCOMPARE(screen.page(), int(EmptyListPage));
        QVERIFY(HostControl::events("hideEmptyList").isEmpty());
        HostControl::addNewsEntry(urgentNews("n1", "Sale"));
        QTRY_COMPARE(screen.page(), int(EntryPage));
        QVERIFY(!HostControl::events("hideEmptyList").isEmpty());
    }

    void theViewShowsOnlyTheEntry_data()
    {
        QTest::addColumn<QString>("body");
        QTest::addColumn<QStringList>("opened");
        QTest::addColumn<bool>("userClicks"); // at the page's top left corner
        const auto later = [](const QString& script) {
            return QStringLiteral("<script>setTimeout(function(){%1}, 100);</script>").arg(script);
        };
        QTest::newRow("script to a local file")
            << later("location.href='file:///etc/hostname';") << QStringList() << false;
        QTest::newRow("script to a site")
            << later("location.href='https://example.org/';") << QStringList{"https://example.org/"} << false;
        QTest::newRow("form") << "<form id='f' method='post' action='https://example.com/post'>"
                                 "<input name='a' value='1'></form>" +
                                     later("document.getElementById('f').submit();")
                              << QStringList{"https://example.com/post"} << false;
        QTest::newRow("new window") << "<a target='_blank' href='https://example.net/' style='position:fixed;"
                                       "left:0;top:0;width:100px;height:100px;display:block'>x</a>"
                                    << QStringList{"https://example.net/"} << true;
        QTest::newRow("frames") << "<iframe src='file:///etc/hostname'></iframe>"
                                   "<iframe src='https://example.com/'></iframe>"
                                << QStringList() << false;
    }
    void theViewShowsOnlyTheEntry()
    {
        QFETCH(QString, body);
        QFETCH(QStringList, opened);
        QFETCH(bool, userClicks);
        QWebEngineView view;
        auto* page = new CNewsWebPage(&view);
        view.setPage(page);
        view.resize(400, 300);
        view.show();
        const QString sentinel =
            QStringLiteral("<script>setTimeout(function(){location.href='%1';}, 1500);</script>")
                .arg(kSentinel);
        QSignalSpy loaded(page, &QWebEnginePage::loadFinished);
        page->setHtml("<html><head><title>News entry</title></head><body>" + body + sentinel +
                          "</body></html>",
                      QUrl());
        QVERIFY(loaded.wait(kLoadTimeoutMs));
        if (userClicks) {
            QVERIFY(QTest::qWaitFor([&] { return view.focusProxy(); }, kLoadTimeoutMs));
            QTest::mouseClick(view.focusProxy(), Qt::LeftButton, Qt::NoModifier, QPoint(20, 20));
        }
        QVERIFY(QTest::qWaitFor([] { return openedLinks().contains(kSentinel); }, kLoadTimeoutMs));
        QCOMPARE(openedLinks(), opened + QStringList{kSentinel});
        QCOMPARE(page->url().scheme(), QStringLiteral("data"));
        QCOMPARE(page->title(), QStringLiteral("News entry"));
    }
};

HOST_TEST_MAIN(TestPluginHostContract)
#include "tst_pluginhostcontract.moc"
