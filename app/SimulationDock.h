#pragma once
// The "Support server" dock: drives the simulated support server and the host's switches through the
// control surface, so that everything a real server or user could do to the plugin can be tried by hand
// (support messages, typing, edits and deletes, failing or slow requests, new news, host requests, session
// and feature switches). Every control is an action; the main window lists the same actions in its
// "Support server" menu.

#include <QDockWidget>
#include <QList>

#include <functional>

class QAction;
class QActionGroup;
class QLabel;
class QMenu;
class QTimer;
class QVBoxLayout;

class SimulationDock : public QDockWidget
{
    Q_OBJECT
public:
    // Key (entry id) of the item selected in the navigation tree, or empty.
    using CurrentItemKey = std::function<QString()>;

    SimulationDock(CurrentItemKey currentItemKey, QWidget* parent = nullptr);

    // Fills `menu` with the dock's actions, grouped as in the dock.
    void populateMenu(QMenu* menu) const;

    // The conversation the dock's message actions work on: the selected one, else the server's first.
    QString targetConversationId() const;

signals:
    // A feature switch, setting or the session changed: the host re-reads what plugins show.
    void hostStateChanged();

private:
    struct Group
    {
        QString title;
        QList<QAction*> actions;
    };

    QAction* addAction(Group& group, const QString& text, const std::function<void()>& handler);
    QAction* addToggle(Group& group, const QString& text, bool checked,
                       const std::function<void(bool)>& handler);
    void buildMessageActions();
    void buildRequestActions();
    void buildNewsActions();
    void buildSessionActions();
    void buildBody();

    void postSupportMessage();
    void deleteLastMessage();
    void editLastMessage();
    void renameParticipant();
    void failNextSend(int httpStatus);
    void addNewsEntry(bool urgent);
    void openNewsEntry();
    void refreshPendingCount();

    CurrentItemKey m_currentItemKey;
    QList<Group> m_groups;
    QActionGroup* m_latencyGroup = nullptr;
    QAction* m_typingAction = nullptr;
    QAction* m_holdAction = nullptr;
    QLabel* m_pendingLabel = nullptr;
    QTimer* m_pendingTimer = nullptr;
    int m_newsCounter = 0;
};
