// What the plugin shows for the item the host's navigation tree selects: read marks, the right-hand page,
// the news web page, the conversation header, folder activation, the one toast and the empty list.
#include "HostTestMain.h"

#include "CCommunicationObjectModel.h"
#include "CNewsFetcher.h"
#include "CNewsReaderPlugin.h"
#include "CVantrelApp.h"

#include <QJsonObject>
#include <QLabel>
#include <QSignalSpy>
#include <QStackedWidget>
#include <QToolButton>
#include <QWebEnginePage>
#include <QWebEngineView>

#include <memory>

namespace {

const QSize kViewSize(900, 700);
// Pages of "stackedWidget".
constexpr int kEmptyListPage = 0;
constexpr int kFolderPage = 1;
constexpr int kNoThreadPage = 2;
constexpr int kEntryPage = 3;
// Pages of "newsStack".
constexpr int kThreadPage = 0;
constexpr int kNewsViewPage = 1;
// A web page that has not loaded by then never will in this environment.
constexpr int kWebEngineTimeoutMs = 15000;

QJsonObject urgentNews(const QString& id, const QString& title, const QString& published,
                       const QString& html = QString())
{
    return {{QStringLiteral("id"), id},
            {QStringLiteral("kind"), QStringLiteral("important")},
            {QStringLiteral("title"), title},
            {QStringLiteral("subtitle"), QString(title + QStringLiteral(" in short"))},
            {QStringLiteral("html"), html},
            {QStringLiteral("published"), published},
            {QStringLiteral("read"), false}};
}

QJsonObject conversationWithoutThread(const QString& id, const QString& created)
{
    return {{QStringLiteral("id"), id},
            {QStringLiteral("subject"), QStringLiteral("Printer offline")},
            {QStringLiteral("state"), QStringLiteral("OPEN")},
            {QStringLiteral("hasThread"), false},
            {QStringLiteral("created"), created}};
}

// The plugin with its view shown, wired to a minimal navigation tree: what the plugin asks the host to
// select or expand comes straight back, as the host's tree would report it.
struct SelectionScreen
{
    std::unique_ptr<CNewsReaderPlugin> plugin = std::make_unique<CNewsReaderPlugin>();
    QPointer<QWidget> view;
    // Every page "stackedWidget" switched to, in order.
    QList<int> pages;

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
        if (!view)
            return;
        view->resize(kViewSize);
        view->show();
        QObject::connect(stack("stackedWidget"), &QStackedWidget::currentChanged, view,
                         [this](int page) { pages << page; });
    }
    ~SelectionScreen() { delete view; }

    QStackedWidget* stack(const char* name) const
    {
        return view ? view->findChild<QStackedWidget*>(QString::fromLatin1(name)) : nullptr;
    }
    QString labelText(const char* name) const
    {
        auto* label = view ? view->findChild<QLabel*>(QString::fromLatin1(name)) : nullptr;
        return label ? label->text() : QStringLiteral("<no label>");
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
        HostControl::setCanUseWebEngine(false);
        // The previous test's entries leave the fetcher through the event loop.
        const auto everything = CNewsFetcher::FilterImportant | CNewsFetcher::FilterOffers |
                                CNewsFetcher::FilterIssues | CNewsFetcher::FilterIncludeHidden;
        QTRY_VERIFY(vantrelApp->getNewsFetcher()->getNewsList(everything).empty());
    }

