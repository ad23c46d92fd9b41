#include "CNewsNotice.h"

#include "CNewsFetcher.h"
#include "CSettingsLoader.h"
#include "CVantrelApp.h"

namespace {

const QString kShowNewsSetting = QStringLiteral("UIShowNews");
const char* const kIconNoNews = "ico-plugin-no-news";
const char* const kIconNews = "ico-plugin-news";
const char* const kIconUrgentNews = "ico-plugin-urgent-news";

} // namespace

CNewsNotice::CNewsNotice(std::shared_ptr<CNewsFetcher> fetcher)
    : m_fetcher(std::move(fetcher))
{}

QString CNewsNotice::iconName(bool* notice) const
{
    *notice = true;
    if (hasUrgent())
        return QString::fromLatin1(kIconUrgentNews);
    if (hasAny(kFilterUnreadWithIssues) || (hasAny(kFilterUnread) && showNewsSetting()))
        return QString::fromLatin1(kIconNews);
    *notice = false;
    return QString::fromLatin1(kIconNoNews);
}

std::optional<int> CNewsNotice::attentionMode() const
{
    if (hasUrgent())
        return kAnimationUrgent;
    if (showNewsSetting() && hasAny(kFilterUnread))
        return kAnimationNews;
    return std::nullopt;
}

bool CNewsNotice::hasUrgent() const
{
    return hasAny(kFilterUrgentUnread);
}

bool CNewsNotice::showNewsSetting() const
{
    QVariant value;
    if (vantrelApp && vantrelApp->getSettingsInstance().Read(kShowNewsSetting, &value))
        return value.toBool();
    return true;
}

Messenger::MessageEntryPtr CNewsNotice::newestUrgent() const
{
    return newest(kFilterUrgentUnread);
}

Messenger::MessageEntryPtr CNewsNotice::tooltipEntry() const
{
    if (!m_fetcher)
        return nullptr;
    auto entries = m_fetcher->getNewsList(CNewsFetcher::NewsListFilter::fromInt(kFilterUrgentUnread));
    if (entries.empty())
        entries = m_fetcher->getNewsList(CNewsFetcher::NewsListFilter::fromInt(kFilterUnread));
    return entries.empty() ? nullptr : entries.back();
}

bool CNewsNotice::hasAny(unsigned filter) const
{
    return m_fetcher && m_fetcher->hasAny(CNewsFetcher::NewsListFilter::fromInt(filter));
}

Messenger::MessageEntryPtr CNewsNotice::newest(unsigned filter) const
{
    if (!m_fetcher)
        return nullptr;
    const auto entries = m_fetcher->getNewsList(CNewsFetcher::NewsListFilter::fromInt(filter));
    return entries.empty() ? nullptr : entries.back();
}
