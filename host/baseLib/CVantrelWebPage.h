#pragma once

#include "baseLibGlobal.h"

#include <QWebEnginePage>

// The host's web page: optionally sends every navigation the user starts (link clicks, new windows) to the
// system browser instead of loading it in place.
class BASELIB_EXPORT CVantrelWebPage : public QWebEnginePage
{
    Q_OBJECT
public:
    explicit CVantrelWebPage(QObject* parent = nullptr);
    ~CVantrelWebPage() override;

    void setAlwaysOpenLinkInExternalBrowser(bool value);
    bool alwaysOpenLinkInExternalBrowser() const;

protected:
    bool acceptNavigationRequest(const QUrl& url, NavigationType type, bool isMainFrame) override;
    QWebEnginePage* createWindow(WebWindowType type) override;

private:
    bool m_external = false;
};
