// What the plugin shows for the item the host's navigation tree selects: read marks, the right-hand page,
// the news web page, the conversation header, the one toast and the empty list.
#include "HostTestMain.h"

#include "CCommunicationObjectModel.h"
#include "CNewsFetcher.h"
#include "CNewsReaderPlugin.h"

#include <QLabel>
#include <QSignalSpy>
#include <QStackedWidget>
#include <QWebEnginePage>
#include <QWebEngineView>

namespace {

// Pages of "stackedWidget" and of "newsStack".
enum
{
    EmptyListPage,
    FolderPage,
    NoThreadPage,
    EntryPage
};
enum
{
    ThreadPage,
    NewsViewPage
};

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

// The plugin with its view shown, wired to a minimal navigation tree: what the plugin asks the host to
// select or expand comes straight back, as the host's tree would report it.
struct SelectionScreen
{
    std::unique_ptr<CNewsReaderPlugin> plugin = std::make_unique<CNewsReaderPlugin>();
    QPointer<QWidget> view;

    explicit SelectionScreen(bool withView = true)
    {
        CNewsReaderPlugin* p = plugin.get();
        HostControl::recordPluginRequests(p);
        QObject::connect(p, &CAbstractKolPlugin::listItemSelectionRequest, p,
                         [p](const QModelIndex& index) { p->onPluginItemSelected(index, QModelIndex()); });
        QObject::connect(p, &CAbstractKolPlugin::listItemExpandRequest, p,
                         [p](const QModelIndex& index) { p->onListItemExpanded(index); });
        if (!withView)
            return;
        view = plugin->getPluginView(nullptr);
        view->resize(900, 700);
        view->show();
    }
    ~SelectionScreen() { delete view; }

    int page(const char* name = "stackedWidget") const
    {
        return view->findChild<QStackedWidget*>(QString::fromLatin1(name))->currentIndex();
    }
    QString labelText(const char* name) const
    {
        return view->findChild<QLabel*>(QString::fromLatin1(name))->text();
    }
    CCommunicationObjectModel* model() const
    {
        return static_cast<CCommunicationObjectModel*>(plugin->getPluginModel().get());
    }
    QModelIndex item(const QString& key) const { return model()->indexForKey(key); }
    void select(const QString& key) const { plugin->onPluginItemSelected(item(key), QModelIndex()); }
};

} // namespace

class TestSelection : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        HostControl::resetSwitches();
        HostControl::clearServer();
        HostControl::clearEvents();
        HostControl::setCanUseWebEngine(true);
        // The previous test's entries leave the fetcher through the event loop.
        const auto everything = CNewsFetcher::FilterImportant | CNewsFetcher::FilterOffers |
                                CNewsFetcher::FilterIssues | CNewsFetcher::FilterIncludeHidden;
        QTRY_VERIFY(vantrelApp->getNewsFetcher()->getNewsList(everything).empty());
    }

    void selectingANewsEntryMarksItReadOnceAndShowsItsPage()
    {
        HostControl::addNewsEntry(urgentNews("n0", "New", "-1m"));
        HostControl::addNewsEntry(urgentNews("n1", "Sale", "-1h", "<h1>Spring sale</h1>"));
        SelectionScreen screen;
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
        SelectionScreen screen;
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
        SelectionScreen screen(false);
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
        HostControl::addNewsEntry(urgentNews("u2", "Update", "-2h"));
        QTRY_VERIFY(screen.item("u2").isValid());
        QCOMPARE(HostControl::events("toast").size(), 1);
    }

    void anEmptyListShowsTheEmptyPageUntilTheFirstEntry()
    {
        SelectionScreen screen;
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
};

HOST_TEST_MAIN(TestSelection)
#include "tst_selection.moc"
