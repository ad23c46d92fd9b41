#pragma once
// What the host learned about one file of its plugin folder: the metadata it read before loading the
// module, whether it accepted the module, and the plugin object when it did. Shown in the Plugins list and
// printed at start-up.

#include <QJsonObject>
#include <QPointer>
#include <QString>

class CAbstractKolPlugin;

struct PluginLoadResult
{
    QString filePath;
    QString className;
    QString interfaceId;
    QJsonObject userMetaData; // the module's "MetaData" object
    bool loaded = false;
    // Why the module was refused, or empty when it was loaded.
    QString refusal;
    QPointer<QObject> instance;
    QPointer<CAbstractKolPlugin> plugin;

    // One line for the console: file, class, interface, metadata and state.
    QString summary() const;
};
