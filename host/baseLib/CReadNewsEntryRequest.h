#pragma once
// The application event that asks the page plugins to open a news entry (for example after a click on a
// toast or a link elsewhere in the host).

#include "baseLibGlobal.h"

#include <QEvent>
#include <QString>

class BASELIB_EXPORT CReadNewsEntryRequest : public QEvent
{
public:
    static constexpr QEvent::Type EventType = QEvent::Type(1078);

    explicit CReadNewsEntryRequest(const QString& newsEntryId, int flags = 0);
    ~CReadNewsEntryRequest() override;

    QString getNewsEntryId() const { return m_newsEntryId; }
    int getFlags() const { return m_flags; }

private:
    QString m_newsEntryId;
    int m_flags;
};
