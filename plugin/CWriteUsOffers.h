#pragma once
// The ways the page offers to start a support conversation: the write-us links of the empty, folder,
// no-thread and news pages, the "New conversation" button in a conversation's header, and Ctrl+N anywhere
// on the page. Hosts that take support requests elsewhere (on Zendesk) or allow none get no offer at all.

#include <functional>

class QObject;
class QWidget;

class CWriteUsOffers
{
public:
    // Whether the host lets the user start a conversation from this page.
    static bool allowed();

    // Wires every offer in the loaded form `view` to `open`, or removes them all when not allowed. The
    // empty page's "writeUsLabel" must exist; the other offers are used where the form has them.
    static void attach(QWidget* view, QObject* context, const std::function<void()>& open);
};
