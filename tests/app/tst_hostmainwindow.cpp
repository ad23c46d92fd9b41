// The host window with several page plugins: which page is shown and which plugin is told it is selected,
// pages a plugin brings forward itself, and toasts the plugins ask for.

#include "FakeListPlugin.h"
#include "HostMainWindow.h"
#include "HostTestMain.h"
#include "PluginHeader.h"
#include "PluginNavigator.h"
#include "ToastPopup.h"

#include <QTest>

class TestHostMainWindow : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    void showsTheFirstVisiblePluginAndTellsItSo_data();
    void showsTheFirstVisiblePluginAndTellsItSo();
    void pluginThatSelectsItselfBecomesTheShownPage();
    void showsTheToastAPluginAsksFor();

private:
    QList<PluginLoadResult> loaded() const;

    QList<FakeListPlugin*> m_plugins;
};

void TestHostMainWindow::init()
{
    for (int i = 0; i < 2; ++i)
        m_plugins.append(new FakeListPlugin);
}

void TestHostMainWindow::cleanup()
{
    qDeleteAll(m_plugins);
    m_plugins.clear();
}

QList<PluginLoadResult> TestHostMainWindow::loaded() const
{
    QList<PluginLoadResult> results;
    for (FakeListPlugin* plugin : m_plugins) {
        PluginLoadResult result;
        result.loaded = true;
        result.instance = plugin;
        result.plugin = plugin;
        results.append(result);
    }
    return results;
}

void TestHostMainWindow::showsTheFirstVisiblePluginAndTellsItSo_data()
{
    QTest::addColumn<bool>("firstHidden");
    QTest::addColumn<int>("shown");
    QTest::newRow("both visible") << false << 0;
    QTest::newRow("first hidden") << true << 1;
}

void TestHostMainWindow::showsTheFirstVisiblePluginAndTellsItSo()
{
    QFETCH(bool, firstHidden);
    QFETCH(int, shown);
    if (firstHidden)
        m_plugins.first()->visibility = PluginHidden;
    HostMainWindow window(QString(), loaded());

    QCOMPARE(window.navigators().size(), 2);
    QVERIFY(window.currentNavigator());
    QCOMPARE(window.currentNavigator()->plugin(), m_plugins.at(shown));
    QVERIFY(m_plugins.at(shown)->isSelected());
    QVERIFY(!m_plugins.at(1 - shown)->isSelected());
    QVERIFY(window.currentNavigator()->header()->isSelected());
    QCOMPARE(window.navigators().at(0)->isHidden(), firstHidden);
}

void TestHostMainWindow::pluginThatSelectsItselfBecomesTheShownPage()
{
    HostMainWindow window(QString(), loaded());
    QCOMPARE(window.currentNavigator()->plugin(), m_plugins.at(0));

    m_plugins.at(1)->setIsSelected(true);
    QCOMPARE(window.currentNavigator()->plugin(), m_plugins.at(1));
    QVERIFY(!m_plugins.at(0)->isSelected());
    QVERIFY(!window.navigators().at(0)->header()->isSelected());
    QVERIFY(window.navigators().at(1)->header()->isSelected());

    // The user clicking the first header brings it back.
    emit window.navigators().at(0)->header()->clicked();
    QVERIFY(m_plugins.at(0)->isSelected());
    QVERIFY(!m_plugins.at(1)->isSelected());
}

void TestHostMainWindow::showsTheToastAPluginAsksFor()
{
    HostMainWindow window(QString(), loaded());
    window.resize(1000, 700);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));

    emit m_plugins.at(1)->pluginToastRequest(m_plugins.at(1), QStringLiteral("<b>Urgent</b><br/>Text"),
                                             "1onToastClicked()", QMessageBox::NoIcon, -1);
    ToastPopup* toast = window.toast();
    QVERIFY(toast->isVisible());
    QVERIFY(toast->text().contains(QStringLiteral("Urgent")));
    QTest::mouseClick(toast, Qt::LeftButton, {}, toast->rect().center());
    QCOMPARE(m_plugins.at(1)->toastClicks, 1);
}

HOST_TEST_MAIN(TestHostMainWindow)
#include "tst_hostmainwindow.moc"
