// Scenario files of the simulated server: faults are reported with file and position, optional members take
// defaults, relative times, and a snapshot reads back the same.
#include "HostTestMain.h"
#include "ScenarioCodec.h"
#include "SimulatedServer.h"

#include <QJsonDocument>
#include <QRegularExpression>
#include <QTemporaryDir>

class TestScenarioCodec : public QObject
{
    Q_OBJECT

private slots:
    void init() { SimulatedServer::instance().resetForTests(); }

    void malformedJsonNamesFileLineAndColumn()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("broken.json"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("{\n  \"news\": [\n    {\"id\": \"a\",, \"title\": \"x\"}\n  ]\n}\n");
        file.close();
        QString error;
        QVERIFY(!HostControl::loadScenarioFile(path, &error));
        const QRegularExpressionMatch match =
            QRegularExpression(QStringLiteral("^broken\\.json:(\\d+):(\\d+): ")).match(error);
        QVERIFY2(match.hasMatch(), qPrintable(error));
        QCOMPARE(match.captured(1).toInt(), 3);
        const int column = match.captured(2).toInt();
        QVERIFY2(column >= 16 && column <= 18, qPrintable(error));
    }

    void wrongTypesNameTheJsonPath_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<QString>("path");
        QTest::newRow("news title") << QByteArray(R"({"news": [{"id": "a"}, {"id": "b", "title": 5}]})")
                                    << "/news/1/title";
        QTest::newRow("message text")
            << QByteArray(R"({"conversations": [{"id": "c", "messages": [{"text": "ok"}, {"text": []}]}]})")
            << "/conversations/0/messages/1/text";
        QTest::newRow("colour") << QByteArray(R"({"participants": [{"id": "p", "nameColor": "blurple"}]})")
                                << "/participants/0/nameColor";
        QTest::newRow("time") << QByteArray(R"({"news": [{"id": "a", "published": "yesterday"}]})")
                              << "/news/0/published";
        QTest::newRow("attachment content")
            << QByteArray(
                   R"({"conversations": [{"id": "c", "messages": [{"attachments": [{"fileName": "x.bin"}]}]}]})")
            << "/conversations/0/messages/0/attachments/0/generate";
        const QList<std::pair<const char*, const char*>> more{
            {"[1]", "/"},
            {R"({"news": {}})", "/news"},
            {R"({"news": [5]})", "/news/0"},
            {R"({"news": [{"id": "a", "read": "yes"}]})", "/news/0/read"},
            {R"({"news": [{"id": "a"}, {"id": "a"}]})", "/news/1/id"},
            {R"({"news": [{"id": "a", "kind": "rumour"}]})", "/news/0/kind"},
            {R"({"limits": {"messageLength": "long"}})", "/limits/messageLength"},
            {R"({"states": [{"displayName": "Lost"}]})", "/states/0/key"},
            {R"({"conversations": [{"id": "c", "state": "LOST"}]})", "/conversations/0/state"},
            {R"({"conversations": [{"id": "c", "hasThread": false, "messages": [{}]}]})",
             "/conversations/0/hasThread"}};
        for (const auto& [json, path] : more)
            QTest::newRow(path) << QByteArray(json) << QString::fromLatin1(path);
    }

    void wrongTypesNameTheJsonPath()
    {
        QFETCH(QByteArray, json);
        QFETCH(QString, path);
        QString error;
        QVERIFY(!HostControl::loadScenarioJson(json, QStringLiteral("typed.json"), &error));
        QVERIFY2(error.startsWith(QStringLiteral("typed.json: ") + path + QStringLiteral(": ")),
                 qPrintable(error));
    }

    void failedLoadKeepsTheOldData()
    {
        QString error;
        QVERIFY(
            HostControl::loadScenarioJson(R"({"news": [{"id": "keep"}]})", QStringLiteral("a.json"), &error));
        QVERIFY(!HostControl::loadScenarioJson(R"({"news": [{"id": 1}]})", QStringLiteral("b.json"), &error));
        QVERIFY(!HostControl::loadScenarioFile(QStringLiteral("/no/such/scenario.json"), &error));
        QVERIFY2(error.startsWith(QStringLiteral("/no/such/scenario.json: cannot open")), qPrintable(error));
        QVERIFY(SimulatedServer::instance().data().newsEntry(QStringLiteral("keep")));
    }

    void missingOptionalFieldsTakeDefaults()
    {
        ServerData data;
        QString error;
        QVERIFY2(ScenarioCodec::read(R"({"news": [{}], "conversations": [{"messages": [{}]}]})",
                                     QStringLiteral("min.json"), data, &error),
                 qPrintable(error));
        QCOMPARE(data.user.id, QStringLiteral("u-self"));
        QCOMPARE(data.limits.attachmentBytes, ServerData::kDefaultAttachmentBytes);
        QVERIFY(!data.news.first().id.isEmpty());
        QCOMPARE(data.news.first().kind, ServerData::NewsEntry::Important);
        QVERIFY(data.news.first().published.isValid());
        QVERIFY(!data.news.first().expires.isValid());
        const ServerData::Conversation& conversation = data.conversations.first();
        QCOMPARE(conversation.stateKey, QStringLiteral("OPEN"));
        QCOMPARE(conversation.threadId, conversation.id);
        QVERIFY(conversation.read);
        QCOMPARE(data.messages.first().editVersion, 1);
        QCOMPARE(data.messages.first().versionKey, data.messages.first().id);
        QVERIFY(data.messages.first().time > conversation.created);
    }

    void relativeTimes_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<qint64>("seconds");
        QTest::newRow("now") << "now" << qint64(0);
        QTest::newRow("minus two days") << "-2d" << qint64(-2 * 86400);
        QTest::newRow("minus ninety minutes") << "-90m" << qint64(-90 * 60);
        QTest::newRow("plus three hours") << "+3h" << qint64(3 * 3600);
    }

    void relativeTimes()
    {
        QFETCH(QString, text);
        QFETCH(qint64, seconds);
        const QDateTime now = QDateTime::currentDateTime();
        QCOMPARE(ScenarioCodec::parseTime(text, now), now.addSecs(seconds));
    }

    void snapshotReadsBackTheSame()
    {
        HostControl::loadDefaultScenario();
        const QJsonObject first = HostControl::serverSnapshot();
        QString error;
        QVERIFY2(HostControl::loadScenarioJson(QJsonDocument(first).toJson(), QStringLiteral("snapshot.json"),
                                               &error),
                 qPrintable(error));
        QCOMPARE(HostControl::serverSnapshot(), first);
    }
};

HOST_TEST_MAIN(TestScenarioCodec)
#include "tst_scenariocodec.moc"
