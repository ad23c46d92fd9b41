#pragma once
// The key of one message inside the thread document: a guarded pointer to the message's outer table and a
// copy of the record it shows. Handed out by CMessageItemsDocument and passed back to it by the plugin;
// an index whose table has gone is simply ignored by every document operation.

#include "CIncidentCommunication.h"

#include <QMetaType>
#include <QPointer>
#include <QTextTable>

struct CMessageItemIndex
{
    QPointer<QTextTable> frame;
    CIncidentCommunication message;

    bool isValid() const { return !frame.isNull(); }
};

Q_DECLARE_METATYPE(CMessageItemIndex)
