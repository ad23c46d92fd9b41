// The German catalogue is complete, keeps every argument marker, and the compiled file translates.
#include "CatalogueReader.h"
#include "HostTestMain.h"

#include <QDir>
#include <QRegularExpression>
#include <QTranslator>

namespace {

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
        const QList<CatalogueReader::Message> messages =
            CatalogueReader::read(QStringLiteral(NEWSREADER_SOURCE_DIR "/translations/newsReader_de.ts"));
        QVERIFY(messages.size() > 20);
        for (const CatalogueReader::Message& message : messages) {
            QCOMPARE(message.context, QStringLiteral("QObject"));
            QVERIFY2(message.finished && !message.translation.isEmpty(), qPrintable(message.source));
            // "%s" in a source is not an argument marker; its translation may take the list as "%1".
            if (message.source.contains(QStringLiteral("%s")))
                continue;
            QVERIFY2(markers(message.source) == markers(message.translation), qPrintable(message.source));
        }
    }

    void everyFormTextHasAGermanTranslation()
    {
        const QSet<QString> translated = CatalogueReader::untranslatedLooks(
            QStringLiteral(NEWSREADER_SOURCE_DIR "/translations/newsReader_de.ts"));
        for (const char* form : {"newsReader.mainScreen.ui", "communications.createIncident.ui"}) {
            const QStringList texts = CatalogueReader::formTexts(
                QStringLiteral(NEWSREADER_SOURCE_DIR "/host/baseLib/forms/") + QLatin1String(form));
            QVERIFY(!texts.isEmpty());
            for (const QString& text : texts)
                QVERIFY2(translated.contains(text), qPrintable(QStringLiteral("%1: %2").arg(form, text)));
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
