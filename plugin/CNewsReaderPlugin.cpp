#include "CNewsReaderPlugin.h"

#include "CAttachmentOpener.h"
#include "CCommunicationObjectModel.h"
#include "CComposer.h"
#include "CControlLookup.h"
#include "CConversationView.h"
#include "CEmptyListWidget.h"
#include "CFormTexts.h"
#include "CMainScreenStyle.h"
#include "CMessageSender.h"
#include "CNewIncidentDialog.h"
#include "CNewsFetcher.h"
#include "CNewsNotice.h"
#include "CPluginItemDelegate.h"
#include "CReadNewsEntryRequest.h"
#include "CRightHandPage.h"
#include "CVantrelApp.h"
#include "CWriteUsOffers.h"
#include "ConfigurableObjects.h"
#include "HostWindows.h"
#include "MetaTypes.h"
#include "QtHelpersInvoke.h"

#include <QLabel>
#include <QMetaMethod>
#include <QStackedWidget>
#include <QTextBrowser>
#include <QToolButton>

namespace {

const QString kPluginId = QStringLiteral("newsReader");
const QString kMainFormName = QStringLiteral("newsReader.mainScreen.ui");

// The page shown when the progress timer expires.
constexpr int kInputAreaWaitPage = 1;

// The one toast about urgent news: the entry's title in bold over its summary.
const QString kToastText = QStringLiteral("<b>%1</b><br/>%2");
constexpr int kToastTimeout = -1;

// The page the composer's stack starts on.
constexpr int kFirstPage = 0;

} // namespace

