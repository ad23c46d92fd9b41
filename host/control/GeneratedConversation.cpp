#include "GeneratedConversation.h"

#include <QDateTime>
#include <QJsonArray>
#include <QRandomGenerator>
#include <QStringList>

namespace {

const QStringList kWords = {
    QStringLiteral("printer"),  QStringLiteral("driver"),     QStringLiteral("update"),
    QStringLiteral("scan"),     QStringLiteral("the"),        QStringLiteral("licence"),
    QStringLiteral("settings"), QStringLiteral("after"),      QStringLiteral("restart"),
    QStringLiteral("network"),  QStringLiteral("folder"),     QStringLiteral("works"),
    QStringLiteral("again"),    QStringLiteral("exception"),  QStringLiteral("version"),
    QStringLiteral("please"),   QStringLiteral("attached"),   QStringLiteral("report"),
    QStringLiteral("because"),  QStringLiteral("a"),          QStringLiteral("of"),
    QStringLiteral("with"),     QStringLiteral("quarantine"), QStringLiteral("log"),
};

class Writer
{
public:
    explicit Writer(quint32 seed)
        : m_random(seed)
    {}

    int below(int bound) { return int(m_random.bounded(bound)); }
    bool chance(int percent) { return below(100) < percent; }

    QString sentence()
    {
        QStringList words;
        const int count = 4 + below(14);
        for (int i = 0; i < count; ++i)
            words << kWords.at(below(int(kWords.size())));
        QString text = words.join(QLatin1Char(' '));
        text[0] = text.at(0).toUpper();
        return text + QLatin1Char('.');
    }

    QString paragraph(int sentences)
    {
        QStringList parts;
        for (int i = 0; i < sentences; ++i)
            parts << sentence();
        return parts.join(QLatin1Char(' '));
    }

    QString markdown()
    {
        QStringList blocks;
        const int count = 1 + below(chance(10) ? 12 : 3);
        for (int i = 0; i < count; ++i) {
            switch (below(7)) {
            case 0: {
                QStringList items;
                for (int n = 1 + below(6); n > 0; --n)
                    items << QStringLiteral("- ") + sentence();
                blocks << items.join(QLatin1Char('\n'));
                break;
            }
            case 1: {
                QStringList rows{QStringLiteral("| Setting | Value |"), QStringLiteral("|---|---|")};
                for (int n = 1 + below(5); n > 0; --n)
                    rows << QStringLiteral("| %1 | %2 |")
                                .arg(kWords.at(below(int(kWords.size()))))
                                .arg(below(1000));
                blocks << rows.join(QLatin1Char('\n'));
                break;
            }
            case 2:
                blocks << QStringLiteral("```\nERROR 0x%1: %2\n```")
                              .arg(below(0xffff), 4, 16, QLatin1Char('0'))
                              .arg(sentence());
                break;
            case 3:
                blocks << QStringLiteral("> ") + sentence();
                break;
            default:
                blocks << QStringLiteral("%1 **%2** and `%3`.")
                              .arg(paragraph(1 + below(4)), kWords.at(below(int(kWords.size()))),
                                   kWords.at(below(int(kWords.size()))));
            }
        }
        return blocks.join(QStringLiteral("\n\n"));
    }

    QString html()
    {
        return QStringLiteral("<p>%1</p><ul><li>%2</li><li>%3</li></ul><p><i>%4</i></p>")
            .arg(paragraph(1 + below(3)), sentence(), sentence(), sentence());
    }

    QJsonObject attachment(int number)
    {
        static const QStringList kinds = {QStringLiteral("png"), QStringLiteral("pdf"), QStringLiteral("txt"),
                                          QStringLiteral("zip")};
        const QString kind = kinds.at(below(int(kinds.size())));
        return {{QStringLiteral("fileName"), QStringLiteral("file-%1.%2").arg(number).arg(kind)},
                {QStringLiteral("generate"), kind == QLatin1String("txt") ? QStringLiteral("text") : kind}};
    }

private:
    QRandomGenerator m_random;
};

} // namespace

QJsonObject GeneratedConversation::make(const QString& id, int messageCount, quint32 seed)
{
    Writer writer(seed);
    // Times go backwards from now; the list is built newest last.
    QList<qint64> minutesAgo(messageCount);
    qint64 minutes = 0;
    for (int i = messageCount - 1; i >= 0; --i) {
        minutesAgo[i] = minutes;
        minutes += 1 + writer.below(20);
    }
    QJsonArray messages;
    int attachments = 0;
    for (int i = 0; i < messageCount; ++i) {
        const bool own = writer.chance(40);
        QJsonObject message{
            {QStringLiteral("id"), QStringLiteral("%1-m%2").arg(id).arg(i + 1)},
            {QStringLiteral("text"), writer.chance(15) ? writer.html() : writer.markdown()},
            {QStringLiteral("sender"),
             own ? QStringLiteral("u-self")
                 : (writer.chance(70) ? QStringLiteral("s-anna") : QStringLiteral("s-marco"))},
            {QStringLiteral("time"),
             minutesAgo.at(i) == 0 ? QStringLiteral("now") : QStringLiteral("-%1m").arg(minutesAgo.at(i))}};
        if (writer.chance(6)) {
            QJsonArray files;
            for (int n = 1 + writer.below(3); n > 0; --n)
                files.append(writer.attachment(++attachments));
            message.insert(QStringLiteral("attachments"), files);
        }
        if (writer.chance(3))
            message.insert(QStringLiteral("editVersion"), 2);
        if (writer.chance(1))
            message.insert(QStringLiteral("deleted"), true);
        messages.append(message);
    }
    return {
        {QStringLiteral("id"), id},
        {QStringLiteral("subject"), QStringLiteral("A long conversation (%1 messages)").arg(messageCount)},
        {QStringLiteral("state"), QStringLiteral("OPEN")},
        {QStringLiteral("agent"), QStringLiteral("s-anna")},
        {QStringLiteral("created"), QStringLiteral("-%1m").arg(minutes + 1)},
        {QStringLiteral("firstMessage"), writer.paragraph(2)},
        {QStringLiteral("messages"), messages}};
}
