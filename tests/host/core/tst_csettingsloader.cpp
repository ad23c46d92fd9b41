// The host settings store: persistence and absent keys.

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
};

HOST_TEST_MAIN(TestCSettingsLoader)
#include "tst_csettingsloader.moc"
