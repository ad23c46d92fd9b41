#include "CBusyStateCtl.h"
#include "CIconControl.h"
#include "HostTestMain.h"
#include "QtHelpersImages.h"

#include <QTest>
#include <QTimer>

class TestHostWidgets : public QObject
{
    Q_OBJECT

private slots:
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
};

HOST_TEST_MAIN(TestHostWidgets)
#include "tst_hostwidgets.moc"
