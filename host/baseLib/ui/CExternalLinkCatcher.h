#pragma once
// A throw-away web page handed out for "open in new window" requests of a CVantrelWebPage that sends links
// to the system browser: it passes its first navigation there, refuses it and deletes itself.

#include <QWebEnginePage>

class CExternalLinkCatcher : public QWebEnginePage
{
    Q_OBJECT
public:
    CExternalLinkCatcher(QWebEngineProfile* profile, QObject* parent);
    ~CExternalLinkCatcher() override;

protected:
    bool acceptNavigationRequest(const QUrl& url, NavigationType type, bool isMainFrame) override;

private:
    bool m_done = false;
};
