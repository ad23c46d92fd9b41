#pragma once
// The right-hand side of the main screen: the page stack (empty list, folder, no thread yet, entry), inside
// the entry page the stack of the thread and the news view, and the news view itself. Decides which page
// the selected item gets and turns the stacks to it; the plugin object tells the host about it.

#include <QPointer>

#include <optional>

class CCommunicationObjectModel;
class CViewModelBase;
class QModelIndex;
class QLabel;
class QObject;
class QStackedWidget;
class QString;
class QWebEngineView;

class CRightHandPage
{
public:
    enum Page
    {
        EmptyListPage = 0,
        FolderPage = 1,
        NoThreadPage = 2,
        EntryPage = 3,
    };

    // Finds the stacks in the loaded form and shows the first page. With `newsView`, the web view is made
    // and added to the entry page's stack; its load results go to `loadFinishedSlot` of `receiver`.
    void attach(const CViewModelBase* viewModel, bool newsView, QObject* receiver,
                const char* loadFinishedSlot);

    // The page for `current`: the empty-list page when the list has no rows; nothing while no item is
    // selected, or for a folder the plugin is expanding (its first entry follows at once). Turns the stack.
    std::optional<Page> choose(const CCommunicationObjectModel& model, const QModelIndex& current,
                               bool expanding);

    void showFolderPage();
    // The entry page's inner stack: the thread for a conversation, the news view (with `html`) otherwise.
    void showEntry(bool conversation, const QString& html);
    // A folder has no page of its own in the web view: the last entry must not linger there.
    void clearNews();

    // Seconds after its creation during which a conversation without a thread counts as being assigned.
    static constexpr qint64 ThreadPendingSeconds = 60;

private:
    void setPage(Page page);
    void showRequest(const QModelIndex& conversation);

    QPointer<QStackedWidget> m_pages;
    QPointer<QStackedWidget> m_entryStack;
    QPointer<QStackedWidget> m_noThreadStack;
    // Optional parts of the form: what the user asked for while support has not answered, and the
    // write-us link under a news entry.
    QPointer<QLabel> m_noThreadSubject;
    QPointer<QLabel> m_noThreadFirstMessage;
    QPointer<QLabel> m_entryWriteUs;
    QPointer<QWebEngineView> m_newsView;
};
