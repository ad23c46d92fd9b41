// File and folder helpers: file-name validity and host folders.

#include "HostFiles.h"
#include "HostRuntime.h"
#include "HostTestMain.h"

#include <QDir>
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

    void everyReasonIsReported_data()
    {
        QTest::addColumn<QString>("fileName");
        QTest::addColumn<FileNameValidationReasons>("expected");
        QTest::newRow("ordinary") << "plain name (1).txt" << FileNameValidationReasons();
        QTest::newRow("percent and equals are fine") << "50%=half.txt" << FileNameValidationReasons();
        QTest::newRow("device name") << "CON" << FileNameValidationReasons(FileNameReserved);
        QTest::newRow("device name, mixed case, extension")
            << "Lpt9.log" << FileNameValidationReasons(FileNameReserved);
        QTest::newRow("dot dot") << ".." << FileNameValidationReasons(FileNameReserved);
        QTest::newRow("COM10") << "com10" << FileNameValidationReasons();
        QTest::newRow("empty") << "" << FileNameValidationReasons(FileNameEmpty);
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
};

HOST_TEST_MAIN(TestHostFiles)
#include "tst_hostfiles.moc"
