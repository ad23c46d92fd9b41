#pragma once
// The look of the main screen that the form cannot carry: fonts, weights and host colours of its labels, the
// thread's background and font. Applied once by the plugin after the form is loaded; a missing control is
// fatal, as for every control lookup of the main screen.

class CViewModelBase;
class QPalette;
class QWidget;

class CMainScreenStyle
{
public:
    // Fonts of the main screen: point sizes and weights.
    static constexpr int kTypingPointSize = 9;
    static constexpr int kThreadPointSize = 10;
    static constexpr int kHeadlinePointSize = 14;
    static constexpr int kPlaceholderPointSize = 12;
    static constexpr int kTitlePointSize = 18;
    static constexpr int kNormalWeight = 400;
    static constexpr int kDemiBoldWeight = 600;
    static constexpr int kBoldWeight = 700;

    static void apply(const CViewModelBase* screen);

private:
    // Sets a control's font to the point size and weight, upright, and optionally a host colour into `role`.
    static void styleControl(QWidget* control, int pointSize, int weight, int role = -1, int color = -1);
    static void setBackground(QWidget* widget, int role);
};
