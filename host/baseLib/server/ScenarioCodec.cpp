#include "ScenarioCodec.h"

#include "SampleFileMaker.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonParseError>
#include <QMimeDatabase>
#include <QRegularExpression>

#include <functional>

namespace {

constexpr qint64 kSecondsPerMinute = 60;
constexpr qint64 kSecondsPerHour = 3600;
constexpr qint64 kSecondsPerDay = 86400;

// Walks one scenario document, remembering the first fault. Every accessor returns a default when the member
// is missing and records an error (and returns the default) when it has the wrong type.
class Reader
{
public:
    Reader(const QString& source, ServerData& data)
        : m_source(source)
        , m_data(data)
        , m_now(QDateTime::currentDateTime())
    {}

    bool failed() const { return !m_error.isEmpty(); }
    QString error() const { return m_error; }

    void fail(const QString& path, const QString& what)
    {
        if (m_error.isEmpty())
            m_error =
                QStringLiteral("%1: %2: %3").arg(m_source, path.isEmpty() ? QStringLiteral("/") : path, what);
    }

    QString text(const QJsonObject& object, const QString& path, const QString& key,
                 const QString& fallback = {})
    {
        const QJsonValue value = object.value(key);
        if (value.isUndefined() || value.isNull())
            return fallback;
        if (!value.isString()) {
            fail(path + QLatin1Char('/') + key, QStringLiteral("expected a string"));
            return fallback;
        }
        return value.toString();
    }

    bool flag(const QJsonObject& object, const QString& path, const QString& key, bool fallback = false)
    {
        const QJsonValue value = object.value(key);
        if (value.isUndefined() || value.isNull())
            return fallback;
        if (!value.isBool()) {
            fail(path + QLatin1Char('/') + key, QStringLiteral("expected true or false"));
            return fallback;
        }
        return value.toBool();
    }

    qint64 number(const QJsonObject& object, const QString& path, const QString& key, qint64 fallback)
    {
        const QJsonValue value = object.value(key);
        if (value.isUndefined() || value.isNull())
            return fallback;
        if (!value.isDouble()) {
            fail(path + QLatin1Char('/') + key, QStringLiteral("expected a number"));
            return fallback;
        }
        return value.toInteger(qint64(value.toDouble()));
    }

    QDateTime time(const QJsonObject& object, const QString& path, const QString& key,
                   const QDateTime& fallback)
    {
        const QString raw = text(object, path, key);
        if (raw.isEmpty())
            return fallback;
        const QDateTime parsed = ScenarioCodec::parseTime(raw, m_now);
        if (!parsed.isValid())
            fail(path + QLatin1Char('/') + key,
                 QStringLiteral("expected a time (ISO 8601, \"now\" or an offset such as \"-2d\")"));
        return parsed;
    }

    QJsonArray array(const QJsonObject& object, const QString& path, const QString& key)
    {
        const QJsonValue value = object.value(key);
        if (value.isUndefined() || value.isNull())
            return {};
        if (!value.isArray()) {
            fail(path + QLatin1Char('/') + key, QStringLiteral("expected an array"));
            return {};
        }
        return value.toArray();
    }

    QJsonObject object(const QJsonValue& value, const QString& path)
    {
        if (!value.isObject()) {
            fail(path, QStringLiteral("expected an object"));
            return {};
        }
        return value.toObject();
    }

    QJsonObject member(const QJsonObject& parent, const QString& path, const QString& key)
    {
        const QJsonValue value = parent.value(key);
        if (value.isUndefined() || value.isNull())
            return {};
        return object(value, path + QLatin1Char('/') + key);
    }

    QString uniqueId(const QString& wanted, const QString& prefix, const QString& path,
                     const std::function<bool(const QString&)>& taken)
    {
        if (!wanted.isEmpty()) {
            if (taken(wanted))
                fail(path + QStringLiteral("/id"), QStringLiteral("duplicate id \"%1\"").arg(wanted));
            return wanted;
        }
        for (int n = 1;; ++n) {
            const QString candidate = QStringLiteral("%1-%2").arg(prefix).arg(n);
            if (!taken(candidate))
                return candidate;
        }
    }

