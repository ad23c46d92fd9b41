#include "CNewsFetcher.h"

#include "EntityFields.h"
#include "PlainRequestHandler.h"
#include "SimulatedServer.h"

#include <QLocale>
#include <QTimer>
#include <QUrl>

#include <algorithm>

namespace {

enum class EntryKind
{
    Important,
    Offer,
    Conversation
};

QDateTime parseStamp(const QVariant& value)
{
    const QDateTime stamp = QDateTime::fromString(value.toString(), Qt::ISODateWithMs);
    return stamp.isValid() ? stamp.toLocalTime() : QDateTime();
}

QList<CIncidentAttachment> attachmentsOf(const QVariant& value)
{
    QList<CIncidentAttachment> result;
    // Anything but a list of attachment records is ignored rather than guessed at.
    if (value.typeId() != QMetaType::QVariantList)
        return result;
    const QVariantList list = value.toList();
    for (const QVariant& item : list) {
        if (item.typeId() != QMetaType::QVariantMap)
            continue;
        const QVariantMap map = item.toMap();
        CIncidentAttachment attachment;
        attachment.id = map.value(EntityFields::kAttachmentId).toString();
        attachment.fileName = map.value(EntityFields::kAttachmentName).toString();
        attachment.size = map.value(EntityFields::kAttachmentSize).toULongLong();
        attachment.mimeType = map.value(EntityFields::kAttachmentMime).toString();
        result.append(attachment);
    }
    return result;
}

QString percentEncoded(const QString& text)
{
    return QString::fromLatin1(QUrl::toPercentEncoding(text));
}

} // namespace

namespace {

// Dates in the list in one style per locale: the long date, with the time of day where it matters.
QString dateText(const QDateTime& moment, bool withTime)
{
    if (!moment.isValid())
        return QString();
    const QLocale locale;
    const QString date = locale.toString(moment.date(), QLocale::LongFormat);
    return withTime ? date + QLatin1Char(' ') + locale.toString(moment.time(), QLocale::ShortFormat) : date;
}

} // namespace

struct CNewsFetcher::Private
{
    struct Meta
    {
        EntryKind kind = EntryKind::Important;
        bool hidden = false;
    };

    CNewsFetcher* q = nullptr;
    // One entry object per id for the fetcher's whole life: holders see updates in place.
    QHash<QString, std::shared_ptr<Messenger::MessageEntry>> entries;
    QHash<QString, Meta> meta;
    QStringList newsOrder;         // newest first
    QStringList conversationOrder; // the server's order
    // Conversations the host added that the server does not list (yet).
    QList<EntityDto::EntityDto> localTickets;
    // What the server last said about each entry's read mark; local changes survive until the server's
    // changes.
    QHash<QString, bool> serverRead;
    int generation = -1;
    // Conversations with messages posted since the list was last brought up to date; a burst of posts costs
    // one refresh per turn of the event loop, not one per message.
    QStringList postedTo;

    SimulatedServer& server() const { return SimulatedServer::instance(); }
    std::shared_ptr<Messenger::MessageEntry> obtain(const QString& id, bool* created);
    void refresh();
    void refreshAfterPost(const QString& conversationId);
    void fillConversation(Messenger::MessageEntry& entry, const EntityDto::EntityDto& ticket,
                          const QString& state);
    bool matches(const QString& id, QFlags<NewsListFilterFlag> filter, const QDateTime& now) const;
    void request(const QByteArray& verb, const QString& path, std::function<void()> onSuccess);
};

std::shared_ptr<Messenger::MessageEntry> CNewsFetcher::Private::obtain(const QString& id, bool* created)
{
    std::shared_ptr<Messenger::MessageEntry>& entry = entries[id];
    *created = !entry;
    if (!entry) {
        entry = std::make_shared<Messenger::MessageEntry>();
        entry->id = id;
    }
    return entry;
}

void CNewsFetcher::Private::fillConversation(Messenger::MessageEntry& entry,
                                             const EntityDto::EntityDto& ticket, const QString& state)
{
    const QDateTime created = parseStamp(ticket.createdAt);
    entry.title = ticket.attributeValue(EntityFields::kSubject).toString();
    entry.subtitle = state;
    entry.dateText = dateText(created, true);
    // The opening message the user wrote: the page shows it until support answers.
    entry.extraText = ticket.attributeValue(EntityFields::kFirstMessage).toString();
    entry.firstTime = created;
    const QDateTime last = parseStamp(ticket.attributeValue(EntityFields::kLastActivity));
    entry.secondTime = last.isValid() ? last : created;
    entry.status = ticket.attributeValue(EntityFields::kComposerState).toInt();
    entry.entity = QVariant::fromValue(ticket);
    entry.flags.isConversation = 1;
    entry.flags.isImportant = 0;
    entry.flags.flagBit1 = 0;
}

