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
    // Emits signedIn() every time, also when a user was signed in already.
    void setSignedInUser(const Ordenz::SignIn::UserInfo& user);

signals:
    void signedIn();
    void signInFailed(const QString& reason);
    void signedOut();

private:
    // Answers an attempt from the event loop: the scripted result if one is set, `valid` otherwise.
    void answerLater(bool valid, const Ordenz::SignIn::UserInfo& user, const QString& reason);

    bool m_signedIn = false;
    Ordenz::SignIn::UserInfo m_user;
};