CNewsReaderPlugin::CNewsReaderPlugin()
    : CAbstractKolPlugin(nullptr)
    , m_previewManager(nullptr)
    , m_typingViewModel(this)
    , m_newsFetcher(vantrelApp ? vantrelApp->getNewsFetcher() : nullptr)
    , m_communicationModel(std::make_shared<CCommunicationObjectModel>())
    , m_notice(m_newsFetcher)
{
    newsReader::registerMetaTypes();

    auto* delegate = new CPluginItemDelegate();
    setItemDelegate(delegate);
    m_conversationView = new CConversationView(m_threadDocument, m_typingViewModel, m_attachmentsModel,
                                               m_newsFetcher, *m_communicationModel, this);
    m_sender =
        new CMessageSender(m_threadDocument, m_attachmentsModel, *m_communicationModel, m_newsFetcher, this);
    m_attachmentOpener = new CAttachmentOpener(m_threadDocument, m_previewManager, this);
    connect(m_conversationView, &CConversationView::messageShown, m_attachmentOpener,
            &CAttachmentOpener::requestThumbnails);
    connect(m_conversationView, &CConversationView::composerStateChanged, this,
            &CNewsReaderPlugin::updateComposerState);
    connect(m_sender, &CMessageSender::canSendChanged, this, &CNewsReaderPlugin::updateComposerState);

    connect(delegate, &CPluginItemDelegate::hideMessageRequest, this,
            &CNewsReaderPlugin::onHideNewsEntryClicked);
    if (vantrelApp) {
        connect(vantrelApp, &CVantrelApp::applicationEvent, this, &CNewsReaderPlugin::onApplicationEvent);
        connect(vantrelApp, &CVantrelApp::appBroadcastRequest, this,
                &CNewsReaderPlugin::onAppBroadcastRequest);
    }
    connect(m_communicationModel.get(), &CCommunicationObjectModel::modelPopulated, this,
            &CNewsReaderPlugin::onCommunicationItemsModelPopulated);
    connect(m_communicationModel.get(), &CCommunicationObjectModel::draftChanged, this,
            &CNewsReaderPlugin::onDraftChanged);
    connect(m_communicationModel.get(), &QAbstractItemModel::dataChanged, this,
            &CNewsReaderPlugin::onCommunicationDataChanged);
    connect(&m_attachmentsModel, &QAbstractItemModel::rowsInserted, this,
            &CNewsReaderPlugin::updateComposerState);
    connect(&m_attachmentsModel, &QAbstractItemModel::rowsRemoved, this,
            &CNewsReaderPlugin::updateComposerState);
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

void CNewsReaderPlugin::setupView()
{
    CFormTexts::translate(CControlLookup::viewOf(this));
    m_issueMessages = CControlLookup::find<QTextBrowser>(this, QStringLiteral("issueMessages"));
    m_issueMessages->setDocument(&m_threadDocument);
    CMainScreenStyle::apply(this);
    // Every link click must reach the plugin: attachment links are downloads, not places to go.
    m_issueMessages->setOpenExternalLinks(false);
    m_issueMessages->setOpenLinks(false);
    connect(m_issueMessages, &QTextBrowser::anchorClicked, this, &CNewsReaderPlugin::onThreadAnchorClicked);
    m_attachmentOpener->attach(m_issueMessages);

    const bool newsView = vantrelApp && vantrelApp->getCanUseWebEngineWidgets() && !IsWindowsPE();
    m_rightHandPage.attach(this, newsView, this, SLOT(onSetWebPageContentFinished(bool)));

    CWriteUsOffers::attach(CControlLookup::viewOf(this), this, [this] { onWriteUsLinkActivated(); });

    setupConversation();

    m_inputAreaStack = CControlLookup::find<QStackedWidget>(this, QStringLiteral("inputAreaStack"));
    m_inputAreaStack->setCurrentIndex(kFirstPage);

    m_viewSetUp = true;
}

void CNewsReaderPlugin::setupConversation()
{
    const CComposer::Controls composer = CComposer::Controls::find(this);
    m_composer = new CComposer(composer, m_attachmentsModel, composer.editor);
    connect(composer.sendButton, &QToolButton::clicked, this, &CNewsReaderPlugin::onSendMessageClicked);
    connect(this, &CNewsReaderPlugin::notifyCanSendMessage, composer.sendButton, &QWidget::setEnabled);
    connect(composer.addAttachment, &QToolButton::clicked, this, &CNewsReaderPlugin::onAddAttachmentClicked);
    connect(this, &CNewsReaderPlugin::notifyCanComposeNewMessage, composer.addAttachment,
            &QWidget::setEnabled);
    connect(m_composer, &CComposer::contentChanged, this, &CNewsReaderPlugin::updateComposerState);
    connect(m_composer, &CComposer::sendRequested, this, &CNewsReaderPlugin::onSendMessageClicked);
    connect(m_composer, &CComposer::draftEdited, this, [this](const QString& text) {
        if (m_currentIndex.isValid())
            m_communicationModel->setDraftText(m_currentIndex, text);
    });
    composer.editor->installEventFilter(this);
    composer.editor->viewport()->installEventFilter(this);
    composer.attachmentsList->installEventFilter(this);

    m_conversationView->attach(CConversationView::Controls::find(this), m_composer);
    m_sender->attach(m_composer, m_conversationView);
}

bool CNewsReaderPlugin::eventFilter(QObject* watched, QEvent* event)
{
    if (m_composer && m_composer->filterEvent(watched, event))
        return true;
    return CAbstractKolPlugin::eventFilter(watched, event);
}

void CNewsReaderPlugin::onThreadAnchorClicked(const QUrl& url)
{
    const QString href = url.toString();
    if (CMessageSender::isSendAgainLink(href)) {
        m_sender->sendAgain(href);
        return;
    }
    m_attachmentOpener->onLinkClicked(url);
}

QString CNewsReaderPlugin::getCaption() const
{
    return QObject::tr("Communications");
}

QIcon CNewsReaderPlugin::getPluginIcon() const
{
    return m_attention.icon();
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

    return new CEmptyListWidget(QString::fromLatin1(kIconNoNews));
}

void CNewsReaderPlugin::restoreSelection()
{
    m_navigator.restore(m_currentIndex);
}

void CNewsReaderPlugin::onPluginViewShown()
{}

QString CNewsReaderPlugin::getTranslationName() const
{
    return kPluginId;
}

QString CNewsReaderPlugin::getTooltip() const
{
    if (const Messenger::MessageEntryPtr entry = m_notice.tooltipEntry())
        return entry->title;
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
        m_rightHandPage.showFolderPage();
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
        m_attention.runAttentionRule();
    CAbstractKolPlugin::setIsSelected(value);
}

void CNewsReaderPlugin::onCommunicationReceived(CIncidentCommunication communication)
{
    m_conversationView->onCommunicationReceived(communication);
}

void CNewsReaderPlugin::onCommunicationDeleted(CIncidentCommunication communication)
{
    m_conversationView->onCommunicationDeleted(communication, isSelected());
}

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
    const bool folder = index.data(CCommunicationObjectModel::IsFolderRole).toBool();
    if (index.isValid() && !folder) {
        markRead(index);
        showItem(index);
    } else if (index.isValid()) {
        m_rightHandPage.clearNews();
    }
    if (m_currentIndex != index)
        m_currentIndex = index;
    chooseRightHandPageWhenIdle();
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
    m_attention.refresh(true, m_viewSetUp);
    if (isSelected())
        restoreSelection();
    m_navigator.selectRequested();
    if (!m_currentIndex.isValid() && m_viewSetUp)
        m_navigator.select(m_navigator.startItem());
    chooseRightHandPageWhenIdle();
    showUrgentToast();
}

