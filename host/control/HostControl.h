#pragma once
// The control surface of the stand-in host: what tests and the reference host application use to drive the
// simulated support server and to observe what plugins asked of the host. Plugin code never includes this
// header; it exists only in the stand-in.
//
// Everything here runs on the GUI thread. Server changes take effect at once on the server's data and reach
// the plugin the way real pushes would: through CNewsFetcher signals, emitted from the event loop.

#include <QDateTime>
#include <QJsonObject>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>

class CAbstractKolPlugin;
class CVantrelApp;

namespace HostControl {

// ---- Start-up ---------------------------------------------------------------------------------------------

// Prepares a fresh host for a test process: settings in a temporary file, feature switches at their defaults,
// launches and browser links recorded only (not opened), balloons shown, an empty server. Call after the
// CVantrelApp exists.
void resetForTests();

// Replaces the server's data with the built-in sample scenario.
void loadDefaultScenario();
// Replaces the server's data with a scenario file (format: README.md). On a malformed file returns false and
// sets `error` to a message naming the file and the line and column of the fault.
bool loadScenarioFile(const QString& path, QString* error);
// The same from JSON text; `sourceName` names it in error messages.
bool loadScenarioJson(const QByteArray& json, const QString& sourceName, QString* error);
// The built-in scenario as JSON text.
QByteArray defaultScenarioJson();
// Drops all server data (no news, no conversations, no participants).
void clearServer();

// ---- Server data
// -------------------------------------------------------------------------------------------- Objects use
// the scenario format (README.md). Each call changes the data and schedules the matching fetcher signals
// (newsChanged, communicationReceived, ...) through the event loop.

void addNewsEntry(const QJsonObject& entry);
void removeNewsEntry(const QString& id);
void addConversation(const QJsonObject& conversation);
// A conversation of `messageCount` generated messages of many shapes (GeneratedConversation.h); returns its
// id.
QString addGeneratedConversation(int messageCount, quint32 seed = 1);
void setConversationState(const QString& conversationId, const QString& stateKey);
// A new message in the conversation's thread from `senderId` (a participant id; empty: the support agent
// of the conversation); returns the message id.
QString postMessage(const QString& conversationId, const QString& text, const QString& senderId = QString(),
                    const QList<QJsonObject>& attachments = {});
// A new version of a message (edit version + 1, same version key); returns the new message id.
QString editMessage(const QString& messageId, const QString& newText);
void deleteMessage(const QString& messageId);
// Typing events of a participant in a conversation (threadIsBeingEdited).
void setTyping(const QString& conversationId, const QString& participantId, bool typing);
void addParticipant(const QJsonObject& participant);
// Changes a participant's names; watchersCacheChanged follows.
void renameParticipant(const QString& participantId, const QString& firstName, const QString& lastName);
// newsChanged and syncViewsRequest without a data change.
void emitNewsChanged();
void emitSyncViewsRequest();

// Read back what the server holds.
QJsonObject serverSnapshot(); // the whole data in scenario format
QList<QJsonObject> threadMessages(const QString& conversationId, bool includeDrafts = false);
QList<QJsonObject> drafts(const QString& conversationId); // saved drafts of a conversation
bool isNewsEntryRead(const QString& id);
bool isNewsEntryHidden(const QString& id);

// ---- Requests
// -------------------------------------------------------------------------------------------------

struct Request
{
    int id = 0;
    QByteArray verb; // "GET", "POST", "PUT", "DELETE"
    QString path;    // "/threads/<id>/communications", ...
    QByteArray body; // JSON
    bool answered = false;
};

// Delay of every answer (milliseconds, default 0: the next event-loop pass).
void setLatency(int milliseconds);
// While held, requests wait until released or failed one by one.
void setHoldRequests(bool hold);
QList<Request> pendingRequests();
bool releaseRequest(int requestId);
bool failRequest(int requestId, int httpStatus, const QString& message);
void releaseAllRequests();
// The next request whose path contains `pathPart` (any request when empty) fails with the status and message.
void failNextRequest(const QString& pathPart, int httpStatus, const QString& message);
// Every request since the last clear, answered or not.
QList<Request> requestLog();
void clearRequestLog();
// Limits the server enforces: total attachment bytes per message (413 above it) and message characters.
void setAttachmentSizeLimit(qint64 bytes);
void setMessageLengthLimit(int characters);
int messageLengthLimit();

// ---- What plugins asked of the host
// ---------------------------------------------------------------------------

// One observed request. Kinds and their details:
//   "select" {row, parentRow, key, flags}   "expand" / "collapse" / "editor" {row, parentRow, key}
//   "toast" {text, slot, icon, timeout}       "animationBegin" {mode}   "animationStop" {}
//   "showEmptyList" {}   "hideEmptyList" {}   "selectPage" {selected}
//   "balloon" {text, icon, timeout, widget (object name), rect}
//   "launchFile" {path}   "openLink" {url}   "flashWindow" {count}   "dialogExecuted" {class, result}
//   "fileDialog" {kind: "open"|"save", path, filters, options}
struct Event
{
    QString kind;
    QVariantMap details;
};

QList<Event> events(const QString& kind = QString());
void clearEvents();
// The object that emits eventRecorded(const QString& kind, const QVariantMap& details) for every new event
// (for the reference host's log window).
QObject* eventSource();

// Records the requests that `plugin` sends (selection, expand, collapse, editor, toasts, animation,
// empty-list widget, page selection).
void recordPluginRequests(CAbstractKolPlugin* plugin);

// ---- Scripted answers of the host's dialogs
// -----------------------------------------------------------------

// The next open-file dialogs answer with these paths in turn (an empty list: the user cancels). While the
// queue is empty, dialogs are shown for real.
void scriptOpenFileDialog(const QStringList& paths);
// The next save dialogs answer with this path (empty: the user cancels).
void scriptSaveAsDialog(const QString& path);
// Makes balloons invisible (still recorded); tests use it to keep windows quiet.
void setShowBalloons(bool show);
// Launches and browser links are only recorded (default in tests) or really opened.
void setOpenExternally(bool open);

// ---- Session and switches
// -----------------------------------------------------------------------------------

void setSignedIn(bool signedIn, const QString& firstName = QStringLiteral("Alex"),
                 const QString& lastName = QStringLiteral("Morgan"),
                 const QString& userId = QStringLiteral("u-self"));
// The next sign-in attempt of the sign-in form succeeds, or fails with `reason`.
void scriptSignInResult(bool succeed, const QString& reason = QString());

void setAllowed(const QString& id, bool allowed);
// The host's own texts (sign-in form, balloons) and Qt's standard texts (dialog buttons, context menus) in
// the language of `locale` (for example "de"), as the host installs them at start. Returns whether the
// host's catalogue was found for it; English needs none.
bool installTranslations(const QString& locale);
void setVisible(const QString& id, bool visible);
void resetSwitches();
void setSetting(const QString& key, const QVariant& value);
void removeSetting(const QString& key);
void setWindowsPE(bool value);
void setCanUseWebEngine(bool value);
// The host runs without a news fetcher (getNewsFetcher() returns null).
void setNewsFetcherAvailable(bool available);

} // namespace HostControl

Q_DECLARE_METATYPE(HostControl::Event)
