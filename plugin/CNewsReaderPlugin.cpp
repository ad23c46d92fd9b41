#include "CNewsReaderPlugin.h"

#include "CNewsFetcher.h"
#include "CPropertyBag.h"
#include "CReadNewsEntryRequest.h"
#include "CSettingsLoader.h"
#include "CVantrelApp.h"
#include "ConfigurableObjects.h"
#include "HostWindows.h"
#include "MetaTypes.h"
#include "QtHelpersImages.h"

#include <QMetaMethod>
#include <QStackedWidget>

namespace {

const QString kPluginId = QStringLiteral("newsReader");
const QString kMainFormName = QStringLiteral("newsReader.mainScreen.ui");
const QString kShowNewsSetting = QStringLiteral("UIShowNews");

// The page shown when the progress timer expires.
constexpr int kInputAreaWaitPage = 1;

} // namespace

CNewsReaderPlugin::CNewsReaderPlugin()
    : CAbstractKolPlugin(nullptr)
    , m_pluginIconName(QString::fromLatin1(kIconNoNews))
    , m_pluginIcon(qtHelpers::images::icon(m_pluginIconName))
    , m_previewManager(nullptr)
{
    newsReader::registerMetaTypes();

    if (vantrelApp)
        m_newsFetcher = vantrelApp->getNewsFetcher();

    if (vantrelApp) {
        connect(vantrelApp, &CVantrelApp::applicationEvent, this, &CNewsReaderPlugin::onApplicationEvent);
        connect(vantrelApp, &CVantrelApp::appBroadcastRequest, this,
                &CNewsReaderPlugin::onAppBroadcastRequest);
    }
    connectNewsFetcher();
    connect(&m_progressTimer, &QTimer::timeout, this, &CNewsReaderPlugin::onProgressTimeout);
}

CNewsReaderPlugin::~CNewsReaderPlugin() = default;

void CNewsReaderPlugin::connectNewsFetcher()
{
    CNewsFetcher* fetcher = m_newsFetcher.get();
    if (!fetcher)
        return;
    connect(fetcher, &CNewsFetcher::readStatusChanged, this, &CNewsReaderPlugin::onEntryReadStatusChanged);
    connect(fetcher, &CNewsFetcher::syncViewsRequest, this, &CNewsReaderPlugin::onSyncViewRequest);

    // These two are bound through their meta-methods, so that the connection works with any host build
    // that declares the signals, whatever the record type's C++ spelling.
    const QMetaObject* fetcherMeta = fetcher->metaObject();
    const QMetaObject* pluginMeta = metaObject();
    const auto bindByMetaMethod = [&](const char* signal, const char* slot) {
        const QMetaMethod signalMethod = fetcherMeta->method(fetcherMeta->indexOfSignal(signal));
        const QMetaMethod slotMethod = pluginMeta->method(pluginMeta->indexOfSlot(slot));
        connect(fetcher, signalMethod, this, slotMethod);
    };
    bindByMetaMethod("communicationReceived(CIncidentCommunication)",
                     "onCommunicationReceived(CIncidentCommunication)");
    bindByMetaMethod("communicationDeleted(CIncidentCommunication)",
                     "onCommunicationDeleted(CIncidentCommunication)");

    connect(fetcher, &CNewsFetcher::gotNewMessagesForIssue, this,
            &CNewsReaderPlugin::onUpdateCurrentIssueMessages);
    connect(fetcher, &CNewsFetcher::threadIsBeingEdited, this, &CNewsReaderPlugin::onThreadIsBeingEdited);
    connect(fetcher, &CNewsFetcher::watchersCacheChanged, this, &CNewsReaderPlugin::onWatchersCacheChanged);
}

QString CNewsReaderPlugin::getUiFormName() const
{
    return kMainFormName;
}

QString CNewsReaderPlugin::getCaption() const
{
    return QObject::tr("Communications");
}

QIcon CNewsReaderPlugin::getPluginIcon() const
{
    return m_pluginIcon;
}

bool CNewsReaderPlugin::hasPluginView() const
{
    return true;
}

bool CNewsReaderPlugin::isMessengerModeDisabled() const
{
    return !ConfigurableObjects::isAllowed(QStringLiteral("allowMessengerMode"));
}

PluginVisibility CNewsReaderPlugin::getPluginVisibility() const
{
    if (ConfigurableObjects::isVisible(QStringLiteral("showNews")))
        return CAbstractKolPlugin::getPluginVisibility();
    if (!ConfigurableObjects::isVisible(QStringLiteral("allowUseIncidents")))
        return PluginHidden;
    // Support conversations alone: a Zendesk-backed host shows them elsewhere.
    if (ConfigurableObjects::isAllowed(QStringLiteral("useZendeskTickets")))
        return PluginHidden;
    return CAbstractKolPlugin::getPluginVisibility();
}

void CNewsReaderPlugin::onPluginDeactivating()
{}

QWidget* CNewsReaderPlugin::releaseEmptyListWidget()
{
    m_emptyListWidget.clear();
    return nullptr;
}

QString CNewsReaderPlugin::getPluginName() const
{
    return QObject::tr("Communications");
}

void CNewsReaderPlugin::onPluginViewShown()
{}

QString CNewsReaderPlugin::getTranslationName() const
{
    return kPluginId;
}

QString CNewsReaderPlugin::getTooltip() const
{
    if (m_newsFetcher) {
        auto entries = m_newsFetcher->getNewsList(CNewsFetcher::NewsListFilter::fromInt(kFilterUrgentUnread));
        if (entries.empty())
            entries = m_newsFetcher->getNewsList(CNewsFetcher::NewsListFilter::fromInt(kFilterUnread));
        if (!entries.empty() && entries.back())
            return entries.back()->title;
    }
    return CAbstractKolPlugin::getTooltip();
}

