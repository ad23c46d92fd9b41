#pragma once
// Reads the translation catalogues and forms of the source tree for the tests that check them.

#include <QFile>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QXmlStreamReader>

namespace CatalogueReader {

struct Message
{
    QString context;
    QString source;
    QString translation;
    bool finished = true;
};

inline QList<Message> read(const QString& path)
{
    QList<Message> messages;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return messages;
    QXmlStreamReader xml(&file);
    QString context;
    Message current;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (xml.name() == QLatin1String("name")) {
            context = xml.readElementText();
        } else if (xml.name() == QLatin1String("message")) {
            current = Message{context, {}, {}, true};
        } else if (xml.name() == QLatin1String("source")) {
            current.source = xml.readElementText();
        } else if (xml.name() == QLatin1String("translation")) {
            current.finished = xml.attributes().value(QLatin1String("type")).isEmpty();
            current.translation = xml.readElementText();
            messages << current;
        }
    }
    return messages;
}

// Source texts whose translation differs from them: seen on screen, they are untranslated.
inline QSet<QString> untranslatedLooks(const QString& path)
{
    QSet<QString> texts;
    for (const Message& message : read(path)) {
        if (message.translation != message.source)
            texts.insert(message.source);
    }
    return texts;
}

// The translatable texts a Designer form carries.
inline QStringList formTexts(const QString& path)
{
    QStringList texts;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return texts;
    QXmlStreamReader xml(&file);
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement || xml.name() != QLatin1String("string"))
            continue;
        const bool translatable = xml.attributes().value(QLatin1String("notr")) != QLatin1String("true");
        const QString text = xml.readElementText();
        if (translatable && !text.isEmpty())
            texts << text;
    }
    return texts;
}

} // namespace CatalogueReader
