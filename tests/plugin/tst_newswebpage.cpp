// The news view's page shows the entry and nothing else: what the entry's content starts goes to the system
// browser (web and mail addresses) or nowhere (local files, other schemes).
#include "HostTestMain.h"

#include "CNewsWebPage.h"

#include <QSignalSpy>
#include <QWebEngineView>

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

class TestNewsWebPage : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        HostControl::clearEvents();
        HostControl::setOpenExternally(false);
    }

    void judgesEveryKindOfNavigation_data()
    {
        QTest::addColumn<QUrl>("url");
        QTest::addColumn<int>("type");
        QTest::addColumn<bool>("mainFrame");
        QTest::addColumn<int>("verdict");
        using P = QWebEnginePage;
        const QUrl entry(QStringLiteral("data:text/html;charset=UTF-8,%3Cp%3Enews%3C%2Fp%3E"));
        const QUrl site(QStringLiteral("https://example.com/offer"));
        const QUrl file(QStringLiteral("file:///etc/hostname"));
        QTest::newRow("the entry") << entry << int(P::NavigationTypeTyped) << true << int(CNewsWebPage::Show);
        QTest::newRow("the empty page")
            << QUrl("about:blank") << int(P::NavigationTypeTyped) << true << int(CNewsWebPage::Show);
        QTest::newRow("link") << site << int(P::NavigationTypeLinkClicked) << true
                              << int(CNewsWebPage::OpenExternally);
        QTest::newRow("plain web link") << QUrl("http://example.com/") << int(P::NavigationTypeLinkClicked)
                                        << true << int(CNewsWebPage::OpenExternally);
        QTest::newRow("mail") << QUrl("mailto:news@example.com") << int(P::NavigationTypeLinkClicked) << true
                              << int(CNewsWebPage::OpenExternally);
        QTest::newRow("script") << site << int(P::NavigationTypeOther) << true
                                << int(CNewsWebPage::OpenExternally);
        QTest::newRow("form") << site << int(P::NavigationTypeFormSubmitted) << true
                              << int(CNewsWebPage::OpenExternally);
        QTest::newRow("redirect") << site << int(P::NavigationTypeRedirect) << true
                                  << int(CNewsWebPage::OpenExternally);
        QTest::newRow("file link") << file << int(P::NavigationTypeLinkClicked) << true
                                   << int(CNewsWebPage::Ignore);
        QTest::newRow("file script") << file << int(P::NavigationTypeOther) << true
                                     << int(CNewsWebPage::Ignore);
        QTest::newRow("file redirect")
            << file << int(P::NavigationTypeRedirect) << true << int(CNewsWebPage::Ignore);
        QTest::newRow("script scheme") << QUrl("javascript:alert(1)") << int(P::NavigationTypeLinkClicked)
                                       << true << int(CNewsWebPage::Ignore);
        QTest::newRow("data link") << entry << int(P::NavigationTypeLinkClicked) << true
                                   << int(CNewsWebPage::Ignore);
        QTest::newRow("reload") << entry << int(P::NavigationTypeReload) << true << int(CNewsWebPage::Ignore);
        QTest::newRow("history") << site << int(P::NavigationTypeBackForward) << true
                                 << int(CNewsWebPage::Ignore);
        QTest::newRow("frame to a site")
            << site << int(P::NavigationTypeOther) << false << int(CNewsWebPage::Ignore);
        QTest::newRow("frame typed") << site << int(P::NavigationTypeTyped) << false
                                     << int(CNewsWebPage::Ignore);
        QTest::newRow("frame to a file")
            << file << int(P::NavigationTypeOther) << false << int(CNewsWebPage::Ignore);
        QTest::newRow("frame inline")
            << QUrl("about:srcdoc") << int(P::NavigationTypeOther) << false << int(CNewsWebPage::Show);
        QTest::newRow("link in a frame")
            << site << int(P::NavigationTypeLinkClicked) << false << int(CNewsWebPage::OpenExternally);
        QTest::newRow("invalid") << QUrl("http://[::1") << int(P::NavigationTypeTyped) << true
                                 << int(CNewsWebPage::Ignore);
    }
    void judgesEveryKindOfNavigation()
    {
        QFETCH(QUrl, url);
        QFETCH(int, type);
        QFETCH(bool, mainFrame);
        QFETCH(int, verdict);
        QCOMPARE(int(CNewsWebPage::judge(url, QWebEnginePage::NavigationType(type), mainFrame)), verdict);
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
        QTest::newRow("link to a local file")
            << "<a id='l' href='file:///etc/hostname'>x</a>" + later("document.getElementById('l').click();")
            << QStringList() << false;
        QTest::newRow("form") << "<form id='f' method='post' action='https://example.com/post'>"
                                 "<input name='a' value='1'></form>" +
                                     later("document.getElementById('f').submit();")
                              << QStringList{"https://example.com/post"} << false;
        QTest::newRow("new window") << "<a target='_blank' href='https://example.net/' style='position:fixed;"
                                       "left:0;top:0;width:100px;height:100px;display:block'>x</a>"
                                    << QStringList{"https://example.net/"} << true;
        QTest::newRow("scripted new windows")
            << later("window.open('https://example.net/'); window.open('file:///etc/hostname');")
            << QStringList() << false;
        QTest::newRow("refresh") << "<meta http-equiv='refresh' content='0;url=file:///etc/hostname'>"
                                 << QStringList() << false;
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

HOST_TEST_MAIN(TestNewsWebPage)
#include "tst_newswebpage.moc"
