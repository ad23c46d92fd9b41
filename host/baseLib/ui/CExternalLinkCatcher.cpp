#include "CExternalLinkCatcher.h"

#include "CVantrelApp.h"

CExternalLinkCatcher::CExternalLinkCatcher(QWebEngineProfile* profile, QObject* parent)
    : QWebEnginePage(profile, parent)
{}

CExternalLinkCatcher::~CExternalLinkCatcher() = default;

bool CExternalLinkCatcher::acceptNavigationRequest(const QUrl& url, NavigationType, bool isMainFrame)
{
    if (!isMainFrame || m_done)
        return false;
    m_done = true;
    if (vantrelApp && url.isValid() && !url.isEmpty())
        vantrelApp->onExternalBrowserLinkClicked(url.toString());
    deleteLater();
    return false;
}
