#pragma once
// The news view's page. It shows the entry the plugin gives it (setHtml, or the empty page) and nothing
// else: every navigation the entry's content starts, whether a clicked link, a script changing the address,
// a form, a redirect or a new window, is refused in the view; web and mail addresses go to the system
// browser instead, local files and every other scheme go nowhere. Frames inside the entry may hold inline
// content only. Owned by the news view.

#include "CVantrelWebPage.h"

class CNewsWebPage : public CVantrelWebPage
{
    Q_OBJECT

public:
    enum Verdict
    {
        Show,           // the view loads it
        OpenExternally, // the system browser opens it; the view stays as it is
        Ignore,         // nothing happens
    };

    explicit CNewsWebPage(QObject* parent);

    // What becomes of a navigation request of the news view.
    static Verdict judge(const QUrl& url, NavigationType type, bool isMainFrame);

protected:
    bool acceptNavigationRequest(const QUrl& url, NavigationType type, bool isMainFrame) override;
    QWebEnginePage* createWindow(WebWindowType type) override;

private:
    // A page handed out for a new window: it never shows anything, passes its first navigation on as a
    // clicked link would be, and deletes itself.
    CNewsWebPage(QObject* parent, bool windowCatcher);

    bool m_windowCatcher = false;
};
