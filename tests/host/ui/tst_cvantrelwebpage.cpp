#include "CVantrelWebPage.h"
#include "HostTestMain.h"

#include <QSignalSpy>
#include <QTest>
#include <QWebEngineView>

namespace {
constexpr int kLoadTimeoutMs = 20000;
const QString kPage = QStringLiteral("<html><body><a id='link' href='https://example.com/offer'>Offer</a>"
                                     "</body></html>");
} // namespace

class TestCVantrelWebPage : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        HostControl::clearEvents();
        HostControl::setOpenExternally(false);
    }

    void sendsClickedLinksToTheSystemBrowser_data()
    {
        QTest::addColumn<bool>("external");
        QTest::newRow("external") << true;
        QTest::newRow("in place") << false;
    }

    void sendsClickedLinksToTheSystemBrowser()
    {
        QFETCH(bool, external);
        QWebEngineView view;
        auto* page = new CVantrelWebPage(&view);
        page->setAlwaysOpenLinkInExternalBrowser(external);
        QCOMPARE(page->alwaysOpenLinkInExternalBrowser(), external);
        view.setPage(page);
        view.resize(400, 300);
        view.show();
        // Content the host sets itself always loads.
        QVERIFY(load(*page));

        QSignalSpy urlChanged(page, &QWebEnginePage::urlChanged);
        page->runJavaScript(QStringLiteral("document.getElementById('link').click();"));
        if (external) {
            QVERIFY(
                QTest::qWaitFor([] { return !HostControl::events("openLink").isEmpty(); }, kLoadTimeoutMs));
            QCOMPARE(HostControl::events("openLink").first().details.value("url").toString(),
                     QStringLiteral("https://example.com/offer"));
            QCOMPARE(page->url(), QUrl("https://news.example.com/"));
        } else {
            // The page navigates in place (the address need not be reachable); nothing goes to the browser.
            QVERIFY(QTest::qWaitFor([&] { return !urlChanged.isEmpty(); }, kLoadTimeoutMs));
            QVERIFY(HostControl::events("openLink").isEmpty());
        }
    }

private:
    bool load(CVantrelWebPage& page)
    {
        QSignalSpy loaded(&page, &QWebEnginePage::loadFinished);
        page.setHtml(kPage, QUrl("https://news.example.com/"));
        return loaded.wait(kLoadTimeoutMs) && loaded.first().first().toBool();
    }
};

HOST_TEST_MAIN(TestCVantrelWebPage)
#include "tst_cvantrelwebpage.moc"
