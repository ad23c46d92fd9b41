#pragma once
// The names of one participant of support conversations, as the news fetcher knows them.

#include "baseLibGlobal.h"

#include <QColor>
#include <QString>

class BASELIB_EXPORT WatcherAliases
{
public:
    QString id;
    QString firstName;
    QString lastName;
    QString displayName; // preferred when set
    QColor nameColor;

    // A participant the fetcher knows: an id and at least one name.
    bool isValid() const;
    // displayName, else "first last" trimmed.
    QString fullName() const;
};
