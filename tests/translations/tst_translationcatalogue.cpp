// The German catalogue is complete, keeps every argument marker, and the compiled file translates.
#include "HostTestMain.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTranslator>
#include <QXmlStreamReader>

namespace {

struct Message
{
    QString context;
    QString source;
    QString translation;
    bool finished = true;
};

QList<Message> readCatalogue(const QString& path)
{
    QList<Message> messages;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return messages;
    QXmlStreamReader xml(&file);
    QString context;
    Message current;
    while (!xml.atEnd()) {
        xml.readNext();
        if (!xml.isStartElement())
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

QStringList markers(const QString& text)
{
    static const QRegularExpression marker(QStringLiteral("%[0-9]"));
    QStringList found;
    for (auto it = marker.globalMatch(text); it.hasNext();)
        found << it.next().captured();
    found.sort();
    return found;
}

} // namespace

class TestTranslationCatalogue : public QObject
{
    Q_OBJECT

private slots:
    void germanCatalogueIsCompleteAndKeepsArguments()
    {
        const QList<Message> messages =
            readCatalogue(QStringLiteral(NEWSREADER_SOURCE_DIR "/translations/newsReader_de.ts"));
        QVERIFY(messages.size() > 20);
        for (const Message& message : messages) {
            QCOMPARE(message.context, QStringLiteral("QObject"));
            QVERIFY2(message.finished && !message.translation.isEmpty(), qPrintable(message.source));
            // "%s" in a source is not an argument marker; its translation may take the list as "%1".
            if (message.source.contains(QStringLiteral("%s")))
                continue;
            QVERIFY2(markers(message.source) == markers(message.translation), qPrintable(message.source));
        }
    }

    void compiledCatalogueTranslatesUnderTheGenericContext()
    {
        QTranslator german;
        QVERIFY(german.load(
            QStringLiteral("newsReader_de"),
            QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("../translations"))));
        QCOMPARE(german.translate("QObject", "Communications"), QStringLiteral("Kommunikation"));
        QCOMPARE(german.translate("QObject", "Message is deleted"),
                 QStringLiteral("Nachricht wurde gelöscht"));
        QVERIFY(german.translate("CNewsReaderPlugin", "Communications").isEmpty());
    }
};

HOST_TEST_MAIN(TestTranslationCatalogue)
#include "tst_translationcatalogue.moc"
