#pragma once
// The host's toast: a small rounded note with rich text at the bottom-right corner of the main window that
// hides itself after a few seconds. A click on it calls the slot the requester named and closes it. It is
// a child of the window (not a separate top-level window) so it moves with it and shows up in grabs.

#include <QByteArray>
#include <QFrame>
#include <QMessageBox>
#include <QPointer>

class QLabel;
class QTimer;

class ToastPopup : public QFrame
{
    Q_OBJECT
public:
    static constexpr int kDefaultTimeoutMs = 6000;

    explicit ToastPopup(QWidget* window);

    // `slot` is a SLOT() signature ("1onToastClicked()"); `timeoutMs` -1 uses the default.
    void showToast(QObject* receiver, const QString& text, const char* slot, QMessageBox::Icon icon,
                   int timeoutMs);
    QString text() const;

    // The method name inside a SLOT() signature: "1onToastClicked()" -> "onToastClicked".
    static QByteArray methodName(const char* slotSignature);

signals:
    void clicked();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void placeInCorner();

    QLabel* m_iconLabel = nullptr;
    QLabel* m_textLabel = nullptr;
    QTimer* m_hideTimer = nullptr;
    QPointer<QObject> m_receiver;
    QByteArray m_method;
};
