#pragma once

#include <QString>

namespace Ordenz::SignIn {

// The signed-in user as the sign-in service reports it.
struct UserInfo
{
    QString userId; // the user's participant identity on the support server
    QString firstName;
    QString lastName;
    QString email;
};

} // namespace Ordenz::SignIn