    void readUser(const QJsonObject& json, const QString& path)
    {
        ServerData::User& user = m_data.user;
        user.id = text(json, path, QStringLiteral("id"), user.id);
        user.firstName = text(json, path, QStringLiteral("firstName"), user.firstName);
        user.lastName = text(json, path, QStringLiteral("lastName"), user.lastName);
        user.email = text(json, path, QStringLiteral("email"), user.email);
    }

    void readLimits(const QJsonObject& json, const QString& path)
    {
        ServerData::Limits& limits = m_data.limits;
        limits.messageLength = int(number(json, path, QStringLiteral("messageLength"), limits.messageLength));
        limits.attachmentBytes =
            number(json, path, QStringLiteral("attachmentBytes"), limits.attachmentBytes);
        limits.threadAssignDelayMs =
            int(number(json, path, QStringLiteral("threadAssignDelayMs"), limits.threadAssignDelayMs));
    }

    void readStates(const QJsonArray& json, const QString& path)
    {
        if (json.isEmpty())
            return;
        m_data.states.clear();
        for (int i = 0; i < json.size() && !failed(); ++i) {
            const QString itemPath = path + QLatin1Char('/') + QString::number(i);
            const QJsonObject item = object(json.at(i), itemPath);
            ServerData::State state;
            state.key = text(item, itemPath, QStringLiteral("key"));
            if (state.key.isEmpty())
                fail(itemPath + QStringLiteral("/key"), QStringLiteral("a state needs a key"));
            state.displayName = text(item, itemPath, QStringLiteral("displayName"), state.key);
            state.composerState = int(number(item, itemPath, QStringLiteral("composerState"), 0));
            m_data.states.append(state);
        }
    }

    void readParticipant(const QJsonObject& json, const QString& path)
    {
        ServerData::Participant participant;
        participant.id = uniqueId(text(json, path, QStringLiteral("id")), QStringLiteral("participant"), path,
                                  [this](const QString& id) { return m_data.participant(id) != nullptr; });
        participant.firstName = text(json, path, QStringLiteral("firstName"));
        participant.lastName = text(json, path, QStringLiteral("lastName"));
        participant.displayName = text(json, path, QStringLiteral("displayName"));
        const QString color = text(json, path, QStringLiteral("nameColor"));
        if (!color.isEmpty()) {
            participant.nameColor = QColor::fromString(color);
            if (!participant.nameColor.isValid())
                fail(path + QStringLiteral("/nameColor"),
                     QStringLiteral("expected a colour such as \"#3366cc\""));
        }
        m_data.participants.append(participant);
    }

    void readNewsEntry(const QJsonObject& json, const QString& path)
    {
        ServerData::NewsEntry entry;
        entry.id = uniqueId(text(json, path, QStringLiteral("id")), QStringLiteral("news"), path,
                            [this](const QString& id) { return m_data.newsEntry(id) != nullptr; });
        const QString kind = text(json, path, QStringLiteral("kind"), QStringLiteral("important"));
        if (kind == QLatin1String("important"))
            entry.kind = ServerData::NewsEntry::Important;
        else if (kind == QLatin1String("offer"))
            entry.kind = ServerData::NewsEntry::Offer;
        else
            fail(path + QStringLiteral("/kind"), QStringLiteral("expected \"important\" or \"offer\""));
        entry.title = text(json, path, QStringLiteral("title"));
        entry.subtitle = text(json, path, QStringLiteral("subtitle"));
        entry.dateText = text(json, path, QStringLiteral("dateText"));
        entry.html = text(json, path, QStringLiteral("html"));
        entry.published = time(json, path, QStringLiteral("published"), m_now);
        entry.expires = time(json, path, QStringLiteral("expires"), QDateTime());
        entry.read = flag(json, path, QStringLiteral("read"));
        entry.hidden = flag(json, path, QStringLiteral("hidden"));
        entry.pinned = flag(json, path, QStringLiteral("pinned"));
        m_data.news.append(entry);
    }

