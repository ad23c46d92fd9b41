#pragma once
// What the page tells the user about unread news outside itself: which icon the host shows for it, whether
// its entry in the host should draw attention and how, which entry the tooltip and the one toast name. Asks
// the host's news fetcher and the "UIShowNews" setting; decides, while the plugin emits.

#include "MessageEntry.h"

#include <QString>

#include <memory>
#include <optional>

class CNewsFetcher;

class CNewsNotice
{
public:
    // News filters (host bits): urgent unread news, unread news, unread news together with conversations.
    static constexpr unsigned kFilterUrgentUnread = 17;
    static constexpr unsigned kFilterUnread = 16;
    static constexpr unsigned kFilterUnreadWithIssues = 80;
    // Attention animation modes of the host.
    static constexpr int kAnimationUrgent = -1;
    static constexpr int kAnimationNews = 2;

    explicit CNewsNotice(std::shared_ptr<CNewsFetcher> fetcher);

    // The image name of the page's icon; `notice` tells whether it announces something unread.
    QString iconName(bool* notice) const;
    // The attention animation the host should start, if any.
    std::optional<int> attentionMode() const;
    bool hasUrgent() const;
    bool showNewsSetting() const;
    // The newest urgent unread entry, or null.
    Messenger::MessageEntryPtr newestUrgent() const;
    // The entry the tooltip names: the newest urgent unread entry, else the newest unread one; or null.
    Messenger::MessageEntryPtr tooltipEntry() const;

private:
    bool hasAny(unsigned filter) const;
    Messenger::MessageEntryPtr newest(unsigned filter) const;

    std::shared_ptr<CNewsFetcher> m_fetcher;
};
