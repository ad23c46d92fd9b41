#include "PluginLoader.h"

#include "CAbstractKolPlugin.h"
#include "IKolPlugin.h"

#include <QDir>
#include <QFileInfo>
#include <QLibrary>
#include <QPluginLoader>

namespace {
const QString kInterfaceIdKey = QStringLiteral("IID");
const QString kClassNameKey = QStringLiteral("className");
const QString kUserMetaDataKey = QStringLiteral("MetaData");
const QString kPluginsBesideExecutable = QStringLiteral("../plugins");
} // namespace

QStringList PluginLoader::defaultFolders(const QString& compiledInFolder, const QString& executableFolder)
{
    QStringList folders;
    for (const QString& candidate :
         {compiledInFolder, QDir(executableFolder).absoluteFilePath(kPluginsBesideExecutable)}) {
        const QString folder = QDir::cleanPath(candidate);
        if (!candidate.isEmpty() && QFileInfo(folder).isDir() && !folders.contains(folder))
            folders.append(folder);
    }
    return folders;
}

QList<PluginLoadResult> PluginLoader::loadFolder(const QString& folder) const
{
    QList<PluginLoadResult> results;
    const QDir dir(folder);
    const QFileInfoList files = dir.entryInfoList(QDir::Files | QDir::Readable, QDir::Name);
    for (const QFileInfo& file : files) {
        if (QLibrary::isLibrary(file.fileName()))
            results.append(loadFile(file.absoluteFilePath()));
    }
    return results;
}

PluginLoadResult PluginLoader::loadFile(const QString& filePath) const
{
    PluginLoadResult result;
    result.filePath = filePath;
    const QString shownName = QDir::toNativeSeparators(filePath);

    QPluginLoader loader(filePath);
    const QJsonObject metaData = loader.metaData();
    if (metaData.isEmpty()) {
        result.refusal = QStringLiteral("%1: not a plugin module (%2); module not loaded")
                             .arg(shownName, loader.errorString());
        return result;
    }
    result.interfaceId = metaData.value(kInterfaceIdKey).toString();
    result.className = metaData.value(kClassNameKey).toString();
    result.userMetaData = metaData.value(kUserMetaDataKey).toObject();

    // Checked before instance(): a module built for another interface must not run any of its code here.
    const QString hostInterfaceId = QString::fromLatin1(IKolPlugin_iid);
    if (result.interfaceId != hostInterfaceId) {
        result.refusal =
            QStringLiteral("%1: interface identifier '%2' is not the host's '%3'; module not loaded")
                .arg(shownName, result.interfaceId, hostInterfaceId);
        return result;
    }

    QObject* instance = loader.instance();
    if (!instance) {
        result.refusal = QStringLiteral("%1: %2; module not loaded").arg(shownName, loader.errorString());
        return result;
    }
    result.instance = instance;
    auto* plugin = qobject_cast<CAbstractKolPlugin*>(instance);
    if (!plugin || !qobject_cast<IKolPlugin*>(instance)) {
        result.refusal =
            QStringLiteral(
                "%1: class '%2' does not derive from the host's CAbstractKolPlugin; module not used")
                .arg(shownName, result.className);
        return result;
    }
    result.plugin = plugin;
    result.loaded = true;
    return result;
}