void CNewsFetcher::Private::refresh()
{
    const ServerData& data = server().data();
    // A fresh start of the server's data (not a change this client made) overrides local draft state.
    const bool fresh = server().generation() != generation;
    generation = server().generation();

    const auto applyRead = [this, fresh](Messenger::MessageEntry& entry, bool created, bool read) {
        if (created || fresh || serverRead.value(entry.id, !read) != read)
            entry.flags.isRead = read ? 1 : 0;
        serverRead.insert(entry.id, read);
    };

    QList<const ServerData::NewsEntry*> news;
    for (const ServerData::NewsEntry& item : data.news)
        news.append(&item);
    std::stable_sort(news.begin(), news.end(),
                     [](const ServerData::NewsEntry* a, const ServerData::NewsEntry* b) {
                         return a->published > b->published;
                     });
    newsOrder.clear();
    for (const ServerData::NewsEntry* item : news) {
        bool created = false;
        const std::shared_ptr<Messenger::MessageEntry> entry = obtain(item->id, &created);
        entry->title = item->title;
        entry->subtitle = item->subtitle;
        entry->dateText = !item->dateText.isEmpty() ? item->dateText : dateText(item->published, false);
        entry->extraText = item->html;
        entry->firstTime = item->published;
        entry->secondTime = item->expires;
        entry->status = 0;
        EntityDto::EntityDto entity;
        entity.id = item->id;
        entity.entityType = EntityFields::kNewsType;
        entity.createdAt = item->published.toUTC().toString(Qt::ISODateWithMs);
        entry->entity = QVariant::fromValue(entity);
        entry->flags.isImportant = item->kind == ServerData::NewsEntry::Important ? 1 : 0;
        entry->flags.flagBit1 = item->pinned ? 1 : 0;
        entry->flags.isConversation = 0;
        applyRead(*entry, created, item->read);
        meta.insert(item->id,
                    {item->kind == ServerData::NewsEntry::Important ? EntryKind::Important : EntryKind::Offer,
                     item->hidden});
        newsOrder.append(item->id);
    }

    conversationOrder.clear();
    for (const ServerData::Conversation& conversation : data.conversations) {
        bool created = false;
        const std::shared_ptr<Messenger::MessageEntry> entry = obtain(conversation.id, &created);
        const ServerData::State* state = data.state(conversation.stateKey);
        fillConversation(*entry, server().ticketEntity(conversation),
                         state ? state->displayName : conversation.stateKey);
        applyRead(*entry, created, conversation.read);
        if (created || fresh) {
            const ServerData::Message* draft = server().draftOf(conversation.id);
            entry->draftEntity = draft ? QVariant::fromValue(server().messageEntity(*draft)) : QVariant();
            entry->draftText = draft ? draft->text : QString();
        }
        meta.insert(conversation.id, {EntryKind::Conversation, conversation.hidden});
        conversationOrder.append(conversation.id);
    }

    // Conversations added by the host stay listed until the server lists them itself.
    localTickets.erase(std::remove_if(localTickets.begin(), localTickets.end(),
                                      [this](const EntityDto::EntityDto& ticket) {
                                          return conversationOrder.contains(ticket.id);
                                      }),
                       localTickets.end());
    for (const EntityDto::EntityDto& ticket : std::as_const(localTickets)) {
        bool created = false;
        const std::shared_ptr<Messenger::MessageEntry> entry = obtain(ticket.id, &created);
        const QString stateKey = ticket.attributeValue(EntityFields::kState).toString();
        const ServerData::State* state = data.state(stateKey);
        fillConversation(*entry, ticket, state ? state->displayName : stateKey);
        if (created)
            entry->flags.isRead = 1;
        meta.insert(ticket.id, {EntryKind::Conversation, false});
        conversationOrder.append(ticket.id);
    }
    // The conversation with the latest activity comes first, as in a mail program; a request just made is
    // the latest of all.
    std::stable_sort(conversationOrder.begin(), conversationOrder.end(),
                     [this](const QString& a, const QString& b) {
                         return entries.value(a)->secondTime > entries.value(b)->secondTime;
                     });
}

