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

signals:
    void closed();

protected:
    CAbstractPopupAssistant(QWidget* target, const QString& text, QMessageBox::Icon icon, const QRect& rect,
                            unsigned timeout);

    QPointer<QWidget> m_target;
    QString m_text;
    QMessageBox::Icon m_icon;
    QRect m_rect;
    unsigned m_timeout;
};
