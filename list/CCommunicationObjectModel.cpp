#include "CCommunicationObjectModel.h"

#include "CCommunicationObjectItem.h"
#include "CNewsFetcher.h"
#include "CSettingsLoader.h"
#include "CVantrelApp.h"
#include "ChatServiceApi.h"
#include "DraftMessageItem.h"
#include "HostWindows.h"
#include "QtHelpersImages.h"

#include <optional>

namespace {

const QString kShowNewsSetting = QStringLiteral("UIShowNews");

// Item flags of the list: conversations and important news cannot be hidden, so they get no editor.
constexpr Qt::ItemFlags kFixedItemFlags = Qt::ItemIsSelectable | Qt::ItemIsEnabled;
constexpr Qt::ItemFlags kHideableItemFlags = Qt::ItemIsSelectable | Qt::ItemIsEditable | Qt::ItemIsEnabled;

CNewsFetcher::NewsListFilter filterOf(unsigned value)
{
    return CNewsFetcher::NewsListFilter::fromInt(value);
}

} // namespace

CCommunicationObjectModel::CCommunicationObjectModel()
    : QAbstractItemModel(nullptr)
{
    if (vantrelApp)
        m_newsFetcher = vantrelApp->getNewsFetcher();
    if (!m_newsFetcher)
        return;
    connect(m_newsFetcher.get(), &CNewsFetcher::newsChanged, this, &CCommunicationObjectModel::populate);
    connect(this, &CCommunicationObjectModel::markNewsEntryReadRequest, m_newsFetcher.get(),
            &CNewsFetcher::markNewsEntryRead);
}

CCommunicationObjectModel::~CCommunicationObjectModel() = default;

QList<CCommunicationObjectModel::FolderDefinition> CCommunicationObjectModel::folderTable()
{
    const FolderDefinition issues{kIssuesFolderId, kIssuesFilter, QObject::tr("Issues")};
    // A pre-installation environment has no vendor news, only support.
    if (IsWindowsPE())
        return {issues};
    return {
        {kImportantFolderId, kImportantFilter, QObject::tr("Important messages")},
        {kOffersFolderId, kOffersFilter, QObject::tr("Offers")},
        {kOffersHistoryFolderId, kOffersHistoryFilter, QObject::tr("Offers history")},
        issues,
    };
}

QString CCommunicationObjectModel::folderKey(int folderId)
{
    return QStringLiteral("folder-%1").arg(folderId);
}

QString CCommunicationObjectModel::keyOf(const CCommunicationObjectItem* item)
{
    if (item->isFolder)
        return folderKey(item->folderId);
    return item->entry ? item->entry->id : QString();
}

CCommunicationObjectItem* CCommunicationObjectModel::itemAt(const QModelIndex& index) const
{
    if (!index.isValid() || index.model() != this)
        return nullptr;
    return static_cast<CCommunicationObjectItem*>(index.internalPointer());
}

QModelIndex CCommunicationObjectModel::indexOf(const CCommunicationObjectItem* item) const
{
    if (!item || item->row < 0)
        return {};
    return createIndex(item->row, 0, const_cast<CCommunicationObjectItem*>(item));
}

QModelIndex CCommunicationObjectModel::index(int row, int column, const QModelIndex& parent) const
{
    if (!hasIndex(row, column, parent))
        return {};
    if (parent.isValid()) {
        CCommunicationObjectItem* parentItem = itemAt(parent);
        if (!parentItem)
            return {};
        return createIndex(row, column,
                           qobject_cast<CCommunicationObjectItem*>(parentItem->children().at(row)));
    }
    return createIndex(row, column, m_folders.at(row).data());
}

QModelIndex CCommunicationObjectModel::parent(const QModelIndex& index) const
{
    const CCommunicationObjectItem* item = itemAt(index);
    if (!item)
        return {};
    const auto* parentItem = qobject_cast<const CCommunicationObjectItem*>(item->parent());
    if (!parentItem)
        return {};
    return createIndex(parentItem->row, 0, const_cast<CCommunicationObjectItem*>(parentItem));
}

int CCommunicationObjectModel::rowCount(const QModelIndex& parent) const
{
    if (!parent.isValid())
        return int(m_folders.size());
    const CCommunicationObjectItem* item = itemAt(parent);
    return item ? int(item->children().size()) : 0;
}

int CCommunicationObjectModel::columnCount(const QModelIndex&) const
{
    return 1;
}

bool CCommunicationObjectModel::hasChildren(const QModelIndex& parent) const
{
    return rowCount(parent) != 0;
}