bool CNewsFetcher::Private::matches(const QString& id, QFlags<NewsListFilterFlag> filter,
                                    const QDateTime& now) const
{
    const std::shared_ptr<Messenger::MessageEntry> entry = entries.value(id);
    const Meta info = meta.value(id);
    if (!entry)
        return false;
    if (info.hidden && !filter.testFlag(FilterIncludeHidden))
        return false;
    if (filter.testFlag(FilterUnread) && entry->flags.isRead)
        return false;
    QFlags<NewsListFilterFlag> categories = filter & (FilterImportant | FilterOffers | FilterIssues);
    if (!categories)
        categories = QFlags<NewsListFilterFlag>(FilterImportant | FilterOffers);
    switch (info.kind) {
    case EntryKind::Important:
        return categories.testFlag(FilterImportant);
    case EntryKind::Conversation:
        return categories.testFlag(FilterIssues);
    case EntryKind::Offer: {
        if (!categories.testFlag(FilterOffers))
            return false;
        const bool expired = entry->secondTime.isValid() && entry->secondTime < now;
        const bool history = filter.testFlag(FilterHistory);
        const bool current = filter.testFlag(FilterCurrent);
        if (history && !current)
            return expired;
        if (current && !history)
            return !expired;
        return true;
    }
    }
    return false;
}

void CNewsFetcher::Private::request(const QByteArray& verb, const QString& path,
                                    std::function<void()> onSuccess)
{
    auto* handler = new PlainRequestHandler(q);
    handler->setAutoDelete(true);
    QObject::connect(handler, &CAbstractRestApi::finished, q, [onSuccess = std::move(onSuccess)](bool ok) {
        if (ok)
            onSuccess();
    });
    handler->start(verb, path);
}

void CNewsFetcher::Private::refreshAfterPost(const QString& conversationId)
{
    if (postedTo.isEmpty()) {
        QTimer::singleShot(0, q, [this] {
            refresh();
            for (const QString& id : std::exchange(postedTo, {}))
                emit q->gotNewMessagesForIssue(id);
            emit q->newsChanged();
        });
    }
    if (!postedTo.contains(conversationId))
        postedTo.append(conversationId);
}

CNewsFetcher::CNewsFetcher(QObject* parent)
    : QObject(parent)
    , d(std::make_unique<Private>())
{
    d->q = this;
    d->refresh();

    SimulatedServer* server = &d->server();
    connect(server, &SimulatedServer::newsListChanged, this, [this] {
        d->refresh();
        emit newsChanged();
    });
    connect(server, &SimulatedServer::syncViewsRequested, this, &CNewsFetcher::syncViewsRequest);
    connect(server, &SimulatedServer::communicationPosted, this,
            [this](const EntityDto::EntityDto& message, const QString& conversationId) {
                emit communicationReceived(communicationEntityToMessageInfo(message));
                d->refreshAfterPost(conversationId);
            });
    connect(server, &SimulatedServer::communicationRemoved, this,
            [this](const EntityDto::EntityDto& message, const QString&) {
                emit communicationDeleted(communicationEntityToMessageInfo(message));
            });
    connect(server, &SimulatedServer::typingChanged, this,
            [this](const QString& conversationId, const QString& participantId, bool typing) {
                CIncidentCommunication typist;
                const ServerData::Conversation* conversation =
                    d->server().data().conversation(conversationId);
                typist.threadId = conversation && !conversation->threadId.isEmpty() ? conversation->threadId
                                                                                    : conversationId;
                typist.senderId = participantId;
                typist.fromOtherParty = participantId != d->server().data().user.id;
                const WatcherAliases aliases = getWatcherName(participantId);
                if (aliases.isValid())
                    typist.deducePartyName(aliases);
                emit threadIsBeingEdited(typist, typing);
            });
    connect(server, &SimulatedServer::participantsChanged, this, &CNewsFetcher::watchersCacheChanged);
    connect(server, &SimulatedServer::threadOpened, this, &CNewsFetcher::gotNewMessagesForIssue);
}

CNewsFetcher::~CNewsFetcher() = default;

std::deque<std::shared_ptr<Messenger::MessageEntry>>
CNewsFetcher::getNewsList(QFlags<NewsListFilterFlag> filter)
{
    std::deque<std::shared_ptr<Messenger::MessageEntry>> result;
    const QDateTime now = QDateTime::currentDateTime();
    for (const QStringList* order : {&d->newsOrder, &d->conversationOrder}) {
        for (const QString& id : *order) {
            if (d->matches(id, filter, now))
                result.push_back(d->entries.value(id));
        }
    }
    return result;
}

bool CNewsFetcher::hasAny(QFlags<NewsListFilterFlag> filter) const
{
    const QDateTime now = QDateTime::currentDateTime();
    for (const QStringList* order : {&d->newsOrder, &d->conversationOrder}) {
        for (const QString& id : *order) {
            if (d->matches(id, filter, now))
                return true;
        }
    }
    return false;
}

