#pragma once
// The line in the middle of an empty thread view that says why it is empty: the thread is still loading, or
// the conversation has no messages. Hidden as soon as the thread shows a message. Owned by the view's
// viewport, so it goes with the view.

#include <QObject>
#include <QPointer>

class QLabel;
class QTextBrowser;

class CThreadPlaceholder : public QObject
{
public:
    explicit CThreadPlaceholder(QTextBrowser* view);

    // What the view shows now: whether a load runs and whether the thread has any message.
    void update(bool loading, bool hasMessages);

private:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void place();

    enum class Reason
    {
        None,
        Loading,
        Empty,
    };

    QPointer<QTextBrowser> m_view;
    QPointer<QLabel> m_label;
    Reason m_shown = Reason::None;
};