QVariant CCommunicationObjectModel::data(const QModelIndex& index, int role) const
{
    const CCommunicationObjectItem* item = itemAt(index);
    if (!item || !item->entry)
        return {};
    // Folders answer the entry roles from their own empty entry; the delegates tell them apart by
    // IsFolderRole.
    const Messenger::MessageEntry& entry = *item->entry;
    switch (role) {
    case Qt::DisplayRole:
        if (item->isFolder)
            return item->name;
        if (entry.flags.isConversation)
            return QStringLiteral("%1 - %2").arg(entry.title, entry.subtitle);
        return entry.title;
    case Qt::DecorationRole:
        if (entry.flags.isImportant)
            return qtHelpers::images::icon(entry.flags.isRead ? QStringLiteral("ico-attention-read")
                                                              : QStringLiteral("ico-attention-unread"));
        return qtHelpers::images::icon(entry.flags.isRead ? QStringLiteral("ico-offers-read")
                                                          : QStringLiteral("ico-offers-unread"));
    case Qt::ToolTipRole:
        return QStringLiteral("%1 - %2\n%3").arg(entry.title, entry.subtitle, entry.dateText);
    case KeyRole:
        return keyOf(item);
    case TitleRole:
        return entry.title;
    case DateTextRole:
        return entry.dateText;
    case ExtraTextRole:
        return entry.extraText;
    case ImportantRole:
        return int(entry.flags.isImportant);
    case ReadRole:
        return int(entry.flags.isRead);
    case IsFolderRole:
        return item->isFolder;
    case FolderIdRole:
        return item->folderId;
    case ConversationRole:
        return int(entry.flags.isConversation);
    case FolderHasUnreadRole:
        return item->hasUnread;
    case ExpandedRole:
        return item->expanded;
    case FlagBit1Role:
        return int(entry.flags.flagBit1);
    case StatusRole:
        return entry.status;
    case SubtitleRole:
        return entry.subtitle;
    case FirstTimeRole:
        return entry.firstTime;
    case SecondTimeRole:
        return entry.secondTime;
    case EntityRole:
        return entry.entity;
    case DraftIdRole:
        return DraftMessageItem::entityFrom(entry.draftEntity).id;
    case DraftTextRole:
        return entry.draftText;
    case DraftBusyRole: {
        const DraftMessageItem* keeper = draftKeeper(keyOf(item));
        return keeper && keeper->isBusy();
    }
    case HasDefaultThreadRole:
        return !DraftMessageItem::defaultThreadId(entry.entity).isEmpty();
    default:
        return {};
    }
}

bool CCommunicationObjectModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    QPointer<CCommunicationObjectItem> item = itemAt(index);
    if (!item || !item->entry)
        return QAbstractItemModel::setData(index, value, role);

    if (role == ReadRole) {
        const bool read = value.toBool();
        const std::shared_ptr<Messenger::MessageEntry> entry = item->entry;
        if (read == bool(entry->flags.isRead))
            return false;
        if (read)
            emit markNewsEntryReadRequest(entry->id);
        entry->flags.isRead = read;
        // The fetcher may have rebuilt the list while it handled the request; the index is then stale.
        if (item)
            emit dataChanged(index, index);
        return true;
    }
    if (role == ExpandedRole) {
        item->expanded = value.toBool();
        emit dataChanged(index, index);
        return true;
    }
    return QAbstractItemModel::setData(index, value, role);
}

Qt::ItemFlags CCommunicationObjectModel::flags(const QModelIndex& index) const
{
    const CCommunicationObjectItem* item = itemAt(index);
    if (!item || !item->entry)
        return Qt::NoItemFlags;
    if (item->entry->flags.isImportant || item->entry->flags.isConversation)
        return kFixedItemFlags;
    return kHideableItemFlags;
}

bool CCommunicationObjectModel::showNewsSetting() const
{
    QVariant value;
    if (vantrelApp && vantrelApp->getSettingsInstance().Read(kShowNewsSetting, &value))
        return value.toBool();
    return true;
}

