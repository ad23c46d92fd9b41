#pragma once
// The host's news fetcher: keeps the user's news entries and support conversations in step with the
// support server, answers list queries from its cache and reports changes and live events as signals.
// Shared by the host and its plugins (std::shared_ptr); lives on the GUI thread.

#include "CIncidentCommunication.h"
#include "EntityDto.h"
#include "MessageEntry.h"
#include "WatcherAliases.h"
#include "baseLibGlobal.h"

#include <QFlags>
#include <QHash>
#include <QObject>

#include <deque>
#include <memory>

class BASELIB_EXPORT CNewsFetcher : public QObject
{
    Q_OBJECT
public:
    // Filter bits of getNewsList() and hasAny().
    // Category bits select kinds of entries; several are OR-ed together. When no category bit is set the
    // filter means every kind of news (important news and offers) but no support conversations.
    // Qualifier bits narrow the selection.
    enum NewsListFilterFlag : unsigned
    {
        FilterImportant = 0x01,     // category: urgent news from the vendor
        FilterOffers = 0x02,        // category: offers
        FilterHistory = 0x04,       // qualifier: only offers that have expired (secondTime in the past)
        FilterCurrent = 0x08,       // qualifier: only offers still valid (no secondTime, or in the future)
        FilterUnread = 0x10,        // qualifier: only entries not yet read
        FilterIncludeHidden = 0x20, // qualifier: include entries the user has hidden (normally left out)
        FilterIssues = 0x40,        // category: the user's support conversations
    };
    Q_DECLARE_FLAGS(NewsListFilter, NewsListFilterFlag)
    Q_FLAG(NewsListFilter)

    explicit CNewsFetcher(QObject* parent = nullptr);
    ~CNewsFetcher() override;

    // Entries matching `filter`: newest first, except conversations, which are in the server's order.
    std::deque<std::shared_ptr<Messenger::MessageEntry>> getNewsList(QFlags<NewsListFilterFlag> filter);
    bool hasAny(QFlags<NewsListFilterFlag> filter) const;

    void markNewsEntryRead(const QString& id);
    void markNewsEntryHidden(const QString& id);
    // Reloads the list of support conversations from the server (newsChanged() follows).
    void startFetchIssues();
    // Adds a conversation that the user has just created (newsChanged() follows).
    void addNewIncident(const EntityDto::EntityDto& ticket);

    CIncidentCommunication communicationEntityToMessageInfo(const EntityDto::EntityDto& entity);
    CIncidentCommunication ticketEntityToMessageInfo(const EntityDto::EntityDto& ticket);
    // Names of a participant; invalid aliases when the participant is unknown.
    WatcherAliases getWatcherName(const QString& id);

    // Reloads everything from the server (the host calls it at start-up).
    void startFetchAll();

signals:
    void newsChanged();
    void readStatusChanged(std::shared_ptr<Messenger::MessageEntry> entry);
    void syncViewsRequest();
    void communicationReceived(CIncidentCommunication communication);
    void communicationDeleted(CIncidentCommunication communication);
    void gotNewMessagesForIssue(QString incidentId);
    void threadIsBeingEdited(CIncidentCommunication communication, bool isEditing);
    void watchersCacheChanged();

private:
    struct Private;
    std::unique_ptr<Private> d;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(CNewsFetcher::NewsListFilter)