    QString readAttachment(const QJsonObject& json, const QString& path)
    {
        ServerData::Attachment attachment;
        attachment.id = uniqueId(text(json, path, QStringLiteral("id")), QStringLiteral("att"), path,
                                 [this](const QString& id) { return m_data.attachments.contains(id); });
        attachment.fileName = text(json, path, QStringLiteral("fileName"), attachment.id);
        const QString data = text(json, path, QStringLiteral("data"));
        const QString plain = text(json, path, QStringLiteral("text"));
        QString kind = text(json, path, QStringLiteral("generate"));
        const QString caption = text(json, path, QStringLiteral("caption"), attachment.fileName);
        if (!data.isEmpty()) {
            attachment.data = QByteArray::fromBase64(data.toLatin1());
        } else if (!plain.isEmpty()) {
            attachment.data = plain.toUtf8();
        } else {
            if (kind.isEmpty())
                kind = attachment.fileName.section(QLatin1Char('.'), -1).toLower();
            if (!SampleFileMaker::isKnownKind(kind))
                fail(path + QStringLiteral("/generate"),
                     QStringLiteral("give \"data\", \"text\" or one of png, jpg, pdf, text, zip"));
            else
                attachment.data = SampleFileMaker::make(kind, caption);
        }
        attachment.mimeType = text(json, path, QStringLiteral("mimeType"));
        if (attachment.mimeType.isEmpty()) {
            attachment.mimeType =
                QMimeDatabase().mimeTypeForFileNameAndData(attachment.fileName, attachment.data).name();
        }
        m_data.attachments.insert(attachment.id, attachment);
        return attachment.id;
    }

    QStringList readAttachments(const QJsonObject& json, const QString& path, const QString& key)
    {
        QStringList ids;
        const QJsonArray list = array(json, path, key);
        for (int i = 0; i < list.size() && !failed(); ++i) {
            const QString itemPath = path + QLatin1Char('/') + key + QLatin1Char('/') + QString::number(i);
            ids.append(readAttachment(object(list.at(i), itemPath), itemPath));
        }
        return ids;
    }

    void readMessage(const QJsonObject& json, const QString& path,
                     const ServerData::Conversation& conversation, bool isDraft, const QDateTime& defaultTime)
    {
        ServerData::Message message;
        message.id = uniqueId(text(json, path, QStringLiteral("id")),
                              isDraft ? QStringLiteral("draft") : QStringLiteral("msg"), path,
                              [this](const QString& id) { return m_data.message(id) != nullptr; });
        message.threadId = conversation.threadId;
        message.isDraft = isDraft;
        message.text = text(json, path, QStringLiteral("text"));
        message.senderId =
            text(json, path, QStringLiteral("sender"),
                 isDraft || conversation.agentId.isEmpty() ? m_data.user.id : conversation.agentId);
        message.time = time(json, path, QStringLiteral("time"), defaultTime);
        message.createdAt = message.time;
        message.updatedAt = message.time;
        message.deleted = flag(json, path, QStringLiteral("deleted"));
        message.editVersion = int(number(json, path, QStringLiteral("editVersion"), 1));
        message.versionKey = text(json, path, QStringLiteral("versionKey"), message.id);
        message.attachmentIds = readAttachments(json, path, QStringLiteral("attachments"));
        m_data.messages.append(message);
    }