    void selectingANewsEntryMarksItReadOnceAndShowsTheWebPage()
    {
        // The web view is the last page of "newsStack"; without it the stack has no news page to show.
        HostControl::setCanUseWebEngine(true);
        // The newer entry is the one the list starts with; the test selects the other one.
        HostControl::addNewsEntry(
            urgentNews(QStringLiteral("n0"), QStringLiteral("New"), QStringLiteral("-1m")));
        HostControl::addNewsEntry(
            urgentNews(QStringLiteral("n1"), QStringLiteral("Sale"), QStringLiteral("-1h")));
        SelectionScreen screen;
        QVERIFY(screen.view);
        QTRY_VERIFY(screen.item(QStringLiteral("n1")).isValid());
        screen.select(QStringLiteral("folder-0"));
        QTRY_COMPARE(screen.stack("stackedWidget")->currentIndex(), kFolderPage);
        QSignalSpy readRequests(screen.model(), &CCommunicationObjectModel::markNewsEntryReadRequest);
        HostControl::clearEvents();

        screen.select(QStringLiteral("n1"));
        QCOMPARE(readRequests.size(), 1);
        QCOMPARE(readRequests.at(0).at(0).toString(), QStringLiteral("n1"));
        QVERIFY(screen.item(QStringLiteral("n1")).data(CCommunicationObjectModel::ReadRole).toBool());
        QCOMPARE(screen.stack("newsStack")->currentIndex(), kNewsViewPage);
        // The right-hand page follows once the selection has settled.
        QCOMPARE(screen.stack("stackedWidget")->currentIndex(), kFolderPage);
        QTRY_COMPARE(screen.stack("stackedWidget")->currentIndex(), kEntryPage);
        QVERIFY(!HostControl::events(QStringLiteral("hideEmptyList")).isEmpty());
        QTRY_VERIFY(HostControl::isNewsEntryRead(QStringLiteral("n1")));

        screen.select(QStringLiteral("n1"));
        QCOMPARE(readRequests.size(), 1);
    }

    void theWebPageShowsTheEntryAndAFolderClearsIt()
    {
        HostControl::setCanUseWebEngine(true);
        HostControl::addNewsEntry(urgentNews(QStringLiteral("n1"), QStringLiteral("Sale"),
                                             QStringLiteral("-1h"), QStringLiteral("<h1>Spring sale</h1>")));
        SelectionScreen screen;
        QVERIFY(screen.view);
        auto* webView = screen.view->findChild<QWebEngineView*>();
        QVERIFY(webView);
        QTRY_VERIFY(screen.item(QStringLiteral("n1")).isValid());
        QSignalSpy loads(webView, &QWebEngineView::loadFinished);

        screen.select(QStringLiteral("n1"));
        QTRY_COMPARE(screen.stack("stackedWidget")->currentIndex(), kEntryPage);
        QCOMPARE(screen.stack("newsStack")->currentWidget(), webView);
        if (!QTest::qWaitFor([&] { return !loads.isEmpty(); }, kWebEngineTimeoutMs))
            QSKIP("QtWebEngine does not load pages here; the pages were checked");
        const auto pageHtml = [webView] {
            auto html = std::make_shared<QString>();
            webView->page()->toHtml([html](const QString& text) { *html = text; });
            return html;
        };
        auto html = pageHtml();
        QTRY_VERIFY_WITH_TIMEOUT(html->contains(QStringLiteral("Spring sale")), kWebEngineTimeoutMs);

        loads.clear();
        screen.select(QStringLiteral("folder-0"));
        QTRY_COMPARE(screen.stack("stackedWidget")->currentIndex(), kFolderPage);
        QTRY_VERIFY_WITH_TIMEOUT(!loads.isEmpty(), kWebEngineTimeoutMs);
        html = pageHtml();
        QTRY_VERIFY_WITH_TIMEOUT(!html->isEmpty(), kWebEngineTimeoutMs);
        QVERIFY(!html->contains(QStringLiteral("Spring sale")));
    }

