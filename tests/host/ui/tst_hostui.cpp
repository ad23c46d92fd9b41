// The host's UI pieces: the forms of its form repository render at their working size with nothing squeezed
// away, the busy indicator and icon control, named images (pixel ratios, the avatar tinted through
// currentColor) and idle calls.
#include "HostTestMain.h"

#include "CBusyStateCtl.h"
#include "CFormRepository.h"
#include "CIconControl.h"
#include "HostColors.h"
#include "QtHelpersImages.h"
#include "QtHelpersInvoke.h"

#include <QLabel>
#include <QPainter>
#include <QPointer>
#include <QStackedWidget>
#include <QSvgRenderer>
#include <QTest>
#include <QTimer>

namespace {

const QString kMainScreen = QStringLiteral("newsReader.mainScreen.ui");
const QString kCreateIncident = QStringLiteral("communications.createIncident.ui");
const QSize kMainScreenSize(1000, 700);
const QSize kDialogFormSize(640, 420);

int distinctColours(const QImage& image)
{
    QSet<QRgb> colours;
    for (int y = 0; y < image.height(); y += 3)
        for (int x = 0; x < image.width(); x += 3)
            colours.insert(image.pixel(x, y));
    return colours.size();
}

} // namespace

class TestHostUi : public QObject
{
    Q_OBJECT

private slots:
    void rendersAtItsWorkingSize_data()
    {
        QTest::addColumn<QString>("form");
        QTest::addColumn<QString>("stack");
        QTest::addColumn<int>("page");
        QTest::addColumn<QSize>("size");
        QTest::newRow("main empty list") << kMainScreen << "stackedWidget" << 0 << kMainScreenSize;
        QTest::newRow("main no thread") << kMainScreen << "stackedWidget" << 2 << kMainScreenSize;
        QTest::newRow("main conversation") << kMainScreen << "stackedWidget" << 3 << kMainScreenSize;
        QTest::newRow("dialog sign-in") << kCreateIncident << "stackedWidget" << 0 << kDialogFormSize;
        QTest::newRow("dialog form") << kCreateIncident << "stackedWidget" << 1 << kDialogFormSize;
        QTest::newRow("dialog busy") << kCreateIncident << "stackedWidget" << 2 << kDialogFormSize;
    }

    void rendersAtItsWorkingSize()
    {
        QFETCH(QString, form);
        QFETCH(QString, stack);
        QFETCH(int, page);
        QFETCH(QSize, size);
        std::unique_ptr<QWidget> widget(CFormRepository::load(form, nullptr));
        QVERIFY(widget);
        widget->setPalette(hostPalette());
        widget->findChild<QStackedWidget*>(stack)->setCurrentIndex(page);
        if (auto* busy = widget->findChild<CBusyStateCtl*>("busyStateCtl"))
            busy->setBusyText(QStringLiteral("Creating new communication..."));
        if (auto* title = widget->findChild<QLabel*>("issueTitle"))
            title->setText(QStringLiteral("Cannot restore my backup"));
        widget->resize(size);
        widget->show();
        QVERIFY(QTest::qWaitForWindowExposed(widget.get()));
        QCOMPARE(widget->size(), size);
        const QImage image = widget->grab().toImage();
        QVERIFY2(distinctColours(image) > 4, "the page renders blank");
        // Nothing of the visible page may be squeezed to nothing.
        QWidget* current = widget->findChild<QStackedWidget*>(stack)->currentWidget();
        for (QWidget* child : current->findChildren<QWidget*>()) {
            if (child->isVisibleTo(widget.get()) && !qobject_cast<QStackedWidget*>(child->parentWidget()))
                QVERIFY2(child->height() > 0 && child->width() > 0, qPrintable(child->objectName()));
        }
    }