    void readConversation(const QJsonObject& json, const QString& path)
    {
        ServerData::Conversation conversation;
        conversation.id = uniqueId(text(json, path, QStringLiteral("id")), QStringLiteral("conv"), path,
                                   [this](const QString& id) { return m_data.conversation(id) != nullptr; });
        conversation.subject = text(json, path, QStringLiteral("subject"));
        conversation.stateKey = text(json, path, QStringLiteral("state"), QStringLiteral("OPEN"));
        if (!failed() && !m_data.state(conversation.stateKey))
            fail(path + QStringLiteral("/state"),
                 QStringLiteral("unknown state \"%1\"").arg(conversation.stateKey));
        conversation.firstMessage = text(json, path, QStringLiteral("firstMessage"));
        conversation.agentId = text(json, path, QStringLiteral("agent"));
        conversation.created = time(json, path, QStringLiteral("created"), m_now);
        conversation.read = flag(json, path, QStringLiteral("read"), true);
        conversation.hidden = flag(json, path, QStringLiteral("hidden"));
        if (flag(json, path, QStringLiteral("hasThread"), true))
            conversation.threadId = conversation.id;
        conversation.firstMessageAttachmentIds =
            readAttachments(json, path, QStringLiteral("firstMessageAttachments"));

        const QJsonArray messages = array(json, path, QStringLiteral("messages"));
        const QJsonObject draft = member(json, path, QStringLiteral("draft"));
        if (conversation.threadId.isEmpty() && (!messages.isEmpty() || !draft.isEmpty()))
            fail(path + QStringLiteral("/hasThread"),
                 QStringLiteral("a conversation without a thread has no messages"));
        for (int i = 0; i < messages.size() && !failed(); ++i) {
            const QString itemPath = path + QStringLiteral("/messages/") + QString::number(i);
            // Messages without a time follow one another a minute apart after the conversation opened.
            readMessage(object(messages.at(i), itemPath), itemPath, conversation, false,
                        conversation.created.addSecs(kSecondsPerMinute * (i + 1)));
        }
        if (!draft.isEmpty() && !failed())
            readMessage(draft, path + QStringLiteral("/draft"), conversation, true, m_now);
        m_data.conversations.append(conversation);
    }

    template<typename Fn>
    void readSection(const QJsonObject& root, const QString& key, Fn readOne)
    {
        const QJsonArray list = array(root, QString(), key);
        for (int i = 0; i < list.size() && !failed(); ++i) {
            const QString path = QLatin1Char('/') + key + QLatin1Char('/') + QString::number(i);
            readOne(object(list.at(i), path), path);
        }
    }

private:
    QString m_source;
    ServerData& m_data;
    QDateTime m_now;
    QString m_error;
};

QString lineAndColumn(const QByteArray& json, int offset)
{
    const QByteArray before = json.left(offset);
    const int line = int(before.count('\n')) + 1;
    const int column = int(offset - (before.lastIndexOf('\n') + 1)) + 1;
    return QStringLiteral("%1:%2").arg(line).arg(column);
}

bool setError(QString* error, const QString& text)
{
    if (error)
        *error = text;
    return false;
}

QString timeText(const QDateTime& time)
{
    return time.isValid() ? time.toString(Qt::ISODateWithMs) : QString();
}

QJsonArray attachmentsJson(const ServerData& data, const QStringList& ids)
{
    QJsonArray result;
    for (const QString& id : ids) {
        const ServerData::Attachment attachment = data.attachments.value(id);
        result.append(QJsonObject{{QStringLiteral("id"), id},
                                  {QStringLiteral("fileName"), attachment.fileName},
                                  {QStringLiteral("mimeType"), attachment.mimeType},
                                  {QStringLiteral("data"), QString::fromLatin1(attachment.data.toBase64())}});
    }
    return result;
}

} // namespace

QDateTime ScenarioCodec::parseTime(const QString& text, const QDateTime& now)
{
    const QString trimmed = text.trimmed();
    if (trimmed == QLatin1String("now"))
        return now;
    static const QRegularExpression offset(QStringLiteral("^([+-]\\d+)([smhd])$"));
    const QRegularExpressionMatch match = offset.match(trimmed);
    if (match.hasMatch()) {
        const qint64 amount = match.captured(1).toLongLong();
        const QChar unit = match.captured(2).at(0);
        const qint64 scale = unit == QLatin1Char('s')   ? 1
                             : unit == QLatin1Char('m') ? kSecondsPerMinute
                             : unit == QLatin1Char('h') ? kSecondsPerHour
                                                        : kSecondsPerDay;
        return now.addSecs(amount * scale);
    }
    return QDateTime::fromString(trimmed, Qt::ISODateWithMs);
}

