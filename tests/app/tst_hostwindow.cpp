// The host window with several page plugins: which page is shown and which plugin is told it is selected,
// pages a plugin brings forward itself, and toasts the plugins ask for; the toast itself is placed in the
// window's bottom-right corner, hides itself, and a click calls the slot the plugin named in SLOT() form.

#include "FakeListPlugin.h"
#include "HostMainWindow.h"
#include "HostTestMain.h"
#include "PluginHeader.h"
#include "PluginNavigator.h"
#include "ToastPopup.h"

class TestHostWindow : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    void showsTheFirstVisiblePluginAndTellsItSo_data();
    void showsTheFirstVisiblePluginAndTellsItSo();
    void pluginThatSelectsItselfBecomesTheShownPage();
    void showsTheToastAPluginAsksFor();
    void extractsTheMethodNameOfASlotSignature_data();
    void extractsTheMethodNameOfASlotSignature();
    void clickCallsTheNamedSlotAndCloses();
    void sitsInTheBottomRightCornerAndHidesAfterItsTimeout();
    void clickOnAToastWhoseReceiverIsGoneDoesNothing();

private:
    QList<PluginLoadResult> loaded() const;

    QList<FakeListPlugin*> m_plugins;
};

void TestHostWindow::init()
{
    for (int i = 0; i < 2; ++i)
        m_plugins.append(new FakeListPlugin);
}

void TestHostWindow::cleanup()
{
    qDeleteAll(m_plugins);
    m_plugins.clear();
}

QList<PluginLoadResult> TestHostWindow::loaded() const
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

void TestHostWindow::showsTheFirstVisiblePluginAndTellsItSo_data()
{
    QTest::addColumn<bool>("firstHidden");
    QTest::addColumn<int>("shown");
    QTest::newRow("both visible") << false << 0;
    QTest::newRow("first hidden") << true << 1;
}

void TestHostWindow::showsTheFirstVisiblePluginAndTellsItSo()
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

void TestHostWindow::pluginThatSelectsItselfBecomesTheShownPage()
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

void TestHostWindow::showsTheToastAPluginAsksFor()
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

void TestHostWindow::extractsTheMethodNameOfASlotSignature_data()
{
    QTest::addColumn<QByteArray>("signature");
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("SLOT() form") << QByteArray("1onToastClicked()") << QByteArray("onToastClicked");
    QTest::newRow("SIGNAL() form with parameters")
        << QByteArray("2changed(int,QString)") << QByteArray("changed");
    QTest::newRow("bare name") << QByteArray("refresh") << QByteArray("refresh");
    QTest::newRow("empty") << QByteArray() << QByteArray();
}

void TestHostWindow::extractsTheMethodNameOfASlotSignature()
{
    QFETCH(QByteArray, signature);
    QFETCH(QByteArray, name);
    QCOMPARE(ToastPopup::methodName(signature.isNull() ? nullptr : signature.constData()), name);
}

void TestHostWindow::clickCallsTheNamedSlotAndCloses()
{
    QWidget window;
    window.resize(800, 600);
    auto* toast = new ToastPopup(&window);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    FakeListPlugin plugin;

    toast->showToast(&plugin, QStringLiteral("<b>Urgent</b><br/>Read me"), "1onToastClicked()",
                     QMessageBox::NoIcon, -1);
    QVERIFY(toast->isVisible());
    QVERIFY(toast->text().contains(QStringLiteral("Read me")));
    QTest::mouseClick(toast, Qt::LeftButton, {}, toast->rect().center());
    QCOMPARE(plugin.toastClicks, 1);
    QVERIFY(!toast->isVisible());
}

void TestHostWindow::sitsInTheBottomRightCornerAndHidesAfterItsTimeout()
{
    QWidget window;
    window.resize(800, 600);
    auto* toast = new ToastPopup(&window);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));

    toast->showToast(nullptr, QStringLiteral("Saved"), nullptr, QMessageBox::Information, 100);
    const QRect placed = toast->geometry();
    QVERIFY(window.rect().contains(placed));
    QVERIFY(placed.center().x() > window.width() / 2);
    QVERIFY(placed.center().y() > window.height() / 2);

    // It follows the window's corner.
    window.resize(1000, 700);
    QTRY_VERIFY(toast->geometry().bottomRight().x() > placed.bottomRight().x());

    QTRY_VERIFY_WITH_TIMEOUT(!toast->isVisible(), 2000);
}

void TestHostWindow::clickOnAToastWhoseReceiverIsGoneDoesNothing()
{
    QWidget window;
    window.resize(800, 600);
    auto* toast = new ToastPopup(&window);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    auto* plugin = new FakeListPlugin;
    toast->showToast(plugin, QStringLiteral("Gone soon"), "1onToastClicked()", QMessageBox::Warning, -1);
    delete plugin;
    QTest::mouseClick(toast, Qt::LeftButton, {}, toast->rect().center());
    QVERIFY(!toast->isVisible());
}

HOST_TEST_MAIN(TestHostWindow)
#include "tst_hostwindow.moc"
