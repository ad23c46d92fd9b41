// The German catalogue is complete and keeps every argument marker; every form text has a translation.
#include "CatalogueReader.h"
#include "HostTestMain.h"

#include <QRegularExpression>

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
};

HOST_TEST_MAIN(TestTranslationCatalogue)
#include "tst_translationcatalogue.moc"
