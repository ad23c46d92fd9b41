#pragma once
// The support conversation on the right-hand page: its header, its thread loaded from the server into the
// thread document, the live updates that keep that thread current while it is shown (new, edited, deleted
// messages, participant names), the typing line under it, and whether the composer is offered. Created by
// the plugin with the objects it owns; it starts working once the main screen's controls are attached and
// ignores everything before.

#include "CIncidentCommunication.h"
#include "CMessageItemIndex.h"
#include "COlderMessages.h"
#include "EntityDto.h"

#include <QList>
#include <QObject>
#include <QPersistentModelIndex>
#include <QPointer>
#include <QRect>

#include <memory>

class CAttachmentsModel;
class CComposer;
class CCommunicationObjectModel;
class CMessageItemsDocument;
class CNewsFetcher;
class CustomerEntitiesQueryVectorHandler;
class CThreadPlaceholder;
class CViewModelBase;
class QLabel;
class QProgressBar;
class QTextBrowser;
class QToolButton;
class QWidget;
class TypingViewModel;

class CConversationView : public QObject
{
    Q_OBJECT
public:
    struct Controls
    {
        QTextBrowser* thread = nullptr;
        QProgressBar* progress = nullptr;
        QWidget* inputArea = nullptr;
        QLabel* typing = nullptr;
        QLabel* title = nullptr;
        QLabel* state = nullptr;
        QToolButton* stateButton = nullptr;
        QLabel* createDate = nullptr;

        // The conversation's controls in the main screen's loaded form.
        static Controls find(const CViewModelBase* viewModel);
    };

    // The composer state (model role) of a conversation that takes no more messages.
    static constexpr int kClosedComposerState = 2;
    // A long thread opens with this many of its newest messages; older ones follow in small portions, one
    // per turn of the event loop while the reader is near the top, so that laying one out never holds up
    // scrolling for more than a frame or two.
    static constexpr qsizetype kShownAtOpen = 150;
    static constexpr qsizetype kOlderPortion = 30;
    // Read by the host style: a progress bar with this property set stands still.
    static constexpr const char* kStopAnimationProperty = "stopProgressBarAnimation";

    CConversationView(CMessageItemsDocument& document, TypingViewModel& typing,
                      CAttachmentsModel& attachments, std::shared_ptr<CNewsFetcher> fetcher,
                      CCommunicationObjectModel& model, QObject* parent = nullptr);
    ~CConversationView() override;

    // The main screen's controls; until they are attached, every update is ignored.
    void attach(const Controls& controls, CComposer* composer);
    bool isAttached() const;

    QString currentThreadId() const;
    // The conversation shown, or the invalid index.
    QModelIndex currentConversation() const;
    // Whether the shown conversation takes messages.
    bool canCompose() const;

    // Forgets the shown thread before another item is shown: a running fetch is no longer followed.
    void reset();
    // Makes a conversation the shown one: header, thread, draft.
    void show(const QModelIndex& index);
    // The header and the composer's availability, and with `reload` the thread as well.
    void showHeader(const QModelIndex& index, bool reload);
    // Puts the conversation's saved draft into the composer, unless a draft request is under way.
    void restoreDraft(const QModelIndex& index);
    // The server has new messages for a conversation (an empty id: whichever is shown).
    void reloadIfShown(const QString& incidentId, bool pageSelected);

    void onCommunicationReceived(const CIncidentCommunication& communication);
    void onCommunicationDeleted(const CIncidentCommunication& communication, bool pageSelected);
    void onThreadIsBeingEdited(const CIncidentCommunication& communication, bool isEditing);
    void onWatchersCacheChanged();
    void setTypingText(const QString& text);

    // Brings the newest message into view.
    void scrollToEnd();
    // Brings a message into view.
    void scrollTo(const CMessageItemIndex& index);
    // The message's rectangle in the thread view's coordinates; invalid when the message is not shown.
    QRect messageRect(const CMessageItemIndex& index) const;
    QTextBrowser* threadView() const;

signals:
    // Whether a conversation takes messages may have changed.
    void composerStateChanged();
    // A message of the shown thread is now in the document (for its thumbnails).
    void messageShown(const CMessageItemIndex& index);
    // The shown thread was loaded from the server.
    void threadLoaded(const QString& threadId);

private:
    struct Incoming
    {
        CIncidentCommunication record;
        bool deletion = false;
        bool fetched = false; // part of a thread (re)load: a message already shown as it is stays put
    };

    void loadThread(const QModelIndex& index);
    void onMessagesLoaded(const EntityDto::EntityDto& ticket, const QList<EntityDto::EntityDto>& entities);
    void onFetchFinished();
    void setBusy(bool busy);
    void updatePlaceholder();
    // Puts records into the document in one edit: new ones at the end, new versions in place of old ones.
    // Returns how many of them changed the document (the others wait above the shown part).
    qsizetype applyMessages(const QList<Incoming>& records);
    void flushIncoming();
    // Where a loaded thread starts in the document: the messages before that place wait in m_older.
    qsizetype firstShownOf(const QList<Incoming>& records) const;
    // Near the top of a long thread, the next portion of older messages goes in above, the view staying
    // where it was.
    void onScrolled(int value);
    void showOlder();
    bool eventFilter(QObject* watched, QEvent* event) override;
    void elideTitle();
    bool isCurrentThread(const QString& threadId) const;
    static bool showsSame(const CIncidentCommunication& shown, const CIncidentCommunication& record);

    CMessageItemsDocument& m_document;
    TypingViewModel& m_typing;
    CAttachmentsModel& m_attachments;
    std::shared_ptr<CNewsFetcher> m_fetcher;
    CCommunicationObjectModel& m_model;
    QPointer<QTextBrowser> m_thread;
    QPointer<CThreadPlaceholder> m_placeholder;
    QPointer<QProgressBar> m_progress;
    QPointer<QWidget> m_inputArea;
    QPointer<QLabel> m_typingLabel;
    QPointer<QLabel> m_title;
    QString m_fullTitle;
    QPointer<QLabel> m_state;
    QPointer<QToolButton> m_stateButton;
    QPointer<QLabel> m_createDate;
    QPointer<CComposer> m_composer;
    bool m_attached = false;

    QString m_threadId;
    QPersistentModelIndex m_conversation;
    QPointer<CustomerEntitiesQueryVectorHandler> m_fetch;
    // A reload asked for while a fetch runs starts once it has ended; many requests make one reload.
    bool m_reloadQueued = false;
    // Live updates wait here until the event loop is idle, so that a burst is laid out once.
    QList<Incoming> m_incoming;
    COlderMessages m_older;
    bool m_olderQueued = false;
};