QString CNewsReaderPlugin::getPluginId() const
{
    return kPluginId;
}

bool CNewsReaderPlugin::hasCustomToolbar() const
{
    return false;
}

void CNewsReaderPlugin::onPluginItemActivated(const QModelIndex&)
{}

void CNewsReaderPlugin::onPluginItemSelected(const QModelIndex& index, const QModelIndex&)
{
    setCurrentIndex(index);
}

bool CNewsReaderPlugin::keepItemSelected()
{
    return false;
}

void CNewsReaderPlugin::setIsSelected(bool value)
{
    if (value)
        emit stopPluginAnimation(this);
    else
        runAttentionRule();
    CAbstractKolPlugin::setIsSelected(value);
}

void CNewsReaderPlugin::onCommunicationReceived(CIncidentCommunication)
{}

void CNewsReaderPlugin::onCommunicationDeleted(CIncidentCommunication)
{}

void CNewsReaderPlugin::onWriteUsLinkActivated()
{}

void CNewsReaderPlugin::setCurrentIndex(const QModelIndex& index)
{
    if (m_currentIndex != index)
        m_currentIndex = index;
}

void CNewsReaderPlugin::onRequestApplicationExit()
{}

void CNewsReaderPlugin::onHideNewsEntryClicked(const QModelIndex&)
{}

void CNewsReaderPlugin::onSetWebPageContentFinished(bool)
{}

void CNewsReaderPlugin::onCommunicationItemsModelPopulated()
{
    refreshIcon(true);
}

void CNewsReaderPlugin::onEntryReadStatusChanged(Messenger::MessageEntryPtr)
{
    refreshIcon(!isSelected());
}

void CNewsReaderPlugin::onListItemExpanded(const QModelIndex&)
{}

void CNewsReaderPlugin::onListItemCollapsed(const QModelIndex&)
{}

void CNewsReaderPlugin::onSyncViewRequest()
{
    if (!fetcherHasAny(kFilterUrgentUnread) && !showNewsSetting())
        emit stopPluginAnimation(this);
    refreshIcon(false);
}

void CNewsReaderPlugin::onToastClicked()
{
    setIsSelected(true);
}

void CNewsReaderPlugin::onSendMessageClicked()
{}

void CNewsReaderPlugin::onAddAttachmentClicked()
{}

void CNewsReaderPlugin::onAppBroadcastRequest(AppBroadcastRequest id)
{
    if (id != BroadcastWriteToSupport)
        return;
    setIsSelected(true);
    onWriteUsLinkActivated();
}

void CNewsReaderPlugin::onUpdateCurrentIssueMessages(QString)
{}

void CNewsReaderPlugin::onThreadIsBeingEdited(CIncidentCommunication, bool)
{}

void CNewsReaderPlugin::onWatchersCacheChanged()
{}

void CNewsReaderPlugin::onTypingDataChanged(QString)
{}

void CNewsReaderPlugin::onApplicationEvent(QEvent* event)
{
    if (!event || event->type() != CReadNewsEntryRequest::EventType)
        return;
    const auto* request = static_cast<CReadNewsEntryRequest*>(event);
    m_pendingNewsEntryId = request->getNewsEntryId();
    m_pendingRequestFlags = request->getFlags();
    event->accept();

    // The entry is not listed yet: have the fetcher reload the conversations; the next population selects it.
    if (m_newsFetcher)
        m_newsFetcher->startFetchIssues();
    setIsSelected(true);
}

void CNewsReaderPlugin::refreshIcon(bool allowAnimation)
{
    QString name = QString::fromLatin1(kIconNoNews);
    bool notice = false;
    if (fetcherHasAny(kFilterUrgentUnread)) {
        name = QString::fromLatin1(kIconUrgentNews);
        notice = true;
    } else if (fetcherHasAny(kFilterUnreadWithIssues) ||
               (fetcherHasAny(kFilterUnread) && showNewsSetting())) {
        name = QString::fromLatin1(kIconNews);
        notice = true;
    }
    if (name != m_pluginIconName) {
        m_pluginIconName = name;
        m_pluginIcon = qtHelpers::images::icon(name);
    }

    if (!allowAnimation || isSelected())
        emit pluginDataChanged();
    else
        runAttentionRule();

    QWidget* mainWindow = vantrelApp ? vantrelApp->mainWidget() : nullptr;
    if (notice && mainWindow && !mainWindow->isActiveWindow() && m_viewSetUp)
        flashWindow(mainWindow->winId(), kFlashCount);
}

void CNewsReaderPlugin::runAttentionRule()
{
    if (fetcherHasAny(kFilterUrgentUnread))
        emit beginPluginAnimation(this, kAnimationUrgent);
    else if (showNewsSetting() && fetcherHasAny(kFilterUnread))
        emit beginPluginAnimation(this, kAnimationNews);
}

bool CNewsReaderPlugin::showNewsSetting() const
{
    QVariant value;
    if (vantrelApp && vantrelApp->getSettingsInstance().Read(kShowNewsSetting, &value))
        return value.toBool();
    return true;
}

bool CNewsReaderPlugin::fetcherHasAny(unsigned filter) const
{
    return m_newsFetcher && m_newsFetcher->hasAny(CNewsFetcher::NewsListFilter::fromInt(filter));
}

void CNewsReaderPlugin::onProgressTimeout()
{
    m_progressTimer.stop();
    if (m_inputAreaStack)
        m_inputAreaStack->setCurrentIndex(kInputAreaWaitPage);
}
