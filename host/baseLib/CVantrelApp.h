#pragma once
// The host's application object. Exactly one exists; `vantrelApp` points to it while it lives.

#include "AppBroadcastRequest.h"
#include "CColorIndexes.h"
#include "EntitySchemaDto.h"
#include "baseLibGlobal.h"

#include <QApplication>
#include <QPointer>

#include <memory>

class CNewsFetcher;
class CSettingsLoader;
class CSignInService;

class BASELIB_EXPORT CVantrelApp : public QApplication
{
    Q_OBJECT
public:
    CVantrelApp(int& argc, char** argv);
    ~CVantrelApp() override;

    // The one news fetcher; null only when the host runs without the support service.
    std::shared_ptr<CNewsFetcher> getNewsFetcher();
    CSettingsLoader& getSettingsInstance();
    CSignInService* getSignInService() const;

    QWidget* mainWidget() const;
    void setMainWidget(QWidget* widget);

    bool getCanUseWebEngineWidgets() const;
    // Opens `link` in the system browser.
    void onExternalBrowserLinkClicked(const QString& link) const;

    // The server's entity schema (entity types, their states and display names).
    EntitySchemaDto::EntitySchemaDto getLowcodeSchema();

    static QColor GetColor(CColorIndexes index);
    static QColor GetColor(int index) { return GetColor(CColorIndexes(index)); }
    // Gives the widget the host look: host palette and the host style sheet.
    static void setWidgetStyleSheetFromPalette(QWidget* widget);

    // Sends `event` to every listener of applicationEvent(); returns true when one accepted it.
    bool postApplicationEvent(QEvent* event);
    void broadcastRequest(AppBroadcastRequest id);

signals:
    void applicationEvent(QEvent* event);
    void appBroadcastRequest(AppBroadcastRequest id);

private:
    struct Private;
    std::unique_ptr<Private> d;
};

BASELIB_EXPORT extern CVantrelApp* vantrelApp;
