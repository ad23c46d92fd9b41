#include "CSignInService.h"

#include "HostRuntime.h"

#include <QPointer>
#include <QRegularExpression>
#include <QTimer>

// The stand-in keeps the session in memory. Answers always arrive from the event loop, after the starting
// call has returned, as a real sign-in round trip would. A scripted answer (HostRuntime::nextSignInResult)
// decides the next attempt; without one, any e-mail address with an '@' and a non-empty password succeeds.

namespace {

QString localPart(const QString& email)
{
    return email.section(QLatin1Char('@'), 0, 0).trimmed();
}

QString capitalised(const QString& word)
{
    if (word.isEmpty())
        return word;
    return word.left(1).toUpper() + word.mid(1);
}

// "jane.doe@example.com" -> Jane Doe; "jane@..." -> Jane with no last name.
Ordenz::SignIn::UserInfo userFromEmail(const QString& email)
{
    static const QRegularExpression separators(QStringLiteral("[._\\-+]+"));
    const QString local = localPart(email);
    const QStringList words = local.split(separators, Qt::SkipEmptyParts);
    Ordenz::SignIn::UserInfo user;
    user.email = email.trimmed();
    user.userId = QStringLiteral("u-") + local;
    user.firstName = capitalised(words.value(0));
    QStringList rest;
    for (int i = 1; i < words.size(); ++i)
        rest.append(capitalised(words.at(i)));
    user.lastName = rest.join(QLatin1Char(' '));
    return user;
}

bool looksValid(const QString& email, const QString& password)
{
    return email.contains(QLatin1Char('@')) && !localPart(email).isEmpty() && !password.isEmpty();
}

} // namespace

CSignInService::CSignInService(QObject* parent)
    : QObject(parent)
{}

CSignInService::~CSignInService() = default;

bool CSignInService::getIsSignedIn() const
{
    return m_signedIn;
}

Ordenz::SignIn::UserInfo CSignInService::getLoggedInUserInfo()
{
    return m_user;
}

void CSignInService::startSignIn(const QString& email, const QString& password)
{
    Ordenz::SignIn::UserInfo user = userFromEmail(email);
    const bool valid = looksValid(email, password);
    answerLater(valid, user, tr("The e-mail address or password is not correct."));
}

void CSignInService::startCreateAccount(const QString& email, const QString& password,
                                        const QString& firstName, const QString& lastName)
{
    Ordenz::SignIn::UserInfo user = userFromEmail(email);
    if (!firstName.trimmed().isEmpty())
        user.firstName = firstName.trimmed();
    if (!lastName.trimmed().isEmpty())
        user.lastName = lastName.trimmed();
    const bool valid = looksValid(email, password);
    answerLater(valid, user, tr("An account cannot be created with this e-mail address and password."));
}

void CSignInService::answerLater(bool valid, const Ordenz::SignIn::UserInfo& user, const QString& reason)
{
    // The script is taken now, so the attempt that consumed it is the one it answers.
    bool succeed = valid;
    QString failure = reason;
    auto& scripted = HostRuntime::instance().nextSignInResult;
    if (scripted) {
        succeed = scripted->first;
        if (!scripted->second.isEmpty())
            failure = scripted->second;
        scripted.reset();
    }
    QTimer::singleShot(0, this, [this, succeed, user, failure] {
        if (succeed)
            setSignedInUser(user);
        else
            emit signInFailed(failure);
    });
}

void CSignInService::signOut()
{
    if (!m_signedIn)
        return;
    m_signedIn = false;
    m_user = {};
    emit signedOut();
}

void CSignInService::setSignedInUser(const Ordenz::SignIn::UserInfo& user)
{
    m_user = user;
    m_signedIn = true;
    emit signedIn();
}
