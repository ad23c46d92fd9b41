#include "BalloonMessage.h"
#include "HostTestMain.h"

#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QScreen>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>
#include <QVBoxLayout>

namespace {
// Long enough that a balloon meant to stay would have expired by then.
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
