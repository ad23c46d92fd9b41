#include "HostColors.h"

#include <QDebug>
#include <QWidget>

#include <iterator>

namespace {

struct ThemeEntry
{
    CColorIndexes index;
    QRgb rgb;
};

// The host's one theme: a calm light look with a single blue accent. Greys lean slightly blue so that the
// accent, the selection and the own bubbles read as one family.
constexpr ThemeEntry lightTheme[] = {
    {clrHeadingText, 0x24476b},
    {clrWindow, 0xf7f8fa},
    {clrWindowText, 0x1e2a36},
    {clrBase, 0xffffff},
    {clrButton, 0xeef1f4},
    {clrButtonText, 0x1e2a36},
    {clrHighlight, 0x2f7ad8},
    {clrHighlightedText, 0xffffff},
    {clrLink, 0x1f6fc5},
    {clrDisabledText, 0x9aa4ae},
    {clrListSelection, 0xd6e6f8},
    {clrListHover, 0xe9f1fb},
    {clrListText, 0x2b3a4a},
    {clrPlaceholderText, 0x7b8794},
    {clrSubheadingText, 0x5b6b7b},
    {clrDialogBackground, 0xfbfcfd},
    {clrAccent, 0x2f7ad8},
    {clrBalloonBackground, 0xffffff},
    {clrBalloonBorder, 0xb8c4d0},
    {clrAttachmentFrame, 0xc9d3dd},
    {clrThreadBackground, 0xeef1f4},
    {clrBubbleOther, 0xffffff},
    {clrBubbleOwn, 0xdcebfb},
    {clrFailureTint, 0xfbe3e3},
    {clrSecondaryText, 0x7b8794},
};

constexpr int toolButtonRadius = 4;
constexpr int toolButtonPadding = 2;

} // namespace

QColor getPaletteColor(CColorIndexes index)
{
    for (const ThemeEntry& entry : lightTheme) {
        if (entry.index == index)
            return QColor::fromRgb(entry.rgb);
    }
    qWarning() << "getPaletteColor: the host colour table has no index" << int(index);
    return QColor();
}

QPalette adjustWidgetPalette(QWidget* widget, QPalette::ColorRole role, CColorIndexes index)
{
    QPalette palette = widget ? widget->palette() : hostPalette();
    const QColor color = getPaletteColor(index);
    if (!color.isValid())
        return palette;
    palette.setColor(role, color);
    if (widget)
        widget->setPalette(palette);
    return palette;
}

QPalette hostPalette()
{
    QPalette palette;
    palette.setColor(QPalette::Window, getPaletteColor(clrWindow));
    palette.setColor(QPalette::WindowText, getPaletteColor(clrWindowText));
    palette.setColor(QPalette::Base, getPaletteColor(clrBase));
    palette.setColor(QPalette::AlternateBase, getPaletteColor(clrWindow));
    palette.setColor(QPalette::Text, getPaletteColor(clrWindowText));
    palette.setColor(QPalette::Button, getPaletteColor(clrButton));
    palette.setColor(QPalette::ButtonText, getPaletteColor(clrButtonText));
    palette.setColor(QPalette::Highlight, getPaletteColor(clrHighlight));
    palette.setColor(QPalette::HighlightedText, getPaletteColor(clrHighlightedText));
    palette.setColor(QPalette::Link, getPaletteColor(clrLink));
    palette.setColor(QPalette::LinkVisited, getPaletteColor(clrLink));
    palette.setColor(QPalette::PlaceholderText, getPaletteColor(clrPlaceholderText));
    palette.setColor(QPalette::ToolTipBase, getPaletteColor(clrBalloonBackground));
    palette.setColor(QPalette::ToolTipText, getPaletteColor(clrWindowText));

    const QColor disabled = getPaletteColor(clrDisabledText);
    for (QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, disabled);
    return palette;
}

QString hostStyleSheet()
{
    return QStringLiteral("QToolButton { border: none; background: transparent; border-radius: %1px;"
                          " padding: %2px; }\n"
                          "QToolButton:hover { background: %3; }\n"
                          "QToolButton:pressed, QToolButton:checked { background: %4; }\n")
        .arg(toolButtonRadius)
        .arg(toolButtonPadding)
        .arg(getPaletteColor(clrListHover).name(), getPaletteColor(clrListSelection).name());
}
