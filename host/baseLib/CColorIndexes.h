#pragma once
// Indexes into the host's colour table. The numbers are the host's; the names say what the host uses
// each colour for. One theme (see HostColors.cpp) defines every index listed here.

enum CColorIndexes : int
{
    clrHeadingText = 1,        // titles, focus frames
    clrWindow = 2,             // window background
    clrWindowText = 3,         // ordinary text
    clrBase = 4,               // editor background
    clrButton = 5,             // button face
    clrButtonText = 6,         // button text
    clrHighlight = 7,          // selection in editors
    clrHighlightedText = 8,    // text on selection
    clrLink = 9,               // hyperlinks
    clrDisabledText = 10,      // disabled text
    clrListSelection = 12,     // selected row of the navigation tree
    clrListHover = 13,         // hovered row of the navigation tree
    clrListText = 15,          // text and arrows of the navigation tree
    clrPlaceholderText = 19,   // quiet informational text
    clrSubheadingText = 28,    // placeholder headlines on empty pages
    clrDialogBackground = 34,  // background of host dialogs
    clrAccent = 42,            // progress rings, typing dots, busy indicators
    clrBalloonBackground = 50, // balloon popups
    clrBalloonBorder = 51,     // balloon frame
    clrAttachmentFrame = 168,  // frame of attachment tiles in the composer
    clrThreadBackground = 220, // page background of the conversation view
    clrBubbleOther = 221,      // message bubble of the other party
    clrBubbleOwn = 222,        // message bubble of the user
    clrFailureTint = 223,      // failed message, invalid attachment
    clrSecondaryText = 224,    // time stamps, sizes, notes
};
