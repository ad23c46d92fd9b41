#pragma once
// A small popup that points at a place in a widget: the host's balloon. It closes itself after its timeout,
// on its close button, or when its target widget goes away.

#include "baseLibGlobal.h"

#include <QMessageBox>
#include <QPointer>
#include <QWidget>

class BASELIB_EXPORT CAbstractPopupAssistant : public QWidget
{
    Q_OBJECT
public:
    ~CAbstractPopupAssistant() override;

    QString text() const;
    QMessageBox::Icon icon() const;
    QWidget* target() const;
    QRect targetRect() const; // in target coordinates
    unsigned timeout() const; // milliseconds; 0 or 0xFFFFFFFF: until closed

    // Whether `timeout` keeps a balloon open until it is closed by hand or its target goes away.
    static bool isPermanentTimeout(unsigned timeout);

signals:
    // Emitted once, when the balloon closes for any reason (timeout, close button, target gone, replaced).
    void closed();

protected:
    // The balloon is a tool-tip window of the target's top-level window and deletes itself when closed.
    CAbstractPopupAssistant(QWidget* target, const QString& text, QMessageBox::Icon icon, const QRect& rect,
                            unsigned timeout);

    void closeEvent(QCloseEvent* event) override;

    QPointer<QWidget> m_target;
    QString m_text;
    QMessageBox::Icon m_icon;
    QRect m_rect;
    unsigned m_timeout;

private:
    bool m_closedEmitted = false;
};
