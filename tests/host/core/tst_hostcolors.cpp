// The host colour table and the palette built from it.

#include "CColorIndexes.h"
#include "HostColors.h"
#include "HostTestMain.h"

#include <QRegularExpression>
#include <QToolButton>

#include <cmath>

namespace {

const CColorIndexes allIndexes[] = {clrHeadingText,
                                    clrWindow,
                                    clrWindowText,
                                    clrBase,
                                    clrButton,
                                    clrButtonText,
                                    clrHighlight,
                                    clrHighlightedText,
                                    clrLink,
                                    clrDisabledText,
                                    clrListSelection,
                                    clrListHover,
                                    clrListText,
                                    clrPlaceholderText,
                                    clrSubheadingText,
                                    clrDialogBackground,
                                    clrAccent,
                                    clrBalloonBackground,
                                    clrBalloonBorder,
                                    clrAttachmentFrame,
                                    clrThreadBackground,
                                    clrBubbleOther,
                                    clrBubbleOwn,
                                    clrFailureTint,
                                    clrSecondaryText};

// WCAG relative luminance and contrast ratio: readable body text needs 4.5:1, large or secondary text 3:1.
double luminance(const QColor& color)
{
    const auto channel = [](double value) {
        return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * channel(color.redF()) + 0.7152 * channel(color.greenF()) +
           0.0722 * channel(color.blueF());
}

double contrast(const QColor& a, const QColor& b)
{
    const double la = luminance(a);
    const double lb = luminance(b);
    return (qMax(la, lb) + 0.05) / (qMin(la, lb) + 0.05);
}

} // namespace

class TestHostColors : public QObject
{
    Q_OBJECT

private slots:
    void everyIndexHasAnOpaqueColour()
    {
        for (const CColorIndexes index : allIndexes) {
            const QColor color = getPaletteColor(index);
            QVERIFY2(color.isValid(), qPrintable(QString::number(int(index))));
            QCOMPARE(color.alpha(), 255);
            QCOMPARE(CVantrelApp::GetColor(index), color);
            QCOMPARE(CVantrelApp::GetColor(int(index)), color);
        }
    }

    void unknownIndexGivesAnInvalidColourAndAWarning()
    {
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("no index 11$"));
        QVERIFY(!getPaletteColor(CColorIndexes(11)).isValid());
    }

    void textIsReadableOnItsBackground_data()
    {
        QTest::addColumn<int>("text");
        QTest::addColumn<int>("background");
        QTest::addColumn<double>("minimum");
        QTest::newRow("window text") << int(clrWindowText) << int(clrWindow) << 4.5;
        QTest::newRow("list text on selection") << int(clrListText) << int(clrListSelection) << 4.5;
        QTest::newRow("text in failed bubble") << int(clrWindowText) << int(clrFailureTint) << 4.5;
        QTest::newRow("highlighted text") << int(clrHighlightedText) << int(clrHighlight) << 3.0;
        QTest::newRow("secondary text in bubble") << int(clrSecondaryText) << int(clrBubbleOther) << 3.0;
        QTest::newRow("link on base") << int(clrLink) << int(clrBase) << 4.5;
    }
    void textIsReadableOnItsBackground()
    {
        QFETCH(int, text);
        QFETCH(int, background);
        QFETCH(double, minimum);
        QVERIFY(contrast(getPaletteColor(CColorIndexes(text)), getPaletteColor(CColorIndexes(background))) >=
                minimum);
    }

    void surfacesOfTheThreadAreDistinguishable()
    {
        const QColor own = getPaletteColor(clrBubbleOwn);
        const QColor other = getPaletteColor(clrBubbleOther);
        const QColor failure = getPaletteColor(clrFailureTint);
        QVERIFY(getPaletteColor(clrThreadBackground) != other && own != other && failure != other);
        QVERIFY(failure.red() > failure.green() && failure.red() > failure.blue());
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
