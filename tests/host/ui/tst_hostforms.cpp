// The forms of the host's form repository render at their working size with nothing squeezed away.
#include "CBusyStateCtl.h"
#include "CFormRepository.h"
#include "HostColors.h"
#include "HostTestMain.h"

#include <QLabel>
#include <QStackedWidget>
#include <QTest>

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

class TestHostForms : public QObject
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
};

HOST_TEST_MAIN(TestHostForms)
#include "tst_hostforms.moc"
