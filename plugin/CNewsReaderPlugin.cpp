#include "CNewsReaderPlugin.h"

#include "CCommunicationObjectModel.h"
#include "CIconControl.h"
#include "CNewIncidentDialog.h"
#include "CNewsFetcher.h"
#include "CPluginItemDelegate.h"
#include "CPropertyBag.h"
#include "CReadNewsEntryRequest.h"
#include "CSettingsLoader.h"
#include "CVantrelApp.h"
#include "ConfigurableObjects.h"
#include "HostColors.h"
#include "HostWindows.h"
#include "MetaTypes.h"
#include "QtHelpersImages.h"

#include <QGraphicsOpacityEffect>
#include <QLabel>
#include <QMetaMethod>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace {

const QString kPluginId = QStringLiteral("newsReader");
const QString kMainFormName = QStringLiteral("newsReader.mainScreen.ui");
const QString kShowNewsSetting = QStringLiteral("UIShowNews");

// The page shown when the progress timer expires.
constexpr int kInputAreaWaitPage = 1;
// The right-hand page shown for a folder.
constexpr int kFolderPage = 1;

// The widget the host shows instead of an empty list.
constexpr int kEmptyListMargin = 24;
constexpr int kEmptyListIconSize = 96;
constexpr qreal kEmptyListIconOpacity = 0.6;
constexpr int kEmptyListTextPointSize = 11;

} // namespace

CNewsReaderPlugin::CNewsReaderPlugin()
    : CAbstractKolPlugin(nullptr)
    , m_pluginIconName(QString::fromLatin1(kIconNoNews))
    , m_pluginIcon(qtHelpers::images::icon(m_pluginIconName))
    , m_previewManager(nullptr)
    , m_typingViewModel(this)
{
    newsReader::registerMetaTypes();

    if (vantrelApp)
        m_newsFetcher = vantrelApp->getNewsFetcher();
    m_communicationModel = std::make_shared<CCommunicationObjectModel>();
    auto* delegate = new CPluginItemDelegate();
    setItemDelegate(delegate);

    connect(delegate, &CPluginItemDelegate::hideMessageRequest, this,
            &CNewsReaderPlugin::onHideNewsEntryClicked);
    if (vantrelApp) {
        connect(vantrelApp, &CVantrelApp::applicationEvent, this, &CNewsReaderPlugin::onApplicationEvent);
        connect(vantrelApp, &CVantrelApp::appBroadcastRequest, this,
                &CNewsReaderPlugin::onAppBroadcastRequest);
    }
    connect(m_communicationModel.get(), &CCommunicationObjectModel::modelPopulated, this,
            &CNewsReaderPlugin::onCommunicationItemsModelPopulated);
    const auto announceCanSend = [this] { emit notifyCanSendMessage(canSendMessage()); };
    connect(&m_attachmentsModel, &QAbstractItemModel::rowsInserted, this, announceCanSend);
    connect(&m_attachmentsModel, &QAbstractItemModel::rowsRemoved, this, announceCanSend);
    connect(&m_typingViewModel, &TypingViewModel::typingDataChanged, this,
            &CNewsReaderPlugin::onTypingDataChanged);
    connectNewsFetcher();
    connect(&m_progressTimer, &QTimer::timeout, this, &CNewsReaderPlugin::onProgressTimeout);

    m_communicationModel->populate();
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

std::shared_ptr<QAbstractItemModel> CNewsReaderPlugin::getPluginModel()
{
    return m_communicationModel;
}

QWidget* CNewsReaderPlugin::createEmptyListWidget()
{
    if (m_communicationModel->rowCount() != 0)
        return nullptr;

    auto* widget = new QWidget();
    auto* layout = new QVBoxLayout(widget);
    layout->setContentsMargins(kEmptyListMargin, kEmptyListMargin, kEmptyListMargin, kEmptyListMargin);
    layout->setSpacing(0);
    layout->addStretch();

    auto* icon = new CIconControl(widget);
    icon->setMinimumSize(kEmptyListIconSize, kEmptyListIconSize);
    icon->setIconSize(QSize(kEmptyListIconSize, kEmptyListIconSize));
    icon->setIcon(qtHelpers::images::icon(QString::fromLatin1(kIconNoNews)));
    auto* fade = new QGraphicsOpacityEffect(icon);
    fade->setOpacity(kEmptyListIconOpacity);
    icon->setGraphicsEffect(fade);
    layout->addWidget(icon);

    auto* label = new QLabel(QObject::tr("No communications received yet"), widget);
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignCenter);
    QFont font = label->font();
    font.setPointSize(kEmptyListTextPointSize);
    font.setWeight(QFont::Normal);
    label->setFont(font);
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, getPaletteColor(clrPlaceholderText));
    label->setPalette(palette);
    layout->addWidget(label);
    layout->addStretch();
    return widget;
}

