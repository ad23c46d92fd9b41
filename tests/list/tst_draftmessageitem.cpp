// DraftMessageItem against the simulated server: when drafts are saved, replaced and deleted, and how a send
// that overtakes a draft being created is handled.
#include "HostTestMain.h"

#include "DraftMessageItem.h"
#include "ListTestSupport.h"

namespace {

const QString kConversation = QStringLiteral("c-draft");

QStringList draftVerbs()
{
    QStringList verbs;
    for (const HostControl::Request& request : HostControl::requestLog()) {
        if (request.path.contains("/communications") || request.path == "/entities")
            verbs << QString::fromLatin1(request.verb);
    }
    return verbs;
}

QString savedDraftText()
{
    const QList<QJsonObject> drafts = HostControl::drafts(kConversation);
    return drafts.size() == 1 ? drafts.first().value("text").toString() : QString();
}

QString lastThreadMessage()
{
    const QList<QJsonObject> messages = HostControl::threadMessages(kConversation);
    return messages.isEmpty() ? QString() : messages.last().value("text").toString();
}

bool loadConversation(const QJsonObject& extra = {})
{
    HostControl::clearServer();
    const bool loaded = listTest::loadScenario({}, {listTest::conversation(kConversation, "Printer", extra)});
    HostControl::clearRequestLog();
    return loaded;
}

} // namespace

class TestDraftMessageItem : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        HostControl::setHoldRequests(false);
        QVERIFY(loadConversation());
    }

    void aBurstOfTypingIsSavedOnceAndReplacedLater()
    {
        auto entry = listTest::fetcherEntry(kConversation);
        DraftMessageItem keeper(nullptr, entry);
        HostControl::setHoldRequests(true);
        keeper.setDraftText("f");
        keeper.setDraftText("first");
        QVERIFY(keeper.isBusy());
        QTRY_COMPARE(HostControl::pendingRequests().size(), 1);
        // The next save falls due while the first is still in flight: it waits and replaces the draft.
        keeper.setDraftText("first and more");
        QTest::qWait(DraftMessageItem::kSaveDelayMs + 300);
        HostControl::setHoldRequests(false);
        HostControl::releaseAllRequests();
        QTRY_COMPARE_WITH_TIMEOUT(savedDraftText(), "first and more", 6000);
        QTRY_VERIFY(!keeper.isBusy());
        QCOMPARE(draftVerbs(), (QStringList{"POST", "PUT"}));
        QCOMPARE(DraftMessageItem::entityFrom(entry->draftEntity).id,
                 HostControl::drafts(kConversation).first().value("id").toString());
    }

    void clearingTheTextDeletesTheDraft()
    {
        QVERIFY(loadConversation({{"draft", QJsonObject{{"text", "Old"}}}}));
        auto entry = listTest::fetcherEntry(kConversation);
        QCOMPARE(entry->draftText, "Old");
        DraftMessageItem keeper(nullptr, entry);
        keeper.setDraftText(QString());
        QTRY_VERIFY(HostControl::drafts(kConversation).isEmpty());
        QCOMPARE(draftVerbs(), QStringList{"DELETE"});
        QTRY_VERIFY(!entry->draftEntity.isValid());
    }

    void aSendThatOvertakesACreatedDraftDiscardsIt()
    {
        auto entry = listTest::fetcherEntry(kConversation);
        DraftMessageItem keeper(nullptr, entry);
        HostControl::setHoldRequests(true);
        keeper.setDraftText("Quick");
        QTRY_COMPARE(HostControl::pendingRequests().size(), 1);
        const int draftCreation = HostControl::pendingRequests().first().id;
        QVERIFY(keeper.sendDraft({}));
        QVERIFY(keeper.isDiscarding());
        QTRY_COMPARE(HostControl::pendingRequests().size(), 2);
        // The draft is created after the send started: the keeper deletes it at once and keeps nothing.
        QVERIFY(HostControl::releaseRequest(draftCreation));
        HostControl::setHoldRequests(false);
        HostControl::releaseAllRequests();
        QTRY_VERIFY(HostControl::drafts(kConversation).isEmpty() && !lastThreadMessage().isEmpty());
        QTRY_COMPARE(draftVerbs().last(), "DELETE");
        QVERIFY(!entry->draftEntity.isValid());
        QCOMPARE(lastThreadMessage(), "Quick");
    }
};

HOST_TEST_MAIN(TestDraftMessageItem)
#include "tst_draftmessageitem.moc"
