#pragma once
// The "Communications" page: the module's single plugin object. The host creates it through the module's
// plugin entry, shows its list model in the navigation tree and its form on the right, and drives it through
// IKolPlugin and the view-model base. It owns everything the page shows; drafts, read marks and messages
// live in the host's services.

#include "AppBroadcastRequest.h"
#include "CAbstractKolPlugin.h"
#include "CAttachmentsModel.h"
#include "CFilePreviewManager.h"
#include "CIncidentCommunication.h"
#include "CListNavigator.h"
#include "CMessageItemsDocument.h"
#include "CNewsNotice.h"
#include "CPluginAttention.h"
#include "CRightHandPage.h"
#include "EntityDto.h"
#include "MessageEntry.h"
#include "TypingViewModel.h"

#include <QIcon>
#include <QPersistentModelIndex>
#include <QPointer>
#include <QTimer>
#include <QUrl>

#include <memory>

class CAttachmentOpener;
class CComposer;
class CCommunicationObjectModel;
class CConversationView;
class CMessageSender;
class CNewsFetcher;
class QStackedWidget;
class QTextBrowser;

class CNewsReaderPlugin : public CAbstractKolPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID IKolPlugin_iid FILE "newsReader.json")

public:
    // Image names of the page's icon in the host.
    static constexpr const char* kIconNoNews = "ico-plugin-no-news";
    static constexpr const char* kIconNews = "ico-plugin-news";
    static constexpr const char* kIconUrgentNews = "ico-plugin-urgent-news";

    // The new conversation dialog is a dialog window, modal to the host's main window.
    static constexpr int kDialogWindowFlags = 3;
    static constexpr int kDialogModality = 1;

    // How often the task-bar button flashes when news arrive while the host is in the background.
    static constexpr unsigned kFlashCount = 10;

    // Selection flags of the plugin's selection requests (the host's value 19): clear, select, make current.
    static constexpr QItemSelectionModel::SelectionFlags kSelectRowFlags =
        QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Current;
    // The folder type whose first entry is never selected at start (the history of offers).
    static constexpr int kNoStartSelectionFolderId = 2;

    CNewsReaderPlugin();
    ~CNewsReaderPlugin() override;

    // View-model side.
    bool eventFilter(QObject* watched, QEvent* event) override;
    QString getUiFormName() const override;
    // Finds the loaded form's controls, styles and wires them; a control the form lacks is fatal.
    void setupView() override;
    QString getCaption() const override;
    QIcon getPluginIcon() const override;
    bool hasPluginView() const override;
    bool isMessengerModeDisabled() const override;
    PluginVisibility getPluginVisibility() const override;
    void onPluginDeactivating() override;

    // IKolPlugin side.
    QWidget* releaseEmptyListWidget() override;
    QString getPluginName() const override;
    std::shared_ptr<QAbstractItemModel> getPluginModel() override;
    QWidget* createEmptyListWidget() override;
    void restoreSelection() override;
    void onPluginViewShown() override;
    QString getTranslationName() const override;
    QString getTooltip() const override;
    QString getPluginId() const override;
    bool hasCustomToolbar() const override;

signals:
    void pluginDataChanged();
    void notifyCanSendMessage(bool canSend);
    void notifyCanComposeNewMessage(bool canCompose);

public slots:
    void onPluginItemActivated(const QModelIndex& index) override;
    void onPluginItemSelected(const QModelIndex& index, const QModelIndex& prev) override;
    bool keepItemSelected() override;
    void setIsSelected(bool value) override;
    void onCommunicationReceived(CIncidentCommunication communication);
    void onCommunicationDeleted(CIncidentCommunication communication);
    void onWriteUsLinkActivated();
    void setCurrentIndex(const QModelIndex& index);
    void onRequestApplicationExit();
    void onHideNewsEntryClicked(const QModelIndex& index);
    void onSetWebPageContentFinished(bool ok);
    void onCommunicationItemsModelPopulated();
    void onEntryReadStatusChanged(Messenger::MessageEntryPtr entry);
    void onListItemExpanded(const QModelIndex& index) override;
    void onListItemCollapsed(const QModelIndex& index) override;
    void onSyncViewRequest();
    void onToastClicked();
    void onSendMessageClicked();
    void onAddAttachmentClicked();
    void onAppBroadcastRequest(AppBroadcastRequest id);
    void onUpdateCurrentIssueMessages(QString incidentId);
    void onThreadIsBeingEdited(CIncidentCommunication communication, bool isEditing);
    void onWatchersCacheChanged();
    void onTypingDataChanged(QString label);

private:
    void onApplicationEvent(QEvent* event);
    void connectNewsFetcher();
    void onProgressTimeout();
    void onNewIncidentCreated(const EntityDto::EntityDto& ticket);
    // The can-send rule and whether the shown conversation takes messages, announced to the buttons.
    void updateComposerState();
    // The conversation's draft changed on the server side: the shown one gets it into its composer.
    void onDraftChanged(const QModelIndex& index);
    // Sets the entry's read mark (the model tells the news fetcher) and refreshes the icon quietly.
    void markRead(const QModelIndex& index);
    // Shows a news entry in the web page or a conversation in the thread; `index` is not a folder.
    void showItem(const QModelIndex& index);
    // Shows the current item again after the model changed it, keeping the thread where the user scrolled.
    void onCommunicationDataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight);
    // Chooses the right-hand page once the event loop is idle, when the selection has settled.
    void chooseRightHandPageWhenIdle();
    // The right-hand page for the current item; `expanding` keeps a folder's own page from showing.
    void chooseRightHandPage(bool expanding);
    // Asks the host for one toast about the newest urgent entry, once per plugin lifetime.
    void showUrgentToast();
    // Part of setupView: the news web view, where the platform allows one.
    // Part of setupView: the composer, the conversation view and the sender get their controls.
    void setupConversation();
    // Links in the thread document (attachments); the document never navigates by itself.
    void onThreadAnchorClicked(const QUrl& url);

    // Members in the order of their creation; they are released in reverse.
    CAttachmentsModel m_attachmentsModel;
    CMessageItemsDocument m_threadDocument;
    QPersistentModelIndex m_currentIndex;
    QString m_pendingRequestText;
    CFilePreviewManager m_previewManager;
    QTimer m_progressTimer;
    TypingViewModel m_typingViewModel;
    std::shared_ptr<CNewsFetcher> m_newsFetcher;
    std::shared_ptr<CCommunicationObjectModel> m_communicationModel;
    CNewsNotice m_notice;
    CRightHandPage m_rightHandPage;
    CListNavigator m_navigator{*this, *m_communicationModel};
    CPluginAttention m_attention{*this, m_notice};
    CAttachmentOpener* m_attachmentOpener = nullptr;
    QPointer<QStackedWidget> m_inputAreaStack;
    QPointer<QTextBrowser> m_issueMessages;
    QPointer<QWidget> m_emptyListWidget;
    // The objects each concern of the page is handed to.
    CConversationView* m_conversationView = nullptr;
    CMessageSender* m_sender = nullptr;
    QPointer<CComposer> m_composer;
    int m_pendingRequestFlags = 0;
    bool m_viewSetUp = false;
    // Raised while the plugin itself expands a folder, so that the folder's own page is not shown.
    bool m_expanding = false;
    // Raised by the first toast and never cleared: the user hears about urgent news once per run.
    bool m_toastShown = false;
};