    void activatingACollapsedFolderSelectsItsFirstEntryWithoutShowingTheFolder()
    {
        HostControl::setCanUseWebEngine(true);
        HostControl::addNewsEntry(
            urgentNews(QStringLiteral("n1"), QStringLiteral("Sale"), QStringLiteral("-1h")));
        HostControl::addConversation(conversationWithoutThread(QStringLiteral("c1"), QStringLiteral("-1d")));
        SelectionScreen screen;
        QVERIFY(screen.view);
        QTRY_VERIFY(screen.item(QStringLiteral("c1")).isValid());
        const QString folderKey =
            CCommunicationObjectModel::folderKey(CCommunicationObjectModel::kImportantFolderId);
        screen.select(QStringLiteral("c1"));
        QTRY_COMPARE(screen.stack("stackedWidget")->currentIndex(), kNoThreadPage);
        screen.plugin->onListItemCollapsed(screen.item(folderKey));
        QVERIFY(!screen.item(folderKey).data(CCommunicationObjectModel::ExpandedRole).toBool());
        screen.pages.clear();
        HostControl::clearEvents();

        // A click on the folder: the tree selects it and activates it in the same pass.
        screen.select(folderKey);
        screen.plugin->onPluginItemActivated(screen.item(folderKey));
        QTRY_COMPARE(screen.stack("stackedWidget")->currentIndex(), kEntryPage);
        QCOMPARE(screen.pages, QList<int>{kEntryPage});
        QVERIFY(screen.item(folderKey).data(CCommunicationObjectModel::ExpandedRole).toBool());
        const QList<HostControl::Event> selections = HostControl::events(QStringLiteral("select"));
        QCOMPARE(selections.size(), 1);
        QCOMPARE(selections.at(0).details.value(QStringLiteral("key")).toString(), QStringLiteral("n1"));
        QCOMPARE(screen.stack("newsStack")->currentIndex(), kNewsViewPage);
    }

    void aConversationWithoutThreadSaysWhetherItsThreadIsStillComing_data()
    {
        QTest::addColumn<QString>("created");
        QTest::addColumn<int>("noThreadPage");
        QTest::newRow("created 30 s ago") << QStringLiteral("-30s") << 1;
        QTest::newRow("created 2 min ago") << QStringLiteral("-2m") << 0;
    }

    void aConversationWithoutThreadSaysWhetherItsThreadIsStillComing()
    {
        QFETCH(QString, created);
        QFETCH(int, noThreadPage);
        HostControl::addConversation(conversationWithoutThread(QStringLiteral("c1"), created));
        SelectionScreen screen;
        QVERIFY(screen.view);
        QTRY_VERIFY(screen.item(QStringLiteral("c1")).isValid());
        HostControl::clearEvents();

        screen.select(QStringLiteral("c1"));
        QCOMPARE(screen.stack("newsStack")->currentIndex(), kThreadPage);
        QTRY_COMPARE(screen.stack("stackedWidget")->currentIndex(), kNoThreadPage);
        QCOMPARE(screen.stack("noThreadStack")->currentIndex(), noThreadPage);
        // The list is not empty, but the no-thread page leaves the host's list side alone.
        QVERIFY(HostControl::events(QStringLiteral("hideEmptyList")).isEmpty());
        QCOMPARE(screen.labelText("issueTitle"), QStringLiteral("Printer offline"));
        QCOMPARE(screen.labelText("issueState"), QStringLiteral("In progress"));
        QCOMPARE(screen.view->findChild<QToolButton*>(QStringLiteral("issueStateButton"))->text(),
                 QStringLiteral("In progress"));
        QCOMPARE(screen.labelText("issueCreateDate"),
                 screen.item(QStringLiteral("c1")).data(CCommunicationObjectModel::DateTextRole).toString());
    }

    void aConversationWithThreadShowsTheThreadPage()
    {
        QJsonObject conversation = conversationWithoutThread(QStringLiteral("c1"), QStringLiteral("-30s"));
        conversation.insert(QStringLiteral("hasThread"), true);
        HostControl::addConversation(conversation);
        SelectionScreen screen;
        QVERIFY(screen.view);
        QTRY_VERIFY(screen.item(QStringLiteral("c1")).isValid());

        screen.select(QStringLiteral("c1"));
        QTRY_COMPARE(screen.stack("stackedWidget")->currentIndex(), kEntryPage);
        QCOMPARE(screen.stack("newsStack")->currentIndex(), kThreadPage);
    }