void CNewsReaderPlugin::onEntryReadStatusChanged(Messenger::MessageEntryPtr entry)
{
    const QModelIndex index = entry ? m_navigator.find(entry->id) : QModelIndex();
    if (index.isValid()) {
        emit listItemExpandRequest(index.parent());
        // The user is looking at it: whatever the fetcher says, the shown entry stays read.
        if (index == m_currentIndex && isSelected()) {
            markRead(index);
            return;
        }
        m_communicationModel->refreshItem(index);
    }
    m_attention.refresh(!isSelected(), m_viewSetUp);
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
    m_communicationModel->populate();
    chooseRightHandPageWhenIdle();
    if (!m_notice.hasUrgent() && !m_notice.showNewsSetting())
        emit stopPluginAnimation(this);
    m_attention.refresh(false, m_viewSetUp);
}

void CNewsReaderPlugin::onToastClicked()
{
    setIsSelected(true);
}

void CNewsReaderPlugin::onSendMessageClicked()
{
    m_sender->send(m_currentIndex);
}

void CNewsReaderPlugin::onAddAttachmentClicked()
{
    if (m_composer)
        m_composer->addFilesFromDialog();
}

void CNewsReaderPlugin::onAppBroadcastRequest(AppBroadcastRequest id)
{
    if (id != BroadcastWriteToSupport)
        return;
    setIsSelected(true);
    onWriteUsLinkActivated();
}

void CNewsReaderPlugin::onUpdateCurrentIssueMessages(QString incidentId)
{
    m_conversationView->reloadIfShown(incidentId, isSelected());
}

void CNewsReaderPlugin::onThreadIsBeingEdited(CIncidentCommunication communication, bool isEditing)
{
    m_conversationView->onThreadIsBeingEdited(communication, isEditing);
}

void CNewsReaderPlugin::onWatchersCacheChanged()
{
    m_conversationView->onWatchersCacheChanged();
}

void CNewsReaderPlugin::onTypingDataChanged(QString label)
{
    m_conversationView->setTypingText(label);
}

void CNewsReaderPlugin::onApplicationEvent(QEvent* event)
{
    if (!event || event->type() != CReadNewsEntryRequest::EventType)
        return;
    const auto* request = static_cast<CReadNewsEntryRequest*>(event);
    m_pendingRequestFlags = request->getFlags();
    event->accept();
    if (!m_navigator.request(request->getNewsEntryId()) && m_newsFetcher) {
        // The entry is not listed yet: have the fetcher reload the conversations; the next population
        // selects it.
        m_newsFetcher->startFetchIssues();
    }
    setIsSelected(true);
}

void CNewsReaderPlugin::markRead(const QModelIndex& index)
{
    m_communicationModel->setData(index, true, CCommunicationObjectModel::ReadRole);
    m_attention.refresh(false, m_viewSetUp);
}