bool ScenarioCodec::read(const QByteArray& json, const QString& sourceName, ServerData& data, QString* error)
{
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(json, &parseError);
    if (parseError.error != QJsonParseError::NoError) {
        return setError(
            error, QStringLiteral("%1:%2: %3")
                       .arg(sourceName, lineAndColumn(json, parseError.offset), parseError.errorString()));
    }
    if (!document.isObject())
        return setError(error, QStringLiteral("%1: /: expected an object").arg(sourceName));

    ServerData result;
    result.states = ServerData::defaultStates();
    Reader reader(sourceName, result);
    const QJsonObject root = document.object();
    reader.readUser(reader.member(root, QString(), QStringLiteral("user")), QStringLiteral("/user"));
    reader.readLimits(reader.member(root, QString(), QStringLiteral("limits")), QStringLiteral("/limits"));
    reader.readStates(reader.array(root, QString(), QStringLiteral("states")), QStringLiteral("/states"));
    reader.readSection(
        root, QStringLiteral("participants"),
        [&reader](const QJsonObject& item, const QString& path) { reader.readParticipant(item, path); });
    reader.readSection(root, QStringLiteral("news"), [&reader](const QJsonObject& item, const QString& path) {
        reader.readNewsEntry(item, path);
    });
    reader.readSection(
        root, QStringLiteral("conversations"),
        [&reader](const QJsonObject& item, const QString& path) { reader.readConversation(item, path); });
    if (reader.failed())
        return setError(error, reader.error());
    data = result;
    return true;
}

bool ScenarioCodec::readNewsEntry(const QJsonObject& json, ServerData& data, QString* error)
{
    ServerData copy = data;
    Reader checked(QStringLiteral("news entry"), copy);
    checked.readNewsEntry(json, QString());
    if (checked.failed())
        return setError(error, checked.error());
    data = copy;
    return true;
}

bool ScenarioCodec::readParticipant(const QJsonObject& json, ServerData& data, QString* error)
{
    ServerData copy = data;
    Reader checked(QStringLiteral("participant"), copy);
    checked.readParticipant(json, QString());
    if (checked.failed())
        return setError(error, checked.error());
    data = copy;
    return true;
}

bool ScenarioCodec::readConversation(const QJsonObject& json, ServerData& data, QString* error)
{
    ServerData copy = data;
    Reader checked(QStringLiteral("conversation"), copy);
    checked.readConversation(json, QString());
    if (checked.failed())
        return setError(error, checked.error());
    data = copy;
    return true;
}

bool ScenarioCodec::readAttachment(const QJsonObject& json, ServerData& data, QString* attachmentId,
                                   QString* error)
{
    ServerData copy = data;
    Reader checked(QStringLiteral("attachment"), copy);
    const QString id = checked.readAttachment(json, QString());
    if (checked.failed())
        return setError(error, checked.error());
    data = copy;
    if (attachmentId)
        *attachmentId = id;
    return true;
}

QJsonObject ScenarioCodec::writeMessage(const ServerData& data, const ServerData::Message& message)
{
    return QJsonObject{{QStringLiteral("id"), message.id},
                       {QStringLiteral("text"), message.text},
                       {QStringLiteral("sender"), message.senderId},
                       {QStringLiteral("time"), timeText(message.time)},
                       {QStringLiteral("deleted"), message.deleted},
                       {QStringLiteral("editVersion"), message.editVersion},
                       {QStringLiteral("versionKey"), message.versionKey},
                       {QStringLiteral("attachments"), attachmentsJson(data, message.attachmentIds)}};
}

