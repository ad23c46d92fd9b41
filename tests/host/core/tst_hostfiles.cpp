// File and folder helpers: extensions, file-name validity, host folders and launching files.

#include "HostFiles.h"
#include "HostRuntime.h"
#include "HostTestMain.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>

class TestHostFiles : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        HostRuntime::instance().events.clear();
        HostRuntime::instance().openExternally = false;
    }

    void extensionIsLowerCaseWithOptionalDot_data()
    {
        QTest::addColumn<QString>("fileName");
        QTest::addColumn<bool>("withDot");
        QTest::addColumn<QString>("expected");
        QTest::newRow("upper case") << "report.PDF" << false << "pdf";
        QTest::newRow("with dot") << "report.PDF" << true << ".pdf";
        QTest::newRow("last of several") << "archive.tar.gz" << false << "gz";
        QTest::newRow("no dot") << "Makefile" << false << "";
        QTest::newRow("trailing dot") << "name." << true << "";
        QTest::newRow("dot in folder only") << "/tmp/dir.d/readme" << false << "";
        QTest::newRow("full path") << "/a/b/photo.JpEg" << true << ".jpeg";
    }
    void extensionIsLowerCaseWithOptionalDot()
    {
        QFETCH(QString, fileName);
        QFETCH(bool, withDot);
        QFETCH(QString, expected);
        QCOMPARE(getFileNameExtension(fileName, withDot), expected);
    }

    void everyForbiddenCharacterIsRejected_data()
    {
        QTest::addColumn<QString>("character");
        for (const QChar c : QStringLiteral("<>:\"/\\|?*"))
            QTest::newRow(qPrintable(QString(c))) << QString(c);
        QTest::newRow("tab") << QStringLiteral("\t");
        QTest::newRow("control") << QString(QChar(0x01));
    }
    void everyForbiddenCharacterIsRejected()
    {
        QFETCH(QString, character);
        const FileNameValidationReasons reasons = isValidFileName(QStringLiteral("a") + character + "b.txt");
        QCOMPARE(reasons, FileNameValidationReasons(FileNameForbiddenCharacter));
    }

    void everyReasonIsReported_data()
    {
        QTest::addColumn<QString>("fileName");
        QTest::addColumn<FileNameValidationReasons>("expected");
        QTest::newRow("ordinary") << "plain name (1).txt" << FileNameValidationReasons();
        QTest::newRow("percent and equals are fine") << "50%=half.txt" << FileNameValidationReasons();
        QTest::newRow("device name") << "CON" << FileNameValidationReasons(FileNameReserved);
        QTest::newRow("device name, mixed case, extension")
            << "Lpt9.log" << FileNameValidationReasons(FileNameReserved);
        QTest::newRow("device name, two extensions")
            << "aux.tar.gz" << FileNameValidationReasons(FileNameReserved);
        QTest::newRow("dot dot") << ".." << FileNameValidationReasons(FileNameReserved);
        QTest::newRow("longer word") << "CONSOLE.txt" << FileNameValidationReasons();
        QTest::newRow("COM10") << "com10" << FileNameValidationReasons();
        QTest::newRow("device name inside") << "my con.txt" << FileNameValidationReasons();
        QTest::newRow("unicode") << QStringLiteral("Zpráva ✓.pdf") << FileNameValidationReasons();
        QTest::newRow("empty") << "" << FileNameValidationReasons(FileNameEmpty);
        QTest::newRow("255 characters") << QString(255, QLatin1Char('a')) << FileNameValidationReasons();
        QTest::newRow("256 characters")
            << QString(256, QLatin1Char('a')) << FileNameValidationReasons(FileNameTooLong);
        QTest::newRow("trailing dot") << "name." << FileNameValidationReasons(FileNameTrailingDotOrSpace);
        QTest::newRow("several at once")
            << "a:b." << (FileNameForbiddenCharacter | FileNameTrailingDotOrSpace);
    }
    void everyReasonIsReported()
    {
        QFETCH(QString, fileName);
        QFETCH(FileNameValidationReasons, expected);
        QCOMPARE(isValidFileName(fileName), expected);
    }

    void absDirNameJoinsAndCreatesFolders_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("root");
        QTest::newRow("documents") << int(FolderDocuments)
                                   << QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
        QTest::newRow("app data") << int(FolderAppData)
                                  << QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
        QTest::newRow("downloads") << int(FolderDownloads)
                                   << QStandardPaths::writableLocation(QStandardPaths::CacheLocation);
    }
    void absDirNameJoinsAndCreatesFolders()
    {
        QFETCH(int, kind);
        QFETCH(QString, root);

        const QString relative = QStringLiteral("tst_hostfiles/%1/thread-7/att-1").arg(kind);
        const QString base = GetAbsDirName(kind, QString(), false);
        auto cleanup = qScopeGuard([&] { QDir(QDir(base).filePath("tst_hostfiles")).removeRecursively(); });

        QVERIFY(base.startsWith(root));
        QVERIFY(!QFileInfo::exists(QDir(base).filePath(relative)));

        const QString notCreated = GetAbsDirName(kind, relative, false);
        QCOMPARE(notCreated, QDir(base).filePath(relative));
        QVERIFY(!QFileInfo::exists(notCreated));

        const QString created = GetAbsDirName(kind, relative, true);
        QCOMPARE(created, notCreated);
        QVERIFY(QFileInfo(created).isDir());
    }

    void downloadsAreKeptApartFromTheCacheRootAndUnknownKindsGiveNoFolder()
    {
        const QString cacheRoot = QStandardPaths::writableLocation(QStandardPaths::CacheLocation);
        QVERIFY(GetAbsDirName(FolderDownloads, QString(), false) != QDir::cleanPath(cacheRoot));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("unknown folder kind"));
        QVERIFY(GetAbsDirName(77, QStringLiteral("x"), true).isEmpty());
    }

    void absFileNamePlacesTheFileInKindOrFolder()
    {
        QCOMPARE(GetAbsFileName(int(FolderDownloads), QStringLiteral("a b.txt")),
                 GetAbsDirName(FolderDownloads, QString(), false) + QStringLiteral("/a b.txt"));
        QTemporaryDir folder;
        QCOMPARE(GetAbsFileName(folder.path(), QStringLiteral("x.pdf")),
                 folder.path() + QStringLiteral("/x.pdf"));
    }

    void launchRecordsAndNeedsAnExistingFile()
    {
        QTemporaryDir folder;
        const QString existing = folder.filePath(QStringLiteral("doc.txt"));
        QVERIFY(QFile(existing).open(QIODevice::WriteOnly));

        QString error;
        QVERIFY(LaunchFile(existing, QString(), QString(), error));
        QVERIFY(error.isEmpty());

        const QString missing = folder.filePath(QStringLiteral("gone.txt"));
        QVERIFY(!LaunchFile(missing, QString(), QString(), error));
        QVERIFY(error.contains(QStringLiteral("gone.txt")));

        const QList<HostRuntime::Event>& events = HostRuntime::instance().events;
        QCOMPARE(events.size(), 2);
        QCOMPARE(events.at(0).kind, QStringLiteral("launchFile"));
        QCOMPARE(events.at(0).details.value("path").toString(), existing);
        QCOMPARE(events.at(1).details.value("path").toString(), missing);
    }
};

HOST_TEST_MAIN(TestHostFiles)
#include "tst_hostfiles.moc"
