#pragma once
// Finds the page plugins of a folder and loads them the way the host application does: the module's
// metadata is read first, and only a module that declares the host's plugin interface is instantiated.

#include "PluginLoadResult.h"

#include <QList>
#include <QString>
#include <QStringList>

class PluginLoader
{
public:
    // The folders searched when the command line names none, best first.
    static QStringList defaultFolders(const QString& compiledInFolder, const QString& executableFolder);

    // Loads every library in `folder`, in file-name order; one result per library file.
    QList<PluginLoadResult> loadFolder(const QString& folder) const;
    PluginLoadResult loadFile(const QString& filePath) const;
};
