// The host's toast: placed in the window's bottom-right corner, hides itself, and a click calls the slot
// the plugin named in SLOT() form.

#include "FakeListPlugin.h"
#include "HostTestMain.h"
#include "ToastPopup.h"

#include <QTest>

class TestToastPopup : public QObject
{
    Q_OBJECT
private slots:
    void extractsTheMethodNameOfASlotSignature_data();
    void extractsTheMethodNameOfASlotSignature();
    void clickCallsTheNamedSlotAndCloses();
    void sitsInTheBottomRightCornerAndHidesAfterItsTimeout();
    void clickOnAToastWhoseReceiverIsGoneDoesNothing();
};

void TestToastPopup::extractsTheMethodNameOfASlotSignature_data()
{
    QTest::addColumn<QByteArray>("signature");
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("SLOT() form") << QByteArray("1onToastClicked()") << QByteArray("onToastClicked");
    QTest::newRow("SIGNAL() form with parameters")
        << QByteArray("2changed(int,QString)") << QByteArray("changed");
    QTest::newRow("bare name") << QByteArray("refresh") << QByteArray("refresh");
    QTest::newRow("empty") << QByteArray() << QByteArray();
}

void TestToastPopup::extractsTheMethodNameOfASlotSignature()
{
    QFETCH(QByteArray, signature);
    QFETCH(QByteArray, name);
    QCOMPARE(ToastPopup::methodName(signature.isNull() ? nullptr : signature.constData()), name);
}

void TestToastPopup::clickCallsTheNamedSlotAndCloses()
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

void TestToastPopup::sitsInTheBottomRightCornerAndHidesAfterItsTimeout()
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

void TestToastPopup::clickOnAToastWhoseReceiverIsGoneDoesNothing()
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

HOST_TEST_MAIN(TestToastPopup)
#include "tst_toastpopup.moc"