void CNewsFetcher::markNewsEntryRead(const QString& id)
{
    d->request("PUT", QStringLiteral("/entries/%1/read").arg(percentEncoded(id)), [this, id] {
        d->refresh();
        if (const std::shared_ptr<Messenger::MessageEntry> entry = d->entries.value(id))
            emit readStatusChanged(entry);
    });
}

void CNewsFetcher::markNewsEntryHidden(const QString& id)
{
    d->request("PUT", QStringLiteral("/entries/%1/hidden").arg(percentEncoded(id)), [this] {
        d->refresh();
        emit newsChanged();
    });
}

void CNewsFetcher::startFetchIssues()
{
    d->request("GET", QStringLiteral("/tickets"), [this] {
        d->refresh();
        emit newsChanged();
    });
}

void CNewsFetcher::startFetchAll()
{
    d->request("GET", QStringLiteral("/news"), [this] {
        d->refresh();
        emit newsChanged();
    });
}

void CNewsFetcher::addNewIncident(const EntityDto::EntityDto& ticket)
{
    if (!ticket.id.isEmpty() && !d->server().data().conversation(ticket.id)) {
        bool known = false;
        for (const EntityDto::EntityDto& local : std::as_const(d->localTickets))
            known = known || local.id == ticket.id;
        if (!known)
            d->localTickets.append(ticket);
    }
    QTimer::singleShot(0, this, [this] {
        d->refresh();
        emit newsChanged();
    });
}

CIncidentCommunication CNewsFetcher::communicationEntityToMessageInfo(const EntityDto::EntityDto& entity)
{
    CIncidentCommunication result;
    result.id = entity.id;
    result.threadId = entity.attributeValue(EntityFields::kMessageThreadId).toString();
    result.text = entity.attributeValue(EntityFields::kText).toString();
    result.senderId = entity.attributeValue(EntityFields::kSenderId).toString();
    result.time = parseStamp(entity.attributeValue(EntityFields::kTime));
    if (!result.time.isValid())
        result.time = parseStamp(entity.createdAt);
    const QVariant fromSupport = entity.attributeValue(EntityFields::kFromSupport);
    result.fromOtherParty = fromSupport.isValid()
                                ? fromSupport.toBool()
                                : !result.senderId.isEmpty() && result.senderId != d->server().data().user.id;
    result.deleted = entity.attributeValue(EntityFields::kDeleted).toBool();
    const QVariant editVersion = entity.attributeValue(EntityFields::kEditVersion);
    result.editVersion = editVersion.isValid() ? editVersion.toInt() : 1;
    result.versionKey = entity.attributeValue(EntityFields::kVersionKey).toString();
    if (result.versionKey.isEmpty())
        result.versionKey = entity.id;
    result.attachments = attachmentsOf(entity.attributeValue(EntityFields::kAttachments));
    const WatcherAliases aliases = getWatcherName(result.senderId);
    if (aliases.isValid())
        result.deducePartyName(aliases);
    return result;
}

CIncidentCommunication CNewsFetcher::ticketEntityToMessageInfo(const EntityDto::EntityDto& ticket)
{
    CIncidentCommunication result;
    result.id = ticket.id;
    result.threadId = ticket.attributeValue(EntityFields::kThreadId).toString();
    if (result.threadId.isEmpty())
        result.threadId = ticket.id;
    result.text = ticket.attributeValue(EntityFields::kFirstMessage).toString();
    result.senderId = ticket.attributeValue(EntityFields::kCreatedBy).toString();
    if (result.senderId.isEmpty())
        result.senderId = d->server().data().user.id;
    result.time = parseStamp(ticket.createdAt);
    result.fromOtherParty = false;
    result.versionKey = ticket.id;
    result.attachments = attachmentsOf(ticket.attributeValue(EntityFields::kFirstMessageAttachments));
    const WatcherAliases aliases = getWatcherName(result.senderId);
    if (aliases.isValid())
        result.deducePartyName(aliases);
    return result;
}

WatcherAliases CNewsFetcher::getWatcherName(const QString& id)
{
    WatcherAliases aliases;
    if (id.isEmpty())
        return aliases;
    const ServerData& data = d->server().data();
    if (const ServerData::Participant* participant = data.participant(id)) {
        aliases.id = participant->id;
        aliases.firstName = participant->firstName;
        aliases.lastName = participant->lastName;
        aliases.displayName = participant->displayName;
        aliases.nameColor = participant->nameColor;
    } else if (id == data.user.id) {
        aliases.id = data.user.id;
        aliases.firstName = data.user.firstName;
        aliases.lastName = data.user.lastName;
    }
    return aliases;
}
