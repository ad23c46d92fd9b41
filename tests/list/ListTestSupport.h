#pragma once
// Helpers shared by the communication list tests: server scenarios in the scenario format.

#include "CNewsFetcher.h"
#include "CVantrelApp.h"
#include "HostControl.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

namespace listTest {

// A news entry ("important" or "offer") with fixed texts, so that renderings stay stable.
inline QJsonObject newsEntry(const QString& id, const QString& kind, const QString& title, bool read = false,
                             QJsonObject extra = {})
{
    const QJsonObject fixed{{"id", id},
                            {"kind", kind},
                            {"title", title},
                            {"subtitle", QString("About " + title)},
                            {"dateText", "12.06.2024"},
                            {"html", QString("<p>" + title + "</p>")},
                            {"read", read}};
    for (auto it = fixed.begin(); it != fixed.end(); ++it)
        extra.insert(it.key(), it.value());
    return extra;
}

inline QJsonObject conversation(const QString& id, const QString& subject, QJsonObject extra = {})
{
    extra.insert("id", id);
    extra.insert("subject", subject);
    extra.insert("firstMessage", "Hello");
    return extra;
}

// The fetcher's shared entry with this id, news or conversation.
inline std::shared_ptr<Messenger::MessageEntry> fetcherEntry(const QString& id)
{
    const auto all = CNewsFetcher::FilterImportant | CNewsFetcher::FilterOffers | CNewsFetcher::FilterIssues;
    for (const auto& entry : vantrelApp->getNewsFetcher()->getNewsList(all)) {
        if (entry->id == id)
            return entry;
    }
    return nullptr;
}

// Replaces the server's data and waits until the fetcher lists all of it.
inline bool loadScenario(const QList<QJsonObject>& news, const QList<QJsonObject>& conversations = {})
{
    QJsonArray newsArray, conversationArray;
    for (const QJsonObject& entry : news)
        newsArray.append(entry);
    for (const QJsonObject& entry : conversations)
        conversationArray.append(entry);
    const QJsonObject root{{"news", newsArray}, {"conversations", conversationArray}};
    QString error;
    if (!HostControl::loadScenarioJson(QJsonDocument(root).toJson(), "test", &error))
        return false;
    const auto fetcher = vantrelApp->getNewsFetcher();
    bool refreshed = false;
    const auto connection =
        QObject::connect(fetcher.get(), &CNewsFetcher::newsChanged, [&refreshed] { refreshed = true; });
    fetcher->startFetchAll();
    const auto all = CNewsFetcher::FilterImportant | CNewsFetcher::FilterOffers | CNewsFetcher::FilterIssues;
    const bool done = QTest::qWaitFor([&] {
        return refreshed && fetcher->getNewsList(all).size() == size_t(news.size() + conversations.size());
    });
    QObject::disconnect(connection);
    return done;
}

} // namespace listTest
