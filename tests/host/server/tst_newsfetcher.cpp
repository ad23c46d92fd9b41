// The news fetcher: filter semantics of the folders and read marks through the server.
#include "CNewsFetcher.h"
#include "HostTestMain.h"
#include "SimulatedServer.h"

#include <QSignalSpy>

namespace {

constexpr int kWaitMs = 3000;

const QByteArray kScenario = R"json({
  "participants": [
    {"id": "s-anna", "firstName": "Anna", "lastName": "Keller", "nameColor": "#3366cc"},
    {"id": "s-lena", "displayName": "Lena (Billing)", "nameColor": "#c0392b"}
  ],
  "news": [
    {"id": "imp-unread", "kind": "important", "title": "Urgent", "published": "-1h"},
    {"id": "imp-read", "kind": "important", "title": "Old news", "published": "-3d", "read": true},
    {"id": "imp-hidden", "kind": "important", "title": "Hidden", "published": "-2h", "hidden": true},
    {"id": "offer-current", "kind": "offer", "title": "Current", "published": "-2d", "expires": "+5d"},
    {"id": "offer-open", "kind": "offer", "title": "No expiry", "published": "-4d", "read": true},
    {"id": "offer-expired", "kind": "offer", "title": "Expired", "published": "-9d", "expires": "-1d",
     "pinned": true},
    {"id": "offer-expired-read", "kind": "offer", "title": "Expired read", "published": "-10d",
     "expires": "-2d", "read": true}
  ],
  "conversations": [
    {"id": "conv-unread", "subject": "Invoice", "state": "WAITING_FOR_CUSTOMER", "agent": "s-lena",
     "created": "-5d", "read": false,
     "firstMessage": "Wrong VAT",
     "messages": [{"id": "m1", "text": "Which address?", "time": "-4d"}],
     "draft": {"id": "d1", "text": "My address is"}},
    {"id": "conv-read", "subject": "Licence", "state": "CLOSED", "agent": "s-anna", "created": "-20d"},
    {"id": "conv-hidden", "subject": "Hidden one", "hidden": true},
    {"id": "conv-nothread", "subject": "Fresh", "state": "NEW", "hasThread": false, "created": "-10s"}
  ]
  })json";

QStringList idsOf(const std::deque<std::shared_ptr<Messenger::MessageEntry>>& list)
{
    QStringList ids;
    for (const auto& entry : list)
        ids.append(entry->id);
    return ids;
}

} // namespace

class TestNewsFetcher : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        SimulatedServer::instance().resetForTests();
        QString error;
        QVERIFY2(HostControl::loadScenarioJson(kScenario, QStringLiteral("fetcher.json"), &error),
                 qPrintable(error));
        m_fetcher = std::make_unique<CNewsFetcher>();
        QSignalSpy changed(m_fetcher.get(), &CNewsFetcher::newsChanged);
        QVERIFY(QTest::qWaitFor([&] { return changed.count() > 0; }, kWaitMs));
    }

    void cleanup() { m_fetcher.reset(); }

    void filterSelectsTheFoldersEntries_data()
    {
        QTest::addColumn<unsigned>("filter");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("1 important messages") << 1u << QStringList{"imp-unread", "imp-read"};
        QTest::newRow("10 offers") << 10u << QStringList{"offer-current", "offer-open"};
        QTest::newRow("6 offers history") << 6u << QStringList{"offer-expired", "offer-expired-read"};
        QTest::newRow("64 issues, latest activity first")
            << 64u << QStringList{"conv-nothread", "conv-unread", "conv-read"};
        QTest::newRow("17 unread urgent news") << 17u << QStringList{"imp-unread"};
        QTest::newRow("26 unread offers") << 26u << QStringList{"offer-current"};
        QTest::newRow("22 unread offers history") << 22u << QStringList{"offer-expired"};
        QTest::newRow("80 unread issues") << 80u << QStringList{"conv-unread"};
        QTest::newRow("16 every unread news entry")
            << 16u << QStringList{"imp-unread", "offer-current", "offer-expired"};
        QTest::newRow("0 every news entry, no conversations")
            << 0u << QStringList{"imp-unread", "offer-current", "imp-read",
                                 "offer-open", "offer-expired", "offer-expired-read"};
        QTest::newRow("2 every offer")
            << 2u << QStringList{"offer-current", "offer-open", "offer-expired", "offer-expired-read"};
        QTest::newRow("33 hidden included") << 33u << QStringList{"imp-unread", "imp-hidden", "imp-read"};
        QTest::newRow("96 hidden conversations included")
            << 96u << QStringList{"conv-hidden", "conv-nothread", "conv-unread", "conv-read"};
        QTest::newRow("65 news and issues together")
            << 65u << QStringList{"imp-unread", "imp-read", "conv-nothread", "conv-unread", "conv-read"};
    }

    void filterSelectsTheFoldersEntries()
    {
        QFETCH(unsigned, filter);
        QFETCH(QStringList, expected);
        const auto flags = QFlags<CNewsFetcher::NewsListFilterFlag>::fromInt(int(filter));
        QCOMPARE(idsOf(m_fetcher->getNewsList(flags)), expected);
        QCOMPARE(m_fetcher->hasAny(flags), !expected.isEmpty());
    }

    void markReadGoesToTheServerFirst()
    {
        QSignalSpy readChanged(m_fetcher.get(), &CNewsFetcher::readStatusChanged);
        m_fetcher->markNewsEntryRead(QStringLiteral("imp-unread"));
        QCOMPARE(readChanged.count(), 0);
        QVERIFY(QTest::qWaitFor([&] { return readChanged.count() == 1; }, kWaitMs));
        const auto entry = readChanged.first().first().value<Messenger::MessageEntryPtr>();
        QCOMPARE(entry->id, QStringLiteral("imp-unread"));
        QVERIFY(entry->flags.isRead);
        QVERIFY(HostControl::isNewsEntryRead(QStringLiteral("imp-unread")));
        QVERIFY(!m_fetcher->hasAny(CNewsFetcher::NewsListFilter::fromInt(17)));
    }

private:
    std::unique_ptr<CNewsFetcher> m_fetcher;
};

HOST_TEST_MAIN(TestNewsFetcher)
#include "tst_newsfetcher.moc"
