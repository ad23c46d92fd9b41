#include "CMainScreenStyle.h"

#include "CControlLookup.h"
#include "CVantrelApp.h"
#include "HostColors.h"

#include <QLabel>
#include <QPalette>
#include <QTextBrowser>
#include <QToolButton>

namespace {

// Host colours of the main screen.
constexpr int kTitleColor = clrHeadingText;
constexpr int kPlaceholderColor = clrSubheadingText;
constexpr int kPageBackgroundColor = clrThreadBackground;

template<typename T>
T* control(const CViewModelBase* screen, const char* name)
{
    return CControlLookup::find<T>(screen, QString::fromLatin1(name));
}

} // namespace

void CMainScreenStyle::apply(const CViewModelBase* screen)
{
    auto* listBackground = control<QWidget>(screen, "messageListView");
    listBackground->setAutoFillBackground(true);
    setBackground(listBackground, QPalette::Window);
    styleControl(control<QLabel>(screen, "typingLabel"), kTypingPointSize, kNormalWeight);

    auto* thread = control<QTextBrowser>(screen, "issueMessages");
    QFont threadFont = thread->font();
    threadFont.setPointSize(kThreadPointSize);
    thread->document()->setDefaultFont(threadFont);
    setBackground(thread->viewport(), QPalette::Base);

    styleControl(control<QLabel>(screen, "noNewsLabel"), kHeadlinePointSize, kDemiBoldWeight, QPalette::Text,
                 kPlaceholderColor);
    styleControl(control<QLabel>(screen, "pendingMessageLabel"), kPlaceholderPointSize, kNormalWeight,
                 QPalette::Text, kPlaceholderColor);
    styleControl(control<QLabel>(screen, "writeUsLabel"), kPlaceholderPointSize, kNormalWeight);
    styleControl(control<QLabel>(screen, "issueTitle"), kTitlePointSize, kBoldWeight, QPalette::Text,
                 kTitleColor);
    styleControl(control<QLabel>(screen, "issueState"), kTitlePointSize, kBoldWeight, QPalette::Text,
                 kTitleColor);
    styleControl(control<QToolButton>(screen, "issueStateButton"), kTitlePointSize, kBoldWeight,
                 QPalette::ButtonText, kTitleColor);
}

void CMainScreenStyle::styleControl(QWidget* control, int pointSize, int weight, int role, int color)
{
    QFont font = control->font();
    font.setPointSize(pointSize);
    font.setWeight(QFont::Weight(weight));
    font.setItalic(false);
    control->setFont(font);
    if (role < 0)
        return;
    QPalette palette = control->palette();
    const auto colorRole = QPalette::ColorRole(role);
    palette.setColor(colorRole, CVantrelApp::GetColor(color));
    // Labels draw their text in their foreground role, so the colour goes there as well.
    if (control->foregroundRole() != colorRole)
        palette.setColor(control->foregroundRole(), CVantrelApp::GetColor(color));
    control->setPalette(palette);
}

void CMainScreenStyle::setBackground(QWidget* widget, int role)
{
    QPalette palette = widget->palette();
    palette.setColor(QPalette::ColorRole(role), CVantrelApp::GetColor(kPageBackgroundColor));
    widget->setPalette(palette);
}
