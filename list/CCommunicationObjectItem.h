#pragma once
// One node of the communication list: a folder or a news entry / support conversation under a folder.
// CCommunicationObjectModel creates the nodes on every rebuild and holds the tree by object parentage
// (folders are children of the model, entries children of their folder), so deleting a folder deletes
// its entries.

#include "MessageEntry.h"

#include <QObject>
#include <QString>

#include <memory>

class CCommunicationObjectItem : public QObject
{
    Q_OBJECT
public:
    explicit CCommunicationObjectItem(QObject* parent = nullptr);
    ~CCommunicationObjectItem() override;

    // The entry shown; folders hold an empty entry of their own, so that entry roles answer uniformly.
    std::shared_ptr<Messenger::MessageEntry> entry;
    // Place among the parent's children; -1 until the model has placed the item.
    qint32 row = -1;
    bool isFolder = false;
    qint32 folderId = 0;
    // Folder only: the host has unread entries for the folder's filter.
    bool hasUnread = false;
    // Folder only: shown expanded.
    bool expanded = false;
    // Folder only: display name.
    QString name;
};
