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
// Long enough that a balloon meant to stay would have expired by then.
constexpr int kStayCheckMs = 150;

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

    void recordsWhatWasAsked()
    {
        const QRect rect(2, 3, 40, 10);
        issueBalloonMessage(m_edit, "Please specify a subject.", QMessageBox::Critical, rect, 5000);
        const auto events = HostControl::events("balloon");
        QCOMPARE(events.size(), 1);
        const QVariantMap details = events.first().details;
        QCOMPARE(details.value("text").toString(), QStringLiteral("Please specify a subject."));
        QCOMPARE(details.value("icon").toInt(), int(QMessageBox::Critical));
        QCOMPARE(details.value("timeout").toUInt(), 5000u);
        QCOMPARE(details.value("widget").toString(), QStringLiteral("subjectEdit"));
        QCOMPARE(details.value("rect").toRect(), rect);

        // Without a widget the request is only recorded.
        QVERIFY(!issueBalloonMessage(nullptr, "Nowhere", QMessageBox::Critical));
        QCOMPARE(HostControl::events("balloon").size(), 2);
        QCOMPARE(HostControl::events("balloon").last().details.value("widget").toString(), QString());
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

    void permanentTimeoutsKeepItOpen_data()
    {
        QTest::addColumn<unsigned>("timeout");
        QTest::newRow("zero") << 0u;
        QTest::newRow("all bits") << 0xFFFFFFFFu;
    }

    void permanentTimeoutsKeepItOpen()
    {
        QFETCH(unsigned, timeout);
        QPointer<CAbstractPopupAssistant> balloon =
            issueBalloonMessage(m_edit, "Stays", QMessageBox::Critical, QRect(), timeout);
        QTest::qWait(kStayCheckMs);
        QVERIFY(balloon);
        QVERIFY(balloon->isVisible());
    }

    void replacesThePreviousBalloonOfTheSameWidgetOnly()
    {
        QPointer<CAbstractPopupAssistant> first =
            issueBalloonMessage(m_edit, "First", QMessageBox::Critical, QRect(), 0);
        QPointer<CAbstractPopupAssistant> second =
            issueBalloonMessage(m_edit, "Second", QMessageBox::Critical, QRect(), 0);
        QVERIFY(first != second);
        QVERIFY(!first || !first->isVisible());
        QVERIFY(QTest::qWaitFor([&] { return first.isNull(); }));
        QVERIFY(second);
        QVERIFY(second->isVisible());
        QCOMPARE(second->text(), QStringLiteral("Second"));
        QCOMPARE(HostControl::events("balloon").size(), 2);

        // Balloons of other widgets stay.
        auto* other = new QLabel("other", m_window);
        m_window->layout()->addWidget(other);
        QPointer<CAbstractPopupAssistant> third =
            issueBalloonMessage(other, "On label", QMessageBox::Critical, QRect(), 0);
        QTest::qWait(10);
        QVERIFY(second && third);
        QVERIFY(second->isVisible());
    }

    void pointsAtTheBottomCentreOfTheRectangle()
    {
        const QRect rect(10, 0, 60, m_edit->height());
        QPointer<CAbstractPopupAssistant> balloon =
            issueBalloonMessage(m_edit, "Here", QMessageBox::Critical, rect, 0);
        QVERIFY(balloon);
        const QPoint anchor = m_edit->mapToGlobal(QPoint(rect.center().x(), rect.bottom()));
        const QRect geometry = balloon->frameGeometry();
        QVERIFY2(geometry.left() < anchor.x() && geometry.right() > anchor.x(),
                 "the balloon is not under the rectangle");
        // Below the anchor, with only the shadow margin above the arrow tip.
        QVERIFY2(qAbs(geometry.top() - anchor.y()) <= 12,
                 qPrintable(QStringLiteral("top %1, anchor %2").arg(geometry.top()).arg(anchor.y())));
    }

    void staysOnTheScreenNearItsEdges()
    {
        const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
        m_window->move(screen.right() - m_window->width() + 1, screen.bottom() - m_window->height() + 1);
        auto* corner = new QLabel("corner", m_window);
        corner->setGeometry(m_window->width() - 10, m_window->height() - 10, 10, 10);
        corner->show();
        QTest::qWait(10);
        QPointer<CAbstractPopupAssistant> balloon = issueBalloonMessage(
            corner, "A rather long text that makes the balloon wide enough to need moving.",
            QMessageBox::Critical, QRect(), 0);
        QVERIFY(balloon);
        QVERIFY2(screen.contains(balloon->frameGeometry()), qPrintable(QStringLiteral("balloon %1,%2 %3x%4")
                                                                           .arg(balloon->x())
                                                                           .arg(balloon->y())
                                                                           .arg(balloon->width())
                                                                           .arg(balloon->height())));
        // No room below the corner: the balloon opens above it.
        QVERIFY(balloon->frameGeometry().bottom() <= corner->mapToGlobal(QPoint(0, corner->height())).y());
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
