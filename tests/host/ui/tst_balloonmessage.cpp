#include "BalloonMessage.h"
#include "HostTestMain.h"

#include <QAccessible>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QScopeGuard>
#include <QScreen>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>
#include <QVBoxLayout>
#include <QtGui/private/qguiapplication_p.h>
#include <qpa/qplatformaccessibility.h>
#include <qpa/qplatformintegration.h>

namespace {
// The objects of the alerts told to assistive technology.
QList<QPointer<QObject>> s_alerts;

void recordAlert(QAccessibleEvent* event)
{
    if (event->type() == QAccessible::Alert)
        s_alerts.append(event->object());
}

// The toolkit passes events on only while a screen reader listens; the test is one.
void listenAsScreenReader(bool listen)
{
    QPlatformAccessibility* accessibility = QGuiApplicationPrivate::platformIntegration()->accessibility();
    QVERIFY(accessibility);
    accessibility->setActive(listen);
    QAccessible::installUpdateHandler(listen ? recordAlert : nullptr);
    s_alerts.clear();
}
} // namespace

class TestBalloonMessage : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        HostControl::clearEvents();
        HostControl::setShowBalloons(true);
        m_window = new QWidget;
        m_window->resize(400, 300);
        m_window->move(100, 100);
        auto* layout = new QVBoxLayout(m_window);
        m_edit = new QLineEdit(m_window);
        m_edit->setObjectName("subjectEdit");
        layout->addWidget(m_edit);
        layout->addStretch();
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window));
    }

    void cleanup()
    {
        delete m_window;
        m_window = nullptr;
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    void showsOnlyWhileBalloonsAreOn_data()
    {
        QTest::addColumn<bool>("show");
        QTest::newRow("on") << true;
        QTest::newRow("off") << false;
    }

    void showsOnlyWhileBalloonsAreOn()
    {
        QFETCH(bool, show);
        HostControl::setShowBalloons(show);
        listenAsScreenReader(true);
        auto stopListening = qScopeGuard([] { listenAsScreenReader(false); });
        QPointer<CAbstractPopupAssistant> balloon =
            issueBalloonMessage(m_edit, "Text", QMessageBox::Warning, QRect(), 5000);
        QVERIFY(balloon);
        QCOMPARE(balloon->isVisible(), show);
        // A shown balloon is announced once, as an alert that reads its text; a hidden one is not.
        QCOMPARE(s_alerts.count(balloon.data()), show ? 1 : 0);
        QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(balloon);
        QVERIFY(accessible);
        QCOMPARE(accessible->role(), QAccessible::AlertMessage);
        QCOMPARE(accessible->text(QAccessible::Name), QStringLiteral("Text"));
        QCOMPARE(balloon->text(), QStringLiteral("Text"));
        QCOMPARE(balloon->icon(), QMessageBox::Warning);
        QCOMPARE(balloon->target(), m_edit);
        QCOMPARE(HostControl::events("balloon").size(), 1);
    }

    void closesAfterTimeoutTargetLossOrCloseButton_data()
    {
        QTest::addColumn<QString>("how");
        for (const char* how : {"timeout", "target destroyed", "close button"})
            QTest::newRow(how) << how;
    }

    void closesAfterTimeoutTargetLossOrCloseButton()
    {
        QFETCH(QString, how);
        constexpr unsigned shortTimeout = 50;
        QPointer<CAbstractPopupAssistant> balloon =
            issueBalloonMessage(m_edit, "Bye", QMessageBox::Critical, QRect(),
                                how == QLatin1String("timeout") ? shortTimeout : 0);
        QVERIFY(balloon);
        QSignalSpy closed(balloon.data(), &CAbstractPopupAssistant::closed);
        if (how == QLatin1String("target destroyed")) {
            delete m_edit;
            m_edit = nullptr;
        } else if (how == QLatin1String("close button")) {
            auto* closeButton = balloon->findChild<QToolButton*>("balloonClose");
            QVERIFY(closeButton);
            QVERIFY(!closeButton->icon().isNull());
            closeButton->click();
        }
        QVERIFY(QTest::qWaitFor([&] { return balloon.isNull(); }));
        QCOMPARE(closed.size(), 1);
    }

    void paintsARoundedBubbleWithItsArrow()
    {
        QPointer<CAbstractPopupAssistant> balloon = issueBalloonMessage(
            m_edit, "Please specify a subject of your inquiry to start chat with support.",
            QMessageBox::Critical, QRect(), 0);
        QVERIFY(balloon);
        const QImage image = balloon->grab().toImage();
        const QPoint anchor =
            balloon->mapFromGlobal(m_edit->mapToGlobal(QPoint(m_edit->width() / 2, m_edit->height())));
        // Corners are outside the rounded bubble; the middle is the balloon's background.
        QCOMPARE(qAlpha(image.pixel(0, 0)), 0);
        QCOMPARE(qAlpha(image.pixel(image.width() - 1, image.height() - 1)), 0);
        const QColor middle = image.pixelColor(image.width() / 2, image.height() - 14);
        QCOMPARE(middle.alpha(), 255);
        // Just below the arrow tip the arrow is filled.
        QCOMPARE(qAlpha(image.pixel(anchor.x(), anchor.y() + 6)), 255);
    }

private:
    QWidget* m_window = nullptr;
    QLineEdit* m_edit = nullptr;
};

HOST_TEST_MAIN(TestBalloonMessage)
#include "tst_balloonmessage.moc"