void CNewsReaderPlugin::showItem(const QModelIndex& index)
{
    const bool conversation = index.data(CCommunicationObjectModel::ConversationRole).toBool();
    // Selecting the shown conversation again (the host does after list rebuilds) keeps its thread.
    const bool alreadyShown = conversation && index == m_conversationView->currentConversation();
    if (!alreadyShown)
        m_conversationView->reset();
    if (alreadyShown)
        m_conversationView->showHeader(index, false);
    else if (conversation && m_viewSetUp)
        m_conversationView->show(index);
    if (conversation)
        m_attachmentOpener->setThreadId(index.data(CCommunicationObjectModel::KeyRole).toString());
    m_rightHandPage.showEntry(conversation, index.data(CCommunicationObjectModel::ExtraTextRole).toString());
}

void CNewsReaderPlugin::onCommunicationDataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight)
{
    if (!m_currentIndex.isValid() || m_currentIndex.parent() != topLeft.parent() ||
        m_currentIndex.row() < topLeft.row() || m_currentIndex.row() > bottomRight.row())
        return;
    if (m_currentIndex.data(CCommunicationObjectModel::IsFolderRole).toBool())
        return;
    if (m_currentIndex.data(CCommunicationObjectModel::ConversationRole).toBool()) {
        // The header and the composer follow; the thread stays where the user scrolled.
        m_conversationView->showHeader(m_currentIndex, false);
        return;
    }
    showItem(m_currentIndex);
}

void CNewsReaderPlugin::chooseRightHandPageWhenIdle()
{
    // The flag is only raised while the plugin expands a folder, so it is read now, not when idle.
    const bool expanding = m_expanding;
    qtHelpers::invokeOnIdle(this, [this, expanding] { chooseRightHandPage(expanding); });
}

void CNewsReaderPlugin::chooseRightHandPage(bool expanding)
{
    if (m_communicationModel->rowCount() == 0) {
        // The host owns the widget once shown; while it still has it, the same one is asked for again.
        if (!m_emptyListWidget)
            m_emptyListWidget = createEmptyListWidget();
        emit showEmptyListWidgetRequest(m_emptyListWidget);
    }
    const std::optional<CRightHandPage::Page> page =
        m_rightHandPage.choose(*m_communicationModel, m_currentIndex, expanding);
    if (page && *page != CRightHandPage::EmptyListPage && *page != CRightHandPage::NoThreadPage)
        emit hideEmptyListWidgetRequest();
}

void CNewsReaderPlugin::showUrgentToast()
{
    // Asked for once in the plugin's lifetime, by the first population that finds urgent news, even the one
    // that runs while the plugin is being created (before anyone can listen).
    if (m_toastShown)
        return;
    const Messenger::MessageEntryPtr entry = m_notice.newestUrgent();
    if (!entry)
        return;
    // The summary, not the entry's page: the toast is rich text of a few words, in which the server's title
    // and subtitle show as the text they are.
    emit pluginToastRequest(this,
                            kToastText.arg(entry->title.toHtmlEscaped(), entry->subtitle.toHtmlEscaped()),
                            SLOT(onToastClicked()), QMessageBox::NoIcon, kToastTimeout);
    m_toastShown = true;
}

void CNewsReaderPlugin::onNewIncidentCreated(const EntityDto::EntityDto& ticket)
{
    if (!m_newsFetcher)
        return;
    // The user wants to see the request they just made: it is selected as soon as the list has it.
    m_navigator.request(ticket.id);
    m_newsFetcher->addNewIncident(ticket);
}

void CNewsReaderPlugin::onProgressTimeout()
{
    m_progressTimer.stop();
    if (m_inputAreaStack)
        m_inputAreaStack->setCurrentIndex(kInputAreaWaitPage);
}

void CNewsReaderPlugin::updateComposerState()
{
    emit notifyCanSendMessage(m_sender->canSend());
    emit notifyCanComposeNewMessage(m_conversationView->canCompose());
}

void CNewsReaderPlugin::onDraftChanged(const QModelIndex& index)
{
    if (index.isValid() && index == m_currentIndex)
        m_conversationView->restoreDraft(index);
}