QJsonObject ScenarioCodec::write(const ServerData& data)
{
    QJsonArray participants;
    for (const ServerData::Participant& participant : data.participants) {
        participants.append(
            QJsonObject{{QStringLiteral("id"), participant.id},
                        {QStringLiteral("firstName"), participant.firstName},
                        {QStringLiteral("lastName"), participant.lastName},
                        {QStringLiteral("displayName"), participant.displayName},
                        {QStringLiteral("nameColor"),
                         participant.nameColor.isValid() ? participant.nameColor.name() : QString()}});
    }
    QJsonArray news;
    for (const ServerData::NewsEntry& entry : data.news) {
        news.append(QJsonObject{{QStringLiteral("id"), entry.id},
                                {QStringLiteral("kind"), entry.kind == ServerData::NewsEntry::Offer
                                                             ? QStringLiteral("offer")
                                                             : QStringLiteral("important")},
                                {QStringLiteral("title"), entry.title},
                                {QStringLiteral("subtitle"), entry.subtitle},
                                {QStringLiteral("dateText"), entry.dateText},
                                {QStringLiteral("html"), entry.html},
                                {QStringLiteral("published"), timeText(entry.published)},
                                {QStringLiteral("expires"), timeText(entry.expires)},
                                {QStringLiteral("read"), entry.read},
                                {QStringLiteral("hidden"), entry.hidden},
                                {QStringLiteral("pinned"), entry.pinned}});
    }
    QJsonArray conversations;
    for (const ServerData::Conversation& conversation : data.conversations) {
        QJsonArray messages;
        QJsonObject draft;
        for (const ServerData::Message& message : data.messages) {
            if (message.threadId.isEmpty() || message.threadId != conversation.threadId || message.superseded)
                continue;
            if (message.isDraft)
                draft = writeMessage(data, message);
            else
                messages.append(writeMessage(data, message));
        }
        QJsonObject item{{QStringLiteral("id"), conversation.id},
                         {QStringLiteral("subject"), conversation.subject},
                         {QStringLiteral("state"), conversation.stateKey},
                         {QStringLiteral("firstMessage"), conversation.firstMessage},
                         {QStringLiteral("firstMessageAttachments"),
                          attachmentsJson(data, conversation.firstMessageAttachmentIds)},
                         {QStringLiteral("agent"), conversation.agentId},
                         {QStringLiteral("created"), timeText(conversation.created)},
                         {QStringLiteral("hasThread"), !conversation.threadId.isEmpty()},
                         {QStringLiteral("read"), conversation.read},
                         {QStringLiteral("hidden"), conversation.hidden},
                         {QStringLiteral("messages"), messages}};
        if (!draft.isEmpty())
            item.insert(QStringLiteral("draft"), draft);
        conversations.append(item);
    }
    QJsonArray states;
    for (const ServerData::State& state : data.states) {
        states.append(QJsonObject{{QStringLiteral("key"), state.key},
                                  {QStringLiteral("displayName"), state.displayName},
                                  {QStringLiteral("composerState"), state.composerState}});
    }
    return QJsonObject{
        {QStringLiteral("user"), QJsonObject{{QStringLiteral("id"), data.user.id},
                                             {QStringLiteral("firstName"), data.user.firstName},
                                             {QStringLiteral("lastName"), data.user.lastName},
                                             {QStringLiteral("email"), data.user.email}}},
        {QStringLiteral("participants"), participants},
        {QStringLiteral("news"), news},
        {QStringLiteral("conversations"), conversations},
        {QStringLiteral("states"), states},
        {QStringLiteral("limits"),
         QJsonObject{{QStringLiteral("messageLength"), data.limits.messageLength},
                     {QStringLiteral("attachmentBytes"), data.limits.attachmentBytes},
                     {QStringLiteral("threadAssignDelayMs"), data.limits.threadAssignDelayMs}}}};
}
