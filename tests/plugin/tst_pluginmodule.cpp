// The module as the host sees it: loaded through QPluginLoader, read through its metadata and meta-object.
#include "HostTestMain.h"

#include "CAbstractKolPlugin.h"
#include "IKolPlugin.h"

#include <QDir>
#include <QJsonObject>
#include <QPluginLoader>

class TestPluginModule : public QObject
{
    Q_OBJECT

private:
    static QString modulePath()
    {
        return QDir(QStringLiteral(NEWSREADER_PLUGIN_DIR)).filePath("libnewsReader.so");
    }

private slots:
    void metadataNamesTheHostInterfaceAndClass()
    {
        QPluginLoader loader(modulePath());
        const QJsonObject meta = loader.metaData();
        QVERIFY2(!meta.isEmpty(), qPrintable(loader.errorString()));
        QCOMPARE(meta.value("IID").toString(), QStringLiteral(IKolPlugin_iid));
        QCOMPARE(meta.value("className").toString(), QStringLiteral("CNewsReaderPlugin"));
        const QJsonObject user = meta.value("MetaData").toObject();
        QCOMPARE(user.keys(), QStringList{"disableOnWinPE"});
        QCOMPARE(user.value("disableOnWinPE").toBool(true), false);
    }

    void instanceIsOneObjectBehindBothInterfaces()
    {
        QPluginLoader loader(modulePath());
        QObject* first = loader.instance();
        QVERIFY2(first, qPrintable(loader.errorString()));
        QCOMPARE(loader.instance(), first);

        auto* plugin = qobject_cast<IKolPlugin*>(first);
        auto* base = qobject_cast<CAbstractKolPlugin*>(first);
        QVERIFY(plugin);
        QVERIFY(base);
        QCOMPARE(static_cast<IKolPlugin*>(base), plugin);
        QCOMPARE(plugin->getPluginId(), QStringLiteral("newsReader"));
        QCOMPARE(base->getUiFormName(), QStringLiteral("newsReader.mainScreen.ui"));
    }

    void germanTranslationIsInstalledUnderTheModuleName()
    {
        QPluginLoader loader(modulePath());
        auto* plugin = qobject_cast<CAbstractKolPlugin*>(loader.instance());
        QVERIFY(plugin);
        QCOMPARE(plugin->getCaption(), QStringLiteral("Communications"));
        QVERIFY(plugin->installPluginTranslation(qApp, QStringLiteral("de_DE")));
        QCOMPARE(plugin->getCaption(), QStringLiteral("Kommunikation"));
        QCOMPARE(plugin->getPluginName(), QStringLiteral("Kommunikation"));
        QVERIFY(!plugin->installPluginTranslation(qApp, QStringLiteral("xx_XX")));
    }
};

HOST_TEST_MAIN(TestPluginModule)
#include "tst_pluginmodule.moc"
