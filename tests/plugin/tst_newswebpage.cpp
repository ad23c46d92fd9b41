// The news view's page shows the entry and nothing else: what the entry's content starts goes to the system
// browser (web addresses) or nowhere (local files, other schemes).
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

HOST_TEST_MAIN(TestNewsWebPage)
#include "tst_newswebpage.moc"
