// The host colour table and the palette built from it.

#include "CColorIndexes.h"
#include "HostColors.h"
#include "HostTestMain.h"

#include <QRegularExpression>
#include <QToolButton>

class TestHostColors : public QObject
{
    Q_OBJECT

private slots:
    void unknownIndexGivesAnInvalidColourAndAWarning()
    {
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("no index 11$"));
        QVERIFY(!getPaletteColor(CColorIndexes(11)).isValid());
    }

    void applicationUsesTheHostPalette()
    {
        const QPalette palette = hostPalette();
        QCOMPARE(palette.color(QPalette::Window), getPaletteColor(clrWindow));
        QCOMPARE(palette.color(QPalette::Disabled, QPalette::Text), getPaletteColor(clrDisabledText));
        QCOMPARE(QApplication::palette().color(QPalette::Base), getPaletteColor(clrBase));
    }

    void adjustWidgetPaletteSetsOneRole()
    {
        QWidget widget;
        const QColor before = widget.palette().color(QPalette::Text);
        const QPalette returned = adjustWidgetPalette(&widget, QPalette::Window, clrThreadBackground);
        QCOMPARE(widget.palette().color(QPalette::Active, QPalette::Window),
                 getPaletteColor(clrThreadBackground));
        QCOMPARE(widget.palette().color(QPalette::Text), before);
        QCOMPARE(returned, widget.palette());
    }

    void styleSheetGivesToolButtonsTheHostLook()
    {
        QToolButton button;
        CVantrelApp::setWidgetStyleSheetFromPalette(&button);
        QCOMPARE(button.styleSheet(), hostStyleSheet());
        QVERIFY(hostStyleSheet().contains(getPaletteColor(clrListHover).name()));
        QCOMPARE(button.palette().color(QPalette::Button), getPaletteColor(clrButton));
        CVantrelApp::setWidgetStyleSheetFromPalette(nullptr);
    }
};

HOST_TEST_MAIN(TestHostColors)
#include "tst_hostcolors.moc"
