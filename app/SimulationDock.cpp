#include "SimulationDock.h"

#include "CReadNewsEntryRequest.h"
#include "CSettingsLoader.h"
#include "CSignInService.h"
#include "CVantrelApp.h"
#include "ConfigurableObjects.h"
#include "HostControl.h"

#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QDateTime>
#include <QGroupBox>
#include <QInputDialog>
#include <QJsonArray>
#include <QLabel>
#include <QMenu>
#include <QScrollArea>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

namespace {
const QString kConversationsKey = QStringLiteral("conversations");
const QString kParticipantsKey = QStringLiteral("participants");
const QString kNewsKey = QStringLiteral("news");
const QString kIdKey = QStringLiteral("id");
const QString kTitleKey = QStringLiteral("title");
const QString kSubjectKey = QStringLiteral("subject");
const QString kAgentKey = QStringLiteral("agent");
const QString kTextKey = QStringLiteral("text");
const QString kFirstNameKey = QStringLiteral("firstName");
const QString kLastNameKey = QStringLiteral("lastName");

// Sends go to the thread's communications; the fetch of a thread uses the same path, so the failure hits
// whichever of the two comes first.
const QString kSendPath = QStringLiteral("/communications");
constexpr int kTooLargeStatus = 413;
constexpr int kLongConversationMessages = 10000;
constexpr int kServerErrorStatus = 500;
const QList<int> kLatencyChoicesMs{0, 500, 2000};
constexpr int kPendingRefreshMs = 250;
constexpr int kButtonSpacing = 2;

const QString kShowNews = QStringLiteral("showNews");
const QString kAllowUseIncidents = QStringLiteral("allowUseIncidents");
const QString kUseZendeskTickets = QStringLiteral("useZendeskTickets");
const QString kShowNewsSetting = QStringLiteral("UIShowNews");

QJsonArray section(const QString& key)
{
    return HostControl::serverSnapshot().value(key).toArray();
}

QJsonObject findById(const QJsonArray& list, const QString& id)
{
    for (const QJsonValue& value : list) {
        if (value.toObject().value(kIdKey).toString() == id)
            return value.toObject();
    }
    return {};
}
} // namespace

SimulationDock::SimulationDock(CurrentItemKey currentItemKey, QWidget* parent)
    : QDockWidget(tr("Support server"), parent)
    , m_currentItemKey(std::move(currentItemKey))
    , m_pendingTimer(new QTimer(this))
{
    setObjectName(QStringLiteral("simulationDock"));
    buildMessageActions();
    buildRequestActions();
    buildNewsActions();
    buildSessionActions();
    buildBody();
    m_pendingTimer->setInterval(kPendingRefreshMs);
    connect(m_pendingTimer, &QTimer::timeout, this, &SimulationDock::refreshPendingCount);
}

void SimulationDock::populateMenu(QMenu* menu) const
{
    for (const Group& group : m_groups) {
        menu->addSection(group.title);
        menu->addActions(group.actions);
    }
}

QString SimulationDock::targetConversationId() const
{
    const QJsonArray conversations = section(kConversationsKey);
    const QString key = m_currentItemKey ? m_currentItemKey() : QString();
    if (!key.isEmpty() && !findById(conversations, key).isEmpty())
        return key;
    return conversations.isEmpty() ? QString() : conversations.first().toObject().value(kIdKey).toString();
}

QAction* SimulationDock::addAction(Group& group, const QString& text, const std::function<void()>& handler)
{
    auto* action = new QAction(text, this);
    connect(action, &QAction::triggered, this, handler);
    group.actions.append(action);
    return action;
}

QAction* SimulationDock::addToggle(Group& group, const QString& text, bool checked,
                                   const std::function<void(bool)>& handler)
{
    auto* action = new QAction(text, this);
    action->setCheckable(true);
    action->setChecked(checked);
    connect(action, &QAction::toggled, this, handler);
    group.actions.append(action);
    return action;
}

void SimulationDock::buildMessageActions()
{
    Group group{tr("Conversation"), {}};
    addAction(group, tr("New message from support…"), [this] { postSupportMessage(); });
    m_typingAction = addToggle(group, tr("Support is typing"), false, [this](bool typing) {
        const QString conversationId = targetConversationId();
        if (conversationId.isEmpty())
            return;
        const QJsonObject conversation = findById(section(kConversationsKey), conversationId);
        HostControl::setTyping(conversationId, conversation.value(kAgentKey).toString(), typing);
    });
    addAction(group, tr("Delete last message"), [this] { deleteLastMessage(); });
    addAction(group, tr("Edit last message…"), [this] { editLastMessage(); });
    addAction(group, tr("Rename a participant…"), [this] { renameParticipant(); });
    addAction(group, tr("Add a conversation of 10,000 messages"), [] {
        // Generating and listing it takes a moment; the menu comes back when it is there.
        QApplication::setOverrideCursor(Qt::WaitCursor);
        HostControl::addGeneratedConversation(kLongConversationMessages);
        QApplication::restoreOverrideCursor();
    });
    m_groups.append(group);
}

