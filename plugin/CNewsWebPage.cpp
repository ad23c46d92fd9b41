#include "CNewsWebPage.h"

#include "CVantrelApp.h"

#include <QWebEngineSettings>

namespace {

bool isWebOrMail(const QUrl& url)
{
    const QString scheme = url.scheme();
    return scheme == QLatin1String("https") || scheme == QLatin1String("http") ||
           scheme == QLatin1String("mailto");
}

// The empty page and a frame's own "srcdoc" content: part of the entry, never fetched from anywhere.
bool isInline(const QUrl& url)
{
    return url.scheme() == QLatin1String("about") &&
           (url.path() == QLatin1String("blank") || url.path() == QLatin1String("srcdoc"));
}

} // namespace

CNewsWebPage::CNewsWebPage(QObject* parent)
    : CNewsWebPage(parent, false)
{}

CNewsWebPage::CNewsWebPage(QObject* parent, bool windowCatcher)
    : CVantrelWebPage(parent)
    , m_windowCatcher(windowCatcher)
{
    setAlwaysOpenLinkInExternalBrowser(true);
    // Scripts of an entry do not get to open windows on their own; a link meant for a new one still works.
    settings()->setAttribute(QWebEngineSettings::JavascriptCanOpenWindows, false);
    settings()->setAttribute(QWebEngineSettings::LocalContentCanAccessFileUrls, false);
}

CNewsWebPage::Verdict CNewsWebPage::judge(const QUrl& url, NavigationType type, bool isMainFrame)
{
    if (!url.isValid())
        return Ignore;
    // Only the application itself loads by address: the entry's setHtml and the empty page.
    if (isMainFrame && type == NavigationTypeTyped)
        return Show;
    if (!isMainFrame && type != NavigationTypeLinkClicked)
        return isInline(url) ? Show : Ignore;
    // Reloading and history lead to nothing but entries the view showed before, or away from the entry.
    if (type == NavigationTypeReload || type == NavigationTypeBackForward)
        return Ignore;
    return isWebOrMail(url) ? OpenExternally : Ignore;
}

bool CNewsWebPage::acceptNavigationRequest(const QUrl& url, NavigationType type, bool isMainFrame)
{
    Verdict verdict = judge(url, type, isMainFrame);
    if (m_windowCatcher) {
        if (!isMainFrame)
            return false;
        verdict = judge(url, NavigationTypeLinkClicked, true);
        m_windowCatcher = false;
        deleteLater();
    }
    if (verdict == OpenExternally && vantrelApp)
        vantrelApp->onExternalBrowserLinkClicked(url.toString(QUrl::FullyEncoded));
    return verdict == Show;
}

QWebEnginePage* CNewsWebPage::createWindow(WebWindowType)
{
    // The new window's address is known only once it navigates.
    return new CNewsWebPage(this, true);
}
