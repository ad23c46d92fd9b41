// The news fetcher: filter semantics of the folders, stable entries, read and hidden marks through the
// server, server pushes turned into fetcher signals, and conversions that tolerate missing fields.
#include "CNewsFetcher.h"
#include "HostTestMain.h"
#include "SimulatedServer.h"

#include <QJsonArray>
#include <QSignalSpy>
#include <QTest>

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

    void entriesAndLocalDraftsSurviveReloads()
    {
        const auto before = m_fetcher->getNewsList(CNewsFetcher::FilterIssues);
        before.front()->draftText = QStringLiteral("My address is Lindenstr");
        HostControl::addNewsEntry(QJsonObject{{"id", "imp-new"}, {"title", "Brand new"}});
        QSignalSpy changed(m_fetcher.get(), &CNewsFetcher::newsChanged);
        QVERIFY(QTest::qWaitFor([&] { return changed.count() == 1; }, kWaitMs));
        QCOMPARE(idsOf(m_fetcher->getNewsList(CNewsFetcher::FilterImportant)).first(),
                 QStringLiteral("imp-new"));
        const auto after = m_fetcher->getNewsList(CNewsFetcher::FilterIssues);
        QCOMPARE(after.size(), before.size());
        for (size_t i = 0; i < after.size(); ++i)
            QCOMPARE(after.at(i).get(), before.at(i).get());
        QCOMPARE(after.front()->draftText, QStringLiteral("My address is Lindenstr"));
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

    void markHiddenDropsTheEntryButNotPinnedOnes()
    {
        QSignalSpy changed(m_fetcher.get(), &CNewsFetcher::newsChanged);
        m_fetcher->markNewsEntryHidden(QStringLiteral("offer-current"));
        m_fetcher->markNewsEntryHidden(QStringLiteral("offer-expired"));
        QCOMPARE(changed.count(), 0);
        QVERIFY(QTest::qWaitFor([&] { return changed.count() == 1; }, kWaitMs));
        QCOMPARE(idsOf(m_fetcher->getNewsList(CNewsFetcher::NewsListFilter::fromInt(10))),
                 QStringList{"offer-open"});
        QVERIFY(HostControl::isNewsEntryHidden(QStringLiteral("offer-current")));
        QVERIFY(!HostControl::isNewsEntryHidden(QStringLiteral("offer-expired")));
    }

    void conversationEntriesCarryTheTicket()
    {
        const auto list = m_fetcher->getNewsList(CNewsFetcher::FilterIssues);
        const Messenger::MessageEntry& waiting = *list.at(1);
        QCOMPARE(waiting.title, QStringLiteral("Invoice"));
        QCOMPARE(waiting.subtitle, QStringLiteral("Waiting for your reply"));
        QCOMPARE(waiting.status, 1);
        QVERIFY(waiting.flags.isConversation);
        QVERIFY(!waiting.flags.isRead);
        QVERIFY(waiting.secondTime > waiting.firstTime);
        const auto ticket = waiting.entity.value<EntityDto::EntityDto>();
        QCOMPARE(ticket.attributeValue(QStringLiteral("CHAT_DEFAULT_THREAD_ID")).toString(),
                 QStringLiteral("conv-unread"));
        QCOMPARE(waiting.draftText, QStringLiteral("My address is"));
        QCOMPARE(waiting.draftEntity.value<EntityDto::EntityDto>().id, QStringLiteral("d1"));
        const CIncidentCommunication opening = m_fetcher->ticketEntityToMessageInfo(ticket);
        QCOMPARE(opening.text, QStringLiteral("Wrong VAT"));
        QCOMPARE(opening.senderName, QStringLiteral("Alex Morgan"));
        QCOMPARE(opening.threadId, QStringLiteral("conv-unread"));
        QCOMPARE(opening.time, waiting.firstTime);

        QCOMPARE(list.at(2)->status, 2);
        QCOMPARE(list.at(2)->subtitle, QStringLiteral("Closed"));
        const auto fresh = list.at(0)->entity.value<EntityDto::EntityDto>();
        QVERIFY(fresh.attribute(QStringLiteral("CHAT_DEFAULT_THREAD_ID")));
        QVERIFY(fresh.attributeValue(QStringLiteral("CHAT_DEFAULT_THREAD_ID")).toString().isEmpty());
        QVERIFY(list.at(0)->draftEntity.isNull());
    }

    void newMessagesArriveAsSignals()
    {
        QSignalSpy received(m_fetcher.get(), &CNewsFetcher::communicationReceived);
        QSignalSpy newMessages(m_fetcher.get(), &CNewsFetcher::gotNewMessagesForIssue);
        const QString id = HostControl::postMessage(QStringLiteral("conv-read"), QStringLiteral("**Hello**"));
        HostControl::postMessage(QStringLiteral("conv-read"), QStringLiteral("Second"));
        QCOMPARE(received.count(), 0);
        QVERIFY(QTest::qWaitFor([&] { return received.count() == 2; }, kWaitMs));
        const auto message = received.first().first().value<CIncidentCommunication>();
        QCOMPARE(message.id, id);
        QCOMPARE(message.threadId, QStringLiteral("conv-read"));
        QCOMPARE(message.text, QStringLiteral("**Hello**"));
        QCOMPARE(message.senderId, QStringLiteral("s-anna"));
        QCOMPARE(message.senderName, QStringLiteral("Anna Keller"));
        QVERIFY(message.fromOtherParty);
        QCOMPARE(message.getNameColor(), QColor(QStringLiteral("#3366cc")));
        // The list and the conversation's reload follow once for both.
        QTRY_COMPARE(newMessages.count(), 1);
        QCOMPARE(newMessages.first().first().toString(), QStringLiteral("conv-read"));
        // A message from support makes the conversation unread.
        QTRY_VERIFY(
            idsOf(m_fetcher->getNewsList(CNewsFetcher::NewsListFilter::fromInt(80))).contains("conv-read"));
    }

    void deletionsTypingAndRenamesArriveAsSignals()
    {
        QSignalSpy deleted(m_fetcher.get(), &CNewsFetcher::communicationDeleted);
        QSignalSpy typing(m_fetcher.get(), &CNewsFetcher::threadIsBeingEdited);
        QSignalSpy watchers(m_fetcher.get(), &CNewsFetcher::watchersCacheChanged);
        HostControl::deleteMessage(QStringLiteral("m1"));
        HostControl::setTyping(QStringLiteral("conv-unread"), QStringLiteral("s-lena"), true);
        HostControl::renameParticipant(QStringLiteral("s-anna"), QStringLiteral("Anne"),
                                       QStringLiteral("Kell"));
        QCOMPARE(deleted.count() + typing.count() + watchers.count(), 0);
        QVERIFY(QTest::qWaitFor([&] { return watchers.count() == 1; }, kWaitMs));
        QCOMPARE(deleted.count(), 1);
        const auto gone = deleted.first().first().value<CIncidentCommunication>();
        QCOMPARE(gone.id, QStringLiteral("m1"));
        QVERIFY(gone.deleted);
        QCOMPARE(typing.count(), 1);
        const auto typist = typing.first().at(0).value<CIncidentCommunication>();
        QCOMPARE(typist.threadId, QStringLiteral("conv-unread"));
        QCOMPARE(typist.senderId, QStringLiteral("s-lena"));
        QCOMPARE(typist.senderName, QStringLiteral("Lena (Billing)"));
        QVERIFY(typing.first().at(1).toBool());
        QCOMPARE(m_fetcher->getWatcherName(QStringLiteral("s-anna")).fullName(), QStringLiteral("Anne Kell"));
        QCOMPARE(m_fetcher->getWatcherName(QStringLiteral("u-self")).fullName(),
                 QStringLiteral("Alex Morgan"));
        QVERIFY(!m_fetcher->getWatcherName(QStringLiteral("nobody")).isValid());
        QVERIFY(!m_fetcher->getWatcherName(QString()).isValid());
    }

    void conversionsTolerateMissingFields_data()
    {
        QTest::addColumn<EntityDto::EntityDto>("entity");
        QTest::newRow("empty") << EntityDto::EntityDto();
        EntityDto::EntityDto odd;
        odd.id = QStringLiteral("odd");
        odd.setAttribute(QStringLiteral("ATTACHMENTS"), QStringLiteral("not a list"));
        odd.setAttribute(QStringLiteral("TIME"), 42);
        odd.setAttribute(QStringLiteral("SENDER_ID"), QStringLiteral("unknown-person"));
        odd.setAttribute(QStringLiteral("FIRST_MESSAGE_ATTACHMENTS"), QVariantList{QStringLiteral("x")});
        QTest::newRow("wrong types") << odd;
    }

    void conversionsTolerateMissingFields()
    {
        QFETCH(EntityDto::EntityDto, entity);
        const CIncidentCommunication message = m_fetcher->communicationEntityToMessageInfo(entity);
        QCOMPARE(message.id, entity.id);
        QCOMPARE(message.editVersion, 1);
        QCOMPARE(message.versionKey, entity.id);
        QVERIFY(!message.deleted);
        QVERIFY(!message.nameKnown);
        QVERIFY(!message.time.isValid());
        QVERIFY(message.attachments.isEmpty());
        const CIncidentCommunication opening = m_fetcher->ticketEntityToMessageInfo(entity);
        QCOMPARE(opening.senderId, QStringLiteral("u-self"));
        QVERIFY(opening.text.isEmpty());
        QVERIFY(!opening.fromOtherParty);
        QVERIFY(opening.attachments.isEmpty());
    }

    void addedIncidentIsListed()
    {
        EntityDto::EntityDto ticket;
        ticket.id = QStringLiteral("conv-local");
        ticket.createdAt = QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs);
        ticket.setAttribute(QStringLiteral("SUBJECT"), QStringLiteral("Just created"));
        ticket.setAttribute(QStringLiteral("STATE"), QStringLiteral("NEW"));
        QSignalSpy changed(m_fetcher.get(), &CNewsFetcher::newsChanged);
        m_fetcher->addNewIncident(ticket);
        QCOMPARE(changed.count(), 0);
        QVERIFY(QTest::qWaitFor([&] { return changed.count() == 1; }, kWaitMs));
        QCOMPARE(idsOf(m_fetcher->getNewsList(CNewsFetcher::FilterIssues)).first(),
                 QStringLiteral("conv-local"));
    }

private:
    std::unique_ptr<CNewsFetcher> m_fetcher;
};

HOST_TEST_MAIN(TestNewsFetcher)
#include "tst_newsfetcher.moc"