void SimulationDock::buildRequestActions()
{
    Group group{tr("Requests"), {}};
    addAction(group, tr("Fail next send: 413 (too large)"), [this] { failNextSend(kTooLargeStatus); });
    addAction(group, tr("Fail next send: 500"), [this] { failNextSend(kServerErrorStatus); });
    m_latencyGroup = new QActionGroup(this);
    for (int latency : kLatencyChoicesMs) {
        QAction* action =
            addToggle(group, tr("Latency %1 ms").arg(latency), latency == 0, [latency](bool on) {
                if (on)
                    HostControl::setLatency(latency);
            });
        m_latencyGroup->addAction(action);
    }
    m_holdAction = addToggle(group, tr("Hold requests"), false, [this](bool hold) {
        HostControl::setHoldRequests(hold);
        if (hold)
            m_pendingTimer->start();
        refreshPendingCount();
    });
    addAction(group, tr("Release all held requests"), [this] {
        HostControl::releaseAllRequests();
        refreshPendingCount();
    });
    m_groups.append(group);
}

void SimulationDock::buildNewsActions()
{
    Group group{tr("News and host requests"), {}};
    addAction(group, tr("Add urgent news"), [this] { addNewsEntry(true); });
    addAction(group, tr("Add offer"), [this] { addNewsEntry(false); });
    addAction(group, tr("Emit newsChanged"), [] { HostControl::emitNewsChanged(); });
    addAction(group, tr("Emit syncViewsRequest"), [] { HostControl::emitSyncViewsRequest(); });
    addAction(group, tr("Broadcast \"Write to support\""),
              [] { vantrelApp->broadcastRequest(BroadcastWriteToSupport); });
    addAction(group, tr("Open a news entry (event 1078)…"), [this] { openNewsEntry(); });
    m_groups.append(group);
}

void SimulationDock::buildSessionActions()
{
    Group group{tr("Session and switches"), {}};
    const CSignInService* signIn = vantrelApp->getSignInService();
    addToggle(group, tr("Signed in"), signIn && signIn->getIsSignedIn(), [this](bool signedIn) {
        HostControl::setSignedIn(signedIn);
        emit hostStateChanged();
    });
    addToggle(group, tr("showNews visible"), ConfigurableObjects::isVisible(kShowNews), [this](bool on) {
        HostControl::setVisible(kShowNews, on);
        emit hostStateChanged();
    });
    addToggle(group, tr("allowUseIncidents visible"), ConfigurableObjects::isVisible(kAllowUseIncidents),
              [this](bool on) {
                  HostControl::setVisible(kAllowUseIncidents, on);
                  emit hostStateChanged();
              });
    addToggle(group, tr("useZendeskTickets allowed"), ConfigurableObjects::isAllowed(kUseZendeskTickets),
              [this](bool on) {
                  HostControl::setAllowed(kUseZendeskTickets, on);
                  emit hostStateChanged();
              });
    QVariant showNews(true);
    vantrelApp->getSettingsInstance().Read(kShowNewsSetting, &showNews);
    addToggle(group, tr("UIShowNews setting"), showNews.toBool(), [this](bool on) {
        HostControl::setSetting(kShowNewsSetting, on);
        emit hostStateChanged();
    });
    m_groups.append(group);
}

void SimulationDock::buildBody()
{
    auto* scroll = new QScrollArea(this);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto* body = new QWidget(scroll);
    auto* layout = new QVBoxLayout(body);
    for (const Group& group : std::as_const(m_groups)) {
        auto* box = new QGroupBox(group.title, body);
        auto* boxLayout = new QVBoxLayout(box);
        boxLayout->setSpacing(kButtonSpacing);
        for (QAction* action : group.actions) {
            auto* button = new QToolButton(box);
            button->setDefaultAction(action);
            button->setToolButtonStyle(Qt::ToolButtonTextOnly);
            button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
            boxLayout->addWidget(button);
        }
        layout->addWidget(box);
    }
    m_pendingLabel = new QLabel(body);
    layout->addWidget(m_pendingLabel);
    layout->addStretch(1);
    scroll->setWidget(body);
    setWidget(scroll);
    refreshPendingCount();
}

void SimulationDock::postSupportMessage()
{
    const QString conversationId = targetConversationId();
    if (conversationId.isEmpty())
        return;
    const QString subject =
        findById(section(kConversationsKey), conversationId).value(kSubjectKey).toString();
    bool ok = false;
    const QString text = QInputDialog::getMultiLineText(
        this, tr("New message from support"), tr("Message to \"%1\":").arg(subject),
        tr("Thanks for waiting, we are looking into it."), &ok);
    if (ok && !text.isEmpty())
        HostControl::postMessage(conversationId, text);
}

