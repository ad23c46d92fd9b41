#include "CVantrelApp.h"

#include "CNewsFetcher.h"
#include "CSignInService.h"
#include "HostColors.h"
#include "HostRuntime.h"
#include "SimulatedServer.h"

#include <QDesktopServices>
#include <QStyleFactory>
#include <QUrl>
#include <QWidget>

CVantrelApp* vantrelApp = nullptr;

namespace {

const QString hostApplicationName = QStringLiteral("VantrelDesktop");
const QString hostOrganizationName = QStringLiteral("Vantrel");
const QString hostStyleName = QStringLiteral("Fusion");

} // namespace

struct CVantrelApp::Private
{
    std::shared_ptr<CNewsFetcher> newsFetcher;
    QPointer<CSignInService> signInService;
    QPointer<QWidget> mainWidget;
};

CVantrelApp::CVantrelApp(int& argc, char** argv)
    : QApplication(argc, argv)
    , d(std::make_unique<Private>())
{
    vantrelApp = this;
    setApplicationName(hostApplicationName);
    setOrganizationName(hostOrganizationName);
    qRegisterMetaType<AppBroadcastRequest>();

    // Fusion draws everything from the palette, so the host theme looks the same on every desktop.
    if (QStyle* style = QStyleFactory::create(hostStyleName))
        setStyle(style);
    setPalette(hostPalette());
}

CVantrelApp::~CVantrelApp()
{
    // Plugins may still hold the fetcher; it must not outlive the application object it reports to.
    d->newsFetcher.reset();
    vantrelApp = nullptr;
}

std::shared_ptr<CNewsFetcher> CVantrelApp::getNewsFetcher()
{
    if (!HostRuntime::instance().newsFetcherAvailable)
        return nullptr;
    if (!d->newsFetcher)
        d->newsFetcher = std::make_shared<CNewsFetcher>();
    return d->newsFetcher;
}

CSettingsLoader& CVantrelApp::getSettingsInstance()
{
    return HostRuntime::instance().settings();
}

CSignInService* CVantrelApp::getSignInService() const
{
    // Created on first use: the service starts talking to the server, which the host only wants when
    // somebody needs a session.
    if (!d->signInService)
        d->signInService = new CSignInService(const_cast<CVantrelApp*>(this));
    return d->signInService;
}

QWidget* CVantrelApp::mainWidget() const
{
    return d->mainWidget;
}

void CVantrelApp::setMainWidget(QWidget* widget)
{
    d->mainWidget = widget;
}

bool CVantrelApp::getCanUseWebEngineWidgets() const
{
    return HostRuntime::instance().canUseWebEngine;
}

void CVantrelApp::onExternalBrowserLinkClicked(const QString& link) const
{
    HostRuntime& runtime = HostRuntime::instance();
    runtime.record(QStringLiteral("openLink"), {{QStringLiteral("url"), link}});
    if (runtime.openExternally)
        QDesktopServices::openUrl(QUrl(link, QUrl::TolerantMode));
}

EntitySchemaDto::EntitySchemaDto CVantrelApp::getLowcodeSchema()
{
    return SimulatedServer::instance().schema();
}

QColor CVantrelApp::GetColor(CColorIndexes index)
{
    return getPaletteColor(index);
}

void CVantrelApp::setWidgetStyleSheetFromPalette(QWidget* widget)
{
    if (!widget)
        return;
    widget->setPalette(hostPalette());
    widget->setStyleSheet(hostStyleSheet());
}

bool CVantrelApp::postApplicationEvent(QEvent* event)
{
    if (!event)
        return false;
    // Listeners accept what they handle; an event nobody wants must come back as not accepted.
    event->ignore();
    emit applicationEvent(event);
    return event->isAccepted();
}

void CVantrelApp::broadcastRequest(AppBroadcastRequest id)
{
    emit appBroadcastRequest(id);
}
