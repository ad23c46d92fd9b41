#pragma once
// The host's sign-in form: e-mail and password with a "Create account" page. Hosts embed it in dialogs; the
// dialog reads its capability flags to set up its own buttons.

#include "baseLibGlobal.h"

#include <QWidget>

class QLabel;
class QLineEdit;
class QStackedWidget;

class BASELIB_EXPORT SignInControl : public QWidget
{
    Q_OBJECT
public:
    // Capability flags announced by uiCapsChanged() (getUiCapsFlags()).
    enum UiCap : unsigned
    {
        CapCanCancel = 0x1,          // the embedding dialog may offer Cancel
        CapSubmitEnabled = 0x2,      // the form is filled well enough to submit
        CapSubmitVisible = 0x4,      // the embedding dialog should show its submit (OK) button
        CapCanCreateAccount = 0x8,   // creating an account is offered
        CapBusy = 0x10,              // a request is running
        CapCreateAccountPage = 0x80, // the create-account page is shown
        CapFinished = 0x800,         // signed in: only Close remains
    };

    explicit SignInControl(QWidget* parent = nullptr);
    ~SignInControl() override;

    unsigned getUiCapsFlags() const;
    bool isSubmitEnabled() const;
    bool isSubmitVisible() const;
    // The text of the dialog's submit button for the current page ("Sign in", "Create account"), or
    // `defaultName` when the page has none.
    QString getSubmitActionName(const QString& defaultName = QString()) const;

    void setFocusToLogin();
    // Emits uiCapsChanged() so that a new listener learns the current flags.
    void broadcastUiCapsFlags();
    // Submits the current page (sign in, or create the account).
    void startAction();
    // Handles Cancel/Escape: on the create-account page goes back to signing in and returns true.
    bool handleReject();

public slots:
    void handleCreateAccountRequest();

signals:
    void uiCapsChanged();

private:
    enum Page
    {
        SignInPage = 0,
        CreateAccountPage = 1,
    };

    void updateCaps();
    unsigned computeCaps() const;
    bool isFormFilled() const;
    void setInputsEnabled(bool enabled);
    void showError(const QString& text);
    void onSignedIn();
    void onSignInFailed(const QString& reason);

    QStackedWidget* m_pages;
    QLineEdit* m_email;
    QLineEdit* m_password;
    QLineEdit* m_newEmail;
    QLineEdit* m_newPassword;
    QLineEdit* m_firstName;
    QLineEdit* m_lastName;
    QLabel* m_error;
    unsigned m_caps = 0;
    bool m_busy = false;
};