void CNewsReaderPlugin::restoreSelection()
{
    CCommunicationObjectModel* model = m_communicationModel.get();
    for (int row = 0; row < model->rowCount(); ++row) {
        const QModelIndex folder = model->index(row, 0);
        if (folder.data(CCommunicationObjectModel::ExpandedRole).toBool())
            emit listItemExpandRequest(folder);
        if (!folder.data(CCommunicationObjectModel::FolderIdRole).toBool())
            continue;
        for (int child = 0; child < model->rowCount(folder); ++child)
            emit listItemEditorRequest(model->index(child, 0, folder));
    }
    if (m_currentIndex.isValid())
        emit listItemSelectionRequest(m_currentIndex, kSelectRowFlags);
    else
        selectItem(startItem());
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

void CNewsReaderPlugin::onPluginItemActivated(const QModelIndex& index)
{
    if (!index.data(CCommunicationObjectModel::IsFolderRole).toBool())
        return;
    if (index.data(CCommunicationObjectModel::ExpandedRole).toBool()) {
        emit listItemCollapseRequest(index);
        if (m_stackedWidget)
            m_stackedWidget->setCurrentIndex(kFolderPage);
        return;
    }
    m_expanding = true;
    emit listItemExpandRequest(index);
    emit listItemSelectionRequest(m_communicationModel->index(0, 0, index), kSelectRowFlags);
    m_expanding = false;
}

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
{
    CNewIncidentDialog dialog(vantrelApp ? vantrelApp->mainWidget() : nullptr);
    dialog.setWindowFlags(Qt::WindowFlags(kDialogWindowFlags));
    dialog.setWindowModality(Qt::WindowModality(kDialogModality));
    connect(&dialog, &CNewIncidentDialog::newIncidentCreated, this, &CNewsReaderPlugin::onNewIncidentCreated);
    dialog.Execute();
}

void CNewsReaderPlugin::setCurrentIndex(const QModelIndex& index)
{
    if (m_currentIndex != index)
        m_currentIndex = index;
}

void CNewsReaderPlugin::onRequestApplicationExit()
{}

void CNewsReaderPlugin::onHideNewsEntryClicked(const QModelIndex& index)
{
    // The list follows when the fetcher reports the change.
    if (index.isValid() && m_newsFetcher)
        m_newsFetcher->markNewsEntryHidden(index.data(CCommunicationObjectModel::KeyRole).toString());
}

void CNewsReaderPlugin::onSetWebPageContentFinished(bool)
{}

void CNewsReaderPlugin::onCommunicationItemsModelPopulated()
{
    refreshIcon(true);
    if (isSelected())
        restoreSelection();
    if (!m_pendingNewsEntryId.isEmpty()) {
        const QModelIndex requested = findEntry(m_pendingNewsEntryId);
        if (requested.isValid()) {
            selectItem(requested);
            m_pendingNewsEntryId.clear();
        }
    }
    if (!m_currentIndex.isValid() && m_viewSetUp)
        selectItem(startItem());
}

void CNewsReaderPlugin::onEntryReadStatusChanged(Messenger::MessageEntryPtr)
{
    refreshIcon(!isSelected());
}

void CNewsReaderPlugin::onListItemExpanded(const QModelIndex& index)
{
    m_communicationModel->setData(index, true, CCommunicationObjectModel::ExpandedRole);
}

void CNewsReaderPlugin::onListItemCollapsed(const QModelIndex& index)
{
    m_communicationModel->setData(index, false, CCommunicationObjectModel::ExpandedRole);
}

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

void CNewsReaderPlugin::onTypingDataChanged(QString label)
{
    if (m_typingLabel)
        m_typingLabel->setText(label);
}

void CNewsReaderPlugin::onApplicationEvent(QEvent* event)
{
    if (!event || event->type() != CReadNewsEntryRequest::EventType)
        return;
    const auto* request = static_cast<CReadNewsEntryRequest*>(event);
    m_pendingNewsEntryId = request->getNewsEntryId();
    m_pendingRequestFlags = request->getFlags();
    event->accept();

    const QModelIndex listed = findEntry(m_pendingNewsEntryId);
    if (listed.isValid()) {
        selectItem(listed);
        m_pendingNewsEntryId.clear();
    } else if (m_newsFetcher) {
        // The entry is not listed yet: have the fetcher reload the conversations; the next population
        // selects it.
        m_newsFetcher->startFetchIssues();
    }
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

void CNewsReaderPlugin::selectItem(const QModelIndex& index)
{
    if (!index.isValid())
        return;
    if (!index.data(CCommunicationObjectModel::IsFolderRole).toBool())
        emit listItemExpandRequest(index.parent());
    emit listItemSelectionRequest(index, kSelectRowFlags);
}

QModelIndex CNewsReaderPlugin::findEntry(const QString& id) const
{
    const QModelIndex index = m_communicationModel->indexForKey(id);
    if (index.data(CCommunicationObjectModel::IsFolderRole).toBool())
        return {};
    return index;
}

QModelIndex CNewsReaderPlugin::startItem() const
{
    const QModelIndex first = m_communicationModel->index(0, 0);
    if (!first.isValid() ||
        first.data(CCommunicationObjectModel::FolderIdRole).toInt() == kNoStartSelectionFolderId)
        return {};
    return m_communicationModel->index(0, 0, first);
}

void CNewsReaderPlugin::onNewIncidentCreated(const EntityDto::EntityDto& ticket)
{
    if (m_newsFetcher)
        m_newsFetcher->addNewIncident(ticket);
}

void CNewsReaderPlugin::onProgressTimeout()
{
    m_progressTimer.stop();
    if (m_inputAreaStack)
        m_inputAreaStack->setCurrentIndex(kInputAreaWaitPage);
}

bool CNewsReaderPlugin::canSendMessage() const
{
    return !messageText().isEmpty() || m_attachmentsModel.rowCount() > 0;
}

QString CNewsReaderPlugin::messageText() const
{
    return QString();
}
