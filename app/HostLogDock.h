#pragma once
// The "Host log" dock: every request a plugin made of the host as the stand-in records it (balloons,
// launched files, opened links, flashed windows, executed dialogs, selection requests, toasts, ...), newest
// last, so that what the plugin does behind the scenes is visible while using the reference host.

#include <QDockWidget>

class QTimer;
class QTreeWidget;

class HostLogDock : public QDockWidget
{
    Q_OBJECT
public:
    explicit HostLogDock(QWidget* parent = nullptr);

    int entryCount() const;

private slots:
    // Events arrive in the middle of plugin calls; the list catches up once the event loop is back.
    void scheduleAppend();

private:
    // Appends the events recorded since the last call.
    void appendNewEvents();

    void clearLog();

    QTreeWidget* m_list = nullptr;
    QTimer* m_appendTimer = nullptr;
    int m_shownEvents = 0;
};