void CCommunicationObjectModel::populate()
{
    if (!m_newsFetcher)
        return;

    QHash<int, bool> rememberedExpansion;
    for (const QPointer<CCommunicationObjectItem>& folder : std::as_const(m_folders)) {
        if (folder)
            rememberedExpansion.insert(folder->folderId, folder->expanded);
    }

    emit layoutAboutToBeChanged();

    // Keys of what the views hold on to, taken after the announcement: views and selection models make
    // persistent indexes of their own while they handle it. An index without an item maps to nothing.
    const QModelIndexList persistent = persistentIndexList();
    QList<std::optional<QString>> persistentKeys;
    persistentKeys.reserve(persistent.size());
    for (const QModelIndex& index : persistent) {
        const CCommunicationObjectItem* item = itemAt(index);
        persistentKeys << (item ? std::optional<QString>(keyOf(item)) : std::nullopt);
    }

    for (const QPointer<CCommunicationObjectItem>& folder : std::as_const(m_folders))
        delete folder.data();
    m_folders.clear();
    m_items.clear();

    const bool showNews = showNewsSetting();
    int folderRow = 0;
    for (const FolderDefinition& definition : folderTable()) {
        const auto entries = m_newsFetcher->getNewsList(filterOf(definition.filter));
        if (entries.empty())
            continue;
        // Switched-off news leaves only what the user must see: urgent news and support.
        if (!showNews && definition.filter != kImportantFilter && definition.filter != kIssuesFilter)
            continue;

        auto* folder = new CCommunicationObjectItem(this);
        folder->isFolder = true;
        folder->folderId = definition.folderId;
        folder->name = definition.name;
        folder->entry = std::make_shared<Messenger::MessageEntry>();
        folder->hasUnread = m_newsFetcher->hasAny(filterOf(definition.filter + kUnreadFilterBit));
        // Unread news always open their folder; otherwise the user's choice stands.
        if (folder->hasUnread)
            folder->expanded = true;
        else
            folder->expanded =
                rememberedExpansion.value(definition.folderId, definition.folderId == kImportantFolderId);
        folder->row = folderRow++;
        m_folders << folder;
        m_items.insert(folderKey(folder->folderId), folder);

        int entryRow = 0;
        for (const std::shared_ptr<Messenger::MessageEntry>& entry : entries) {
            if (!entry)
                continue;
            auto* item = new CCommunicationObjectItem(folder);
            item->entry = entry;
            item->row = entryRow++;
            m_items.insert(entry->id, item);
            if (!m_drafts.value(entry->id))
                m_drafts.insert(entry->id, new DraftMessageItem(this, entry));
        }
    }

    for (auto it = m_drafts.begin(); it != m_drafts.end();) {
        if (m_items.contains(it.key())) {
            ++it;
            continue;
        }
        if (it.value())
            it.value()->deleteLater();
        it = m_drafts.erase(it);
    }

    QModelIndexList mapped;
    mapped.reserve(persistent.size());
    for (const std::optional<QString>& key : std::as_const(persistentKeys))
        mapped << (key ? indexOf(m_items.value(*key)) : QModelIndex());
    changePersistentIndexList(persistent, mapped);

    emit layoutChanged();
    emit modelPopulated();
    for (const QModelIndex& index : std::as_const(mapped)) {
        if (index.isValid())
            emit dataChanged(index, index);
    }
}

void CCommunicationObjectModel::refreshItem(const QModelIndex& index)
{
    if (index.isValid())
        emit dataChanged(index, index);
}

void CCommunicationObjectModel::onDraftUpdated(const std::shared_ptr<Messenger::MessageEntry>& entry)
{
    if (!entry)
        return;
    CCommunicationObjectItem* item = m_items.value(entry->id);
    if (!item || !item->entry)
        return;
    item->entry->draftEntity = entry->draftEntity;
    item->entry->draftText = ChatServiceApi::draftMessage(entry->draftEntity);
    emit draftChanged(indexOf(item));
}

void CCommunicationObjectModel::setDraftText(const QModelIndex& index, const QString& text)
{
    const CCommunicationObjectItem* item = itemAt(index);
    DraftMessageItem* keeper = item ? draftKeeper(keyOf(item)) : nullptr;
    if (keeper)
        keeper->setDraftText(text);
}

CommunicationEntityCreateHandler*
CCommunicationObjectModel::sendDraft(const QModelIndex& index, const QList<AttachmentEntity>& attachments)
{
    const CCommunicationObjectItem* item = itemAt(index);
    DraftMessageItem* keeper = item ? draftKeeper(keyOf(item)) : nullptr;
    return keeper ? keeper->sendDraft(attachments) : nullptr;
}

CommunicationEntityCreateHandler*
CCommunicationObjectModel::postMessage(const QModelIndex& index, const QString& text,
                                       const QList<AttachmentEntity>& attachments)
{
    const CCommunicationObjectItem* item = itemAt(index);
    DraftMessageItem* keeper = item ? draftKeeper(keyOf(item)) : nullptr;
    return keeper ? keeper->postMessage(text, attachments) : nullptr;
}

QModelIndex CCommunicationObjectModel::indexForKey(const QString& key) const
{
    return indexOf(m_items.value(key));
}

DraftMessageItem* CCommunicationObjectModel::draftKeeper(const QString& entryId) const
{
    return m_drafts.value(entryId);
}
