#pragma once
// The host's account session. The reference host keeps the session in memory and signs in against the
// simulated support server's account list.

#include "SignInUserInfo.h"
#include "baseLibGlobal.h"

#include <QObject>

class BASELIB_EXPORT CSignInService : public QObject
{
    Q_OBJECT
public:
    explicit CSignInService(QObject* parent = nullptr);
    ~CSignInService() override;

    bool getIsSignedIn() const;
    Ordenz::SignIn::UserInfo getLoggedInUserInfo();

    // Starts signing in; the answer comes later as signedIn() or signInFailed(reason).
    void startSignIn(const QString& email, const QString& password);
    // Starts creating an account; on success the user is signed in (signedIn()).
    void startCreateAccount(const QString& email, const QString& password, const QString& firstName,
                            const QString& lastName);
    void signOut();

    // Makes `user` the signed-in user at once (used by the host at start-up when a session is remembered).
    void setSignedInUser(const Ordenz::SignIn::UserInfo& user);

signals:
    void signedIn();
    void signInFailed(const QString& reason);
    void signedOut();

private:
    bool m_signedIn = false;
    Ordenz::SignIn::UserInfo m_user;
};