    void urgentNewsRaiseOneToastPerPluginLifetime()
    {
        SelectionScreen screen(false);
        HostControl::addNewsEntry(
            urgentNews(QStringLiteral("u1"), QStringLiteral("Outage"), QStringLiteral("-1h")));
        QTRY_VERIFY(screen.item(QStringLiteral("u1")).isValid());
        QList<HostControl::Event> toasts = HostControl::events(QStringLiteral("toast"));
        QCOMPARE(toasts.size(), 1);
        const QVariantMap toast = toasts.at(0).details;
        QCOMPARE(toast.value(QStringLiteral("text")).toString(),
                 QStringLiteral("<b>Outage</b><br/>Outage in short"));
        QCOMPARE(toast.value(QStringLiteral("slot")).toString(), QStringLiteral("1onToastClicked()"));
        QCOMPARE(toast.value(QStringLiteral("icon")).toInt(), int(QMessageBox::NoIcon));
        QCOMPARE(toast.value(QStringLiteral("timeout")).toInt(), -1);

        HostControl::addNewsEntry(
            urgentNews(QStringLiteral("u2"), QStringLiteral("Update"), QStringLiteral("-2h")));
        QTRY_VERIFY(screen.item(QStringLiteral("u2")).isValid());
        QCOMPARE(HostControl::events(QStringLiteral("toast")).size(), 1);
    }

    void theToastWaitsForUrgentNews()
    {
        SelectionScreen screen(false);
        QJsonObject offer = urgentNews(QStringLiteral("o1"), QStringLiteral("Offer"), QStringLiteral("-1h"));
        offer.insert(QStringLiteral("kind"), QStringLiteral("offer"));
        HostControl::addNewsEntry(offer);
        QTRY_VERIFY(screen.item(QStringLiteral("o1")).isValid());
        QVERIFY(HostControl::events(QStringLiteral("toast")).isEmpty());

        HostControl::addNewsEntry(
            urgentNews(QStringLiteral("u1"), QStringLiteral("Outage"), QStringLiteral("-1h")));
        QTRY_COMPARE(HostControl::events(QStringLiteral("toast")).size(), 1);
    }

    // The population that runs while the plugin is created already finds them: that was the one toast,
    // asked for before anyone could listen; later populations never ask again.
    void urgentNewsListedAtCreationUseUpTheOneToast()
    {
        HostControl::addNewsEntry(
            urgentNews(QStringLiteral("u1"), QStringLiteral("Outage"), QStringLiteral("-1h")));
        QTRY_VERIFY(!vantrelApp->getNewsFetcher()->getNewsList(CNewsFetcher::FilterImportant).empty());
        CNewsReaderPlugin plugin;
        auto* model = static_cast<CCommunicationObjectModel*>(plugin.getPluginModel().get());
        QVERIFY(model->indexForKey(QStringLiteral("u1")).isValid());
        HostControl::recordPluginRequests(&plugin);
        HostControl::emitNewsChanged();
        HostControl::addNewsEntry(
            urgentNews(QStringLiteral("u2"), QStringLiteral("Update"), QStringLiteral("-1h")));
        QTRY_VERIFY(model->indexForKey(QStringLiteral("u2")).isValid());
        QTest::qWait(50);
        QVERIFY(HostControl::events(QStringLiteral("toast")).isEmpty());
    }

    void anEmptyListShowsTheEmptyPageAndAsksForTheEmptyListWidget()
    {
        SelectionScreen screen;
        QVERIFY(screen.view);
        QObject::connect(screen.plugin.get(), &CAbstractKolPlugin::showEmptyListWidgetRequest, screen.view,
                         [&screen](QWidget* widget) {
                             QVERIFY(widget);
                             widget->setParent(screen.view, Qt::Window);
                         });
        screen.plugin->onSyncViewRequest();
        QTRY_VERIFY(!HostControl::events(QStringLiteral("showEmptyList")).isEmpty());
        QCOMPARE(screen.stack("stackedWidget")->currentIndex(), kEmptyListPage);
        QVERIFY(HostControl::events(QStringLiteral("hideEmptyList")).isEmpty());

        // The first entry ends the empty list: the start item is shown and the host drops the widget.
        HostControl::addNewsEntry(
            urgentNews(QStringLiteral("n1"), QStringLiteral("Sale"), QStringLiteral("-1h")));
        QTRY_COMPARE(screen.stack("stackedWidget")->currentIndex(), kEntryPage);
        QVERIFY(!HostControl::events(QStringLiteral("hideEmptyList")).isEmpty());
    }
};

HOST_TEST_MAIN(TestSelection)
#include "tst_selection.moc"
