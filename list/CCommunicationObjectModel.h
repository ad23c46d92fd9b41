#pragma once
// The list model behind the "Communications" page: folders ("Important messages", "Offers",
// "Offers history", "Issues") with the news entries and support conversations the host's news fetcher
// lists for each. Rebuilt whenever the fetcher reports a change; keeps persistent indexes, folder
// expansion and the per-conversation draft keepers across rebuilds by item key. Owned by the plugin
// (shared with the host's navigation tree).

#include "AttachmentEntity.h"
#include "MessageEntry.h"

#include <QAbstractItemModel>
#include <QHash>
#include <QList>
#include <QPointer>
#include <QString>

#include <memory>

class CCommunicationObjectItem;
class CNewsFetcher;
class CommunicationEntityCreateHandler;
class DraftMessageItem;

class CCommunicationObjectModel : public QAbstractItemModel
{
    Q_OBJECT
public:
    // Item data roles; the delegates and the plugin read entries only through these.
    static constexpr int KeyRole = Qt::UserRole + 1;
    static constexpr int TitleRole = Qt::UserRole + 2;
    static constexpr int DateTextRole = Qt::UserRole + 3;
    static constexpr int ExtraTextRole = Qt::UserRole + 4;
    static constexpr int ImportantRole = Qt::UserRole + 5;
    static constexpr int ReadRole = Qt::UserRole + 6;
    static constexpr int IsFolderRole = Qt::UserRole + 7;
    static constexpr int FolderIdRole = Qt::UserRole + 8;
    static constexpr int ConversationRole = Qt::UserRole + 9;
    static constexpr int FolderHasUnreadRole = Qt::UserRole + 10;
    static constexpr int ExpandedRole = Qt::UserRole + 11;
    static constexpr int FlagBit1Role = Qt::UserRole + 12;
    static constexpr int StatusRole = Qt::UserRole + 13;
    static constexpr int SubtitleRole = Qt::UserRole + 14;
    static constexpr int FirstTimeRole = Qt::UserRole + 15;
    static constexpr int SecondTimeRole = Qt::UserRole + 16;
    static constexpr int EntityRole = Qt::UserRole + 17;
    static constexpr int DraftIdRole = Qt::UserRole + 18;
    static constexpr int DraftTextRole = Qt::UserRole + 19;
    static constexpr int DraftBusyRole = Qt::UserRole + 20;
    static constexpr int HasDefaultThreadRole = Qt::UserRole + 21;

    // Folder numbers and the news filters (CNewsFetcher bits) whose entries they list.
    static constexpr int kImportantFolderId = 0;
    static constexpr int kOffersFolderId = 1;
    static constexpr int kOffersHistoryFolderId = 2;
    static constexpr int kIssuesFolderId = 3;
    static constexpr unsigned kImportantFilter = 1;
    static constexpr unsigned kOffersFilter = 10;
    static constexpr unsigned kOffersHistoryFilter = 6;
    static constexpr unsigned kIssuesFilter = 64;
    // Added to a folder's filter to ask whether it holds unread entries.
    static constexpr unsigned kUnreadFilterBit = 16;

    CCommunicationObjectModel();
    ~CCommunicationObjectModel() override;

    QModelIndex index(int row, int column, const QModelIndex& parent = QModelIndex()) const override;
    QModelIndex parent(const QModelIndex& index) const override;
    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    bool hasChildren(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    // Rebuilds the folders from the news fetcher.
    void populate();
    // Repaints the item after its entry was changed in place.
    void refreshItem(const QModelIndex& index);
    void onDraftUpdated(const std::shared_ptr<Messenger::MessageEntry>& entry);
    void setDraftText(const QModelIndex& index, const QString& text);
    // Posts the conversation's text as a message; null when the index has no draft keeper.
    CommunicationEntityCreateHandler* sendDraft(const QModelIndex& index,
                                                const QList<AttachmentEntity>& attachments);
    // Posts `text` as a message of the conversation and leaves its draft alone (a message sent again);
    // null when the index has no draft keeper.
    CommunicationEntityCreateHandler* postMessage(const QModelIndex& index, const QString& text,
                                                  const QList<AttachmentEntity>& attachments);

    // The item with that key ("folder-<n>" or an entry id), or the invalid index.
    QModelIndex indexForKey(const QString& key) const;
    // The draft keeper of an entry id, or null.
    DraftMessageItem* draftKeeper(const QString& entryId) const;
    // The key of a folder with that number.
    static QString folderKey(int folderId);

signals:
    void modelPopulated();
    void draftChanged(QModelIndex index);
    void markNewsEntryReadRequest(const QString& id);

private:
    struct FolderDefinition
    {
        int folderId;
        unsigned filter;
        QString name;
    };

    static QList<FolderDefinition> folderTable();
    static QString keyOf(const CCommunicationObjectItem* item);
    CCommunicationObjectItem* itemAt(const QModelIndex& index) const;
    QModelIndex indexOf(const CCommunicationObjectItem* item) const;
    bool showNewsSetting() const;

    QList<QPointer<CCommunicationObjectItem>> m_folders;
    QHash<QString, QPointer<CCommunicationObjectItem>> m_items;
    QHash<QString, QPointer<DraftMessageItem>> m_drafts;
    std::shared_ptr<CNewsFetcher> m_newsFetcher;
};
