#include "CVantrelWebPage.h"

#include "CExternalLinkCatcher.h"
#include "CVantrelApp.h"

CVantrelWebPage::CVantrelWebPage(QObject* parent)
    : QWebEnginePage(parent)
{}

CVantrelWebPage::~CVantrelWebPage() = default;

void CVantrelWebPage::setAlwaysOpenLinkInExternalBrowser(bool value)
{
    m_external = value;
}

bool CVantrelWebPage::alwaysOpenLinkInExternalBrowser() const
{
    return m_external;
}

bool CVantrelWebPage::acceptNavigationRequest(const QUrl& url, NavigationType type, bool isMainFrame)
{
    // Only what the user starts leaves the page; content the host loads itself (setHtml, setUrl) stays.
    if (m_external && type == NavigationTypeLinkClicked) {
        if (vantrelApp)
            vantrelApp->onExternalBrowserLinkClicked(url.toString());
        return false;
    }
    return QWebEnginePage::acceptNavigationRequest(url, type, isMainFrame);
}

QWebEnginePage* CVantrelWebPage::createWindow(WebWindowType type)
{
    if (!m_external)
        return QWebEnginePage::createWindow(type);
    // The new window's address is only known once it navigates: a throw-away page catches that navigation.
    return new CExternalLinkCatcher(profile(), this);
}
