// The host settings store: persistence, absent keys, and the store behind the application object.

#include "CSettingsLoader.h"
#include "HostRuntime.h"
#include "HostTestMain.h"

#include <QTemporaryDir>

class TestCSettingsLoader : public QObject
{
    Q_OBJECT

private slots:
    void valuesPersistAcrossInstances()
    {
        QTemporaryDir folder;
        const QString file = folder.filePath(QStringLiteral("settings.ini"));
        {
            CSettingsLoader settings(file);
            settings.Write(QStringLiteral("UIShowNews"), false);
            settings.Write(QStringLiteral("Window/width"), 640);
            settings.Write(QStringLiteral("Name"), QStringLiteral("Zpráva, s čárkou"));
        }
        CSettingsLoader reopened(file);
        QVariant value;
        QVERIFY(reopened.Read(QStringLiteral("UIShowNews"), &value));
        QCOMPARE(value.toBool(), false);
        QVERIFY(reopened.Read(QStringLiteral("Window/width"), &value));
        QCOMPARE(value.toInt(), 640);
        QVERIFY(reopened.Read(QStringLiteral("Name"), &value));
        QCOMPARE(value.toString(), QStringLiteral("Zpráva, s čárkou"));
    }

    void absentKeysLeaveTheValueAlone()
    {
        QTemporaryDir folder;
        CSettingsLoader settings(folder.filePath(QStringLiteral("s.ini")));
        QVariant value(true);
        QVERIFY(!settings.Read(QStringLiteral("UIShowNews"), &value));
        QCOMPARE(value, QVariant(true));
        settings.Write(QStringLiteral("a"), 1);
        settings.Write(QStringLiteral("g/b"), 2);
        QStringList keys = settings.Keys();
        keys.sort();
        QCOMPARE(keys, QStringList({QStringLiteral("a"), QStringLiteral("g/b")}));
        settings.Remove(QStringLiteral("a"));
        QCOMPARE(settings.Keys(), QStringList{QStringLiteral("g/b")});
        QVERIFY(!settings.Read(QStringLiteral("a"), &value));
        QCOMPARE(value, QVariant(true));
    }

    void applicationStoreFollowsTheChosenFile()
    {
        CSettingsLoader& store = vantrelApp->getSettingsInstance();
        QCOMPARE(&store, &HostRuntime::instance().settings());

        QTemporaryDir folder;
        const QString file = folder.filePath(QStringLiteral("prepared.ini"));
        {
            CSettingsLoader prepared(file);
            prepared.Write(QStringLiteral("UIShowNews"), false);
        }
        const QString previous = store.fileName();
        auto restore = qScopeGuard([&] { HostRuntime::instance().useSettingsFile(previous); });

        HostRuntime::instance().useSettingsFile(file);
        // The same store object now reads the prepared file, so references held elsewhere stay valid.
        QCOMPARE(&vantrelApp->getSettingsInstance(), &store);
        QVariant value;
        QVERIFY(store.Read(QStringLiteral("UIShowNews"), &value));
        QCOMPARE(value.toBool(), false);
    }

    void pendingWritesReachTheFileWhenTheStoreMoves()
    {
        QTemporaryDir folder;
        const QString first = folder.filePath(QStringLiteral("first.ini"));
        CSettingsLoader settings(first);
        settings.Write(QStringLiteral("k"), QStringLiteral("v"));
        settings.reopen(folder.filePath(QStringLiteral("second.ini")));
        QVERIFY(!settings.Read(QStringLiteral("k"), nullptr));

        CSettingsLoader check(first);
        QVariant value;
        QVERIFY(check.Read(QStringLiteral("k"), &value));
        QCOMPARE(value.toString(), QStringLiteral("v"));
    }
};

HOST_TEST_MAIN(TestCSettingsLoader)
#include "tst_csettingsloader.moc"
