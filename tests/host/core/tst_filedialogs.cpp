// The host file dialogs as scripted by the stand-in: answers, cancel, what a save records.

#include "CSettingsLoader.h"
#include "FileDialogs.h"
#include "HostRuntime.h"
#include "HostTestMain.h"

class TestFileDialogs : public QObject
{
    Q_OBJECT

private:
    static HostRuntime& runtime() { return HostRuntime::instance(); }

    static QVariantList settingValues()
    {
        QVariantList values;
        CSettingsLoader& settings = vantrelApp->getSettingsInstance();
        const QStringList keys = settings.Keys();
        for (const QString& key : keys) {
            QVariant value;
            settings.Read(key, &value);
            values << value;
        }
        return values;
    }

private slots:
    void init()
    {
        runtime().events.clear();
        runtime().openFileAnswers.clear();
        runtime().saveAsAnswers.clear();
        CSettingsLoader& settings = vantrelApp->getSettingsInstance();
        const QStringList keys = settings.Keys();
        for (const QString& key : keys)
            settings.Remove(key);
    }

    void emptyAnswerIsACancel()
    {
        runtime().openFileAnswers.enqueue({});
        runtime().saveAsAnswers.enqueue(QString());
        QString openPath = QStringLiteral("/start");
        QVERIFY(!stdOpenFileDialog(nullptr, {}, openPath, FileDialogOptions(6)));
        QCOMPARE(openPath, QStringLiteral("/start"));

        QString savePath = QStringLiteral("/start/report.pdf");
        QVERIFY(!stdSaveAsDialog(nullptr, {}, savePath, FileDialogOptions(4)));
        QCOMPARE(savePath, QStringLiteral("/start/report.pdf"));
        QCOMPARE(runtime().events.size(), 2);
        QVERIFY(settingValues().isEmpty());
    }

    void saveRecordsTheProposalAndFilters()
    {
        runtime().saveAsAnswers.enqueue(QStringLiteral("/chosen/report.pdf"));
        QString path = QStringLiteral("/cache/report.pdf");
        const QList<CFilterDesc> filters{
            CFilterDesc(QStringLiteral("Pdf files"), QStringLiteral("*.pdf")),
            CFilterDesc(QStringLiteral("Images"), QStringLiteral("*.png;*.jpg"))};
        QVERIFY(stdSaveAsDialog(nullptr, filters, path, FileDialogOptions(4)));
        QCOMPARE(path, QStringLiteral("/chosen/report.pdf"));

        const HostRuntime::Event event = runtime().events.constFirst();
        QCOMPARE(event.details.value("kind").toString(), QStringLiteral("save"));
        QCOMPARE(event.details.value("path").toString(), QStringLiteral("/cache/report.pdf"));
        QCOMPARE(event.details.value("filters").toStringList(),
                 QStringList({QStringLiteral("Pdf files (*.pdf)"), QStringLiteral("Images (*.png *.jpg)")}));
        QCOMPARE(event.details.value("options").toUInt(), 4u);
    }
};

HOST_TEST_MAIN(TestFileDialogs)
#include "tst_filedialogs.moc"