void SimulationDock::deleteLastMessage()
{
    const QList<QJsonObject> messages = HostControl::threadMessages(targetConversationId());
    if (!messages.isEmpty())
        HostControl::deleteMessage(messages.last().value(kIdKey).toString());
}

void SimulationDock::editLastMessage()
{
    const QList<QJsonObject> messages = HostControl::threadMessages(targetConversationId());
    if (messages.isEmpty())
        return;
    const QJsonObject last = messages.last();
    bool ok = false;
    const QString text = QInputDialog::getMultiLineText(this, tr("Edit last message"), tr("New text:"),
                                                        last.value(kTextKey).toString(), &ok);
    if (ok)
        HostControl::editMessage(last.value(kIdKey).toString(), text);
}

void SimulationDock::renameParticipant()
{
    const QJsonArray participants = section(kParticipantsKey);
    QStringList choices;
    for (const QJsonValue& value : participants) {
        const QJsonObject participant = value.toObject();
        choices.append(QStringLiteral("%1 (%2 %3)")
                           .arg(participant.value(kIdKey).toString(),
                                participant.value(kFirstNameKey).toString(),
                                participant.value(kLastNameKey).toString()));
    }
    if (choices.isEmpty())
        return;
    bool ok = false;
    const QString choice =
        QInputDialog::getItem(this, tr("Rename a participant"), tr("Participant:"), choices, 0, false, &ok);
    if (!ok)
        return;
    const QJsonObject participant = participants.at(choices.indexOf(choice)).toObject();
    const QString firstName =
        QInputDialog::getText(this, tr("Rename a participant"), tr("First name:"), QLineEdit::Normal,
                              participant.value(kFirstNameKey).toString(), &ok);
    if (!ok)
        return;
    const QString lastName =
        QInputDialog::getText(this, tr("Rename a participant"), tr("Last name:"), QLineEdit::Normal,
                              participant.value(kLastNameKey).toString(), &ok);
    if (ok)
        HostControl::renameParticipant(participant.value(kIdKey).toString(), firstName, lastName);
}

void SimulationDock::failNextSend(int httpStatus)
{
    const QString message = httpStatus == kTooLargeStatus ? QStringLiteral("Request Entity Too Large")
                                                          : QStringLiteral("Internal Server Error");
    HostControl::failNextRequest(kSendPath, httpStatus, message);
}

void SimulationDock::addNewsEntry(bool urgent)
{
    ++m_newsCounter;
    const QString stamp = QDateTime::currentDateTime().toString(Qt::ISODate);
    const QString title =
        urgent ? tr("Urgent notice %1").arg(m_newsCounter) : tr("New offer %1").arg(m_newsCounter);
    QJsonObject entry{
        {kIdKey,
         QStringLiteral("host-news-%1-%2").arg(QDateTime::currentMSecsSinceEpoch()).arg(m_newsCounter)},
        {QStringLiteral("kind"), urgent ? QStringLiteral("important") : QStringLiteral("offer")},
        {kTitleKey, title},
        {QStringLiteral("subtitle"), tr("Added from the reference host at %1").arg(stamp)},
        {QStringLiteral("html"), QStringLiteral("<h1>%1</h1><p>%2</p>").arg(title.toHtmlEscaped(), stamp)},
        {QStringLiteral("published"), QStringLiteral("now")},
    };
    if (!urgent)
        entry.insert(QStringLiteral("expires"), QStringLiteral("+7d"));
    HostControl::addNewsEntry(entry);
}

void SimulationDock::openNewsEntry()
{
    const QJsonArray news = section(kNewsKey);
    QStringList choices;
    for (const QJsonValue& value : news)
        choices.append(QStringLiteral("%1 — %2").arg(value.toObject().value(kIdKey).toString(),
                                                     value.toObject().value(kTitleKey).toString()));
    if (choices.isEmpty())
        return;
    bool ok = false;
    const QString choice =
        QInputDialog::getItem(this, tr("Open a news entry"), tr("News entry:"), choices, 0, false, &ok);
    if (!ok)
        return;
    CReadNewsEntryRequest request(news.at(choices.indexOf(choice)).toObject().value(kIdKey).toString());
    vantrelApp->postApplicationEvent(&request);
}

void SimulationDock::refreshPendingCount()
{
    const qsizetype pending = HostControl::pendingRequests().size();
    m_pendingLabel->setText(tr("Held requests: %1").arg(pending));
    // Requests queued while held can still be answered after the hold ends; keep counting until they are.
    if (pending == 0 && !m_holdAction->isChecked())
        m_pendingTimer->stop();
}