    void busyIndicatorSpinsOnlyWhileVisible()
    {
        QWidget page;
        auto* busy = new CBusyStateCtl(&page);
        busy->resize(200, 100);
        auto* timer = busy->findChild<QTimer*>();
        QVERIFY(timer);
        QVERIFY(!timer->isActive());
        page.show();
        QVERIFY(timer->isActive());
        const QImage first = busy->grab().toImage();
        QTest::qWait(150);
        QVERIFY2(busy->grab().toImage() != first, "the spinner did not move");
        page.hide(); // hiding the page hides the indicator with it
        QVERIFY(!timer->isActive());
    }

    void iconControlPaintsItsIconCentred()
    {
        CIconControl control;
        control.setIcon(qtHelpers::images::icon("balloon-critical"));
        control.setIconSize(QSize(24, 24));
        control.resize(64, 64);
        const QImage image = control.grab().toImage();
        // The red disc sits in the middle; the corners stay the background.
        const QColor centre = image.pixelColor(26, 32); // left of the white cross
        QVERIFY(centre.red() > 200 && centre.green() < 120);
        QVERIFY(image.pixelColor(2, 2) != centre);
    }

    void pixmapsAndIconsCarryTheRequestedPixelRatio()
    {
        const QPixmap plain = qtHelpers::images::pixmap("ico-stop-download", -1, false);
        QCOMPARE(plain.devicePixelRatio(), 1.0);
        const QPixmap hiDpi = qtHelpers::images::pixmap("ico-stop-download", -1, true);
        const qreal ratio = QGuiApplication::primaryScreen()->devicePixelRatio();
        QCOMPARE(hiDpi.devicePixelRatio(), ratio);
        QCOMPARE(hiDpi.deviceIndependentSize().toSize(), QSize(32, 32));
        const QPixmap sharp = qtHelpers::images::icon("arrow-down").pixmap(QSize(16, 16), 2.0);
        QCOMPARE(sharp.size(), QSize(32, 32));
        QCOMPARE(sharp.devicePixelRatio(), 2.0);
    }

    void avatarIsTintableThroughCurrentColor()
    {
        QByteArray svg = qtHelpers::images::svgData("AvatarSingle");
        QVERIFY(svg.contains("currentColor"));
        const QColor tint(0x3a, 0x7b, 0xd5);
        svg.replace("currentColor", tint.name().toLatin1());
        QSvgRenderer renderer(svg);
        QVERIFY(renderer.isValid());
        QImage image(40, 40, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        renderer.render(&painter);
        painter.end();
        // The ring of the avatar is the tint; the figure in the middle stays light.
        QCOMPARE(image.pixelColor(20, 1).rgb(), tint.rgb());
        QCOMPARE(image.pixelColor(3, 20).rgb(), tint.rgb());
        QVERIFY(image.pixelColor(20, 15).lightness() > 200);
    }

    void neverRunsInsideTheCall()
    {
        QObject context;
        bool ran = false;
        qtHelpers::invokeOnIdle(&context, [&] { ran = true; });
        QVERIFY(!ran);
        QVERIFY(QTest::qWaitFor([&] { return ran; }));
        bool ranWithoutContext = false;
        qtHelpers::invokeOnIdle(nullptr, [&] { ranWithoutContext = true; });
        QVERIFY(!ranWithoutContext);
        QVERIFY(QTest::qWaitFor([&] { return ranWithoutContext; }));
    }

    void skipsCallsWhoseContextIsGone()
    {
        auto* context = new QObject;
        QPointer<QObject> guard(context);
        int runs = 0;
        qtHelpers::invokeOnIdle(context, [&] {
            ++runs;
            delete context;
        });
        qtHelpers::invokeOnIdle(context, [&] { ++runs; });
        auto* deletedBeforeIdle = new QObject;
        qtHelpers::invokeOnIdle(deletedBeforeIdle, [&] { ++runs; });
        delete deletedBeforeIdle;
        QObject witness;
        bool witnessRan = false;
        qtHelpers::invokeOnIdle(&witness, [&] { witnessRan = true; });
        QVERIFY(QTest::qWaitFor([&] { return witnessRan; }));
        QVERIFY(guard.isNull());
        QCOMPARE(runs, 1);
    }
};

HOST_TEST_MAIN(TestHostUi)
#include "tst_hostui.moc"
