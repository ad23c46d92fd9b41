#pragma once
// The balloon window behind issueBalloonMessage(): a rounded bubble with a soft shadow and an arrow that
// points at the target rectangle, holding the icon, the word-wrapped text and a close button. Placed below
// the target when the screen has room there, above it otherwise, and always kept inside the screen.

#include "CAbstractPopupAssistant.h"

class QHBoxLayout;
class QLabel;
class QToolButton;

class CBalloonPopup : public CAbstractPopupAssistant
{
    Q_OBJECT
public:
    CBalloonPopup(QWidget* target, const QString& text, QMessageBox::Icon icon, const QRect& rect,
                  unsigned timeout);
    ~CBalloonPopup() override;

    // Where the arrow points, in global coordinates.
    QPoint anchorPoint() const;
    bool arrowOnTop() const { return m_arrowOnTop; }

    // Moves the balloon next to its target again (the target may have moved).
    void reposition();

    static QString iconName(QMessageBox::Icon icon);

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    QPainterPath bubblePath() const;
    void applyMargins();

    QHBoxLayout* m_layout;
    QLabel* m_iconLabel;
    QLabel* m_textLabel;
    QToolButton* m_closeButton;
    bool m_arrowOnTop = true;
    int m_arrowX = 0; // arrow tip, in the balloon's coordinates
};
