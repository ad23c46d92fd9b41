// The control surface's session, switch, scripting and event-log parts. The server parts are in
// HostControlServer.cpp.
#include "HostControl.h"

#include "CAbstractKolPlugin.h"
#include "CSettingsLoader.h"
#include "CSignInService.h"
#include "CVantrelApp.h"
#include "HostRuntime.h"
#include "SimulatedServer.h"

#include <QAbstractItemModel>
#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTranslator>

namespace HostControl {

namespace {

// Entries of the plugin models carry their key in the first user role.
constexpr int kKeyRole = Qt::UserRole + 1;

QVariantMap describeIndex(const QModelIndex& index)
{
    return {{QStringLiteral("row"), index.row()},
            {QStringLiteral("parentRow"), index.parent().row()},
            {QStringLiteral("key"), index.data(kKeyRole)}};
}

HostRuntime& runtime()
{
    return HostRuntime::instance();
}

} // namespace

void resetForTests()
{
    // Downloads, documents and settings of a test run go to throw-away folders.
    QStandardPaths::setTestModeEnabled(true);
    static QTemporaryDir settingsDir;
    runtime().useSettingsFile(settingsDir.filePath(QStringLiteral("settings.ini")));
    const QStringList keys = runtime().settings().Keys();
    for (const QString& key : keys)
        runtime().settings().Remove(key);

    resetSwitches();
    runtime().openExternally = false;
    runtime().showBalloons = true;
    runtime().openFileAnswers.clear();
    runtime().saveAsAnswers.clear();
    runtime().nextSignInResult.reset();
    clearEvents();

    SimulatedServer::instance().resetForTests();
    setSignedIn(true);
}

QList<Event> events(const QString& kind)
{
    QList<Event> result;
    for (const HostRuntime::Event& event : std::as_const(runtime().events)) {
        if (kind.isEmpty() || event.kind == kind)
            result.append({event.kind, event.details});
    }
    return result;
}

void clearEvents()
{
    runtime().events.clear();
}

QObject* eventSource()
{
    return &runtime();
}

void recordPluginRequests(CAbstractKolPlugin* plugin)
{
    if (!plugin)
        return;
    QObject::connect(plugin, &CAbstractKolPlugin::listItemSelectionRequest, plugin,
                     [](const QModelIndex& index, QItemSelectionModel::SelectionFlags flags) {
                         QVariantMap details = describeIndex(index);
                         details.insert(QStringLiteral("flags"), int(flags));
                         runtime().record(QStringLiteral("select"), details);
                     });
    QObject::connect(
        plugin, &CAbstractKolPlugin::listItemExpandRequest, plugin,
        [](const QModelIndex& index) { runtime().record(QStringLiteral("expand"), describeIndex(index)); });
    QObject::connect(
        plugin, &CAbstractKolPlugin::listItemCollapseRequest, plugin,
        [](const QModelIndex& index) { runtime().record(QStringLiteral("collapse"), describeIndex(index)); });
    QObject::connect(
        plugin, &CAbstractKolPlugin::listItemEditorRequest, plugin,
        [](const QModelIndex& index) { runtime().record(QStringLiteral("editor"), describeIndex(index)); });
    QObject::connect(
        plugin, &CAbstractKolPlugin::pluginToastRequest, plugin,
        [](QObject*, const QString& text, const char* slot, QMessageBox::Icon icon, int timeout) {
            runtime().record(QStringLiteral("toast"), {{QStringLiteral("text"), text},
                                                       {QStringLiteral("slot"), QString::fromLatin1(slot)},
                                                       {QStringLiteral("icon"), int(icon)},
                                                       {QStringLiteral("timeout"), timeout}});
        });
    QObject::connect(plugin, &CAbstractKolPlugin::beginPluginAnimation, plugin, [](QObject*, int mode) {
        runtime().record(QStringLiteral("animationBegin"), {{QStringLiteral("mode"), mode}});
    });
    QObject::connect(plugin, &CAbstractKolPlugin::stopPluginAnimation, plugin,
                     [](QObject*) { runtime().record(QStringLiteral("animationStop")); });
    QObject::connect(plugin, &CAbstractKolPlugin::showEmptyListWidgetRequest, plugin,
                     [](QWidget*) { runtime().record(QStringLiteral("showEmptyList")); });
    QObject::connect(plugin, &CAbstractKolPlugin::hideEmptyListWidgetRequest, plugin,
                     [] { runtime().record(QStringLiteral("hideEmptyList")); });
    QObject::connect(plugin, &CAbstractKolPlugin::pluginSelectionChanged, plugin, [](bool selected) {
        runtime().record(QStringLiteral("selectPage"), {{QStringLiteral("selected"), selected}});
    });
}

void scriptOpenFileDialog(const QStringList& paths)
{
    runtime().openFileAnswers.enqueue(paths);
}

void scriptSaveAsDialog(const QString& path)
{
    runtime().saveAsAnswers.enqueue(path);
}

void setShowBalloons(bool show)
{
    runtime().showBalloons = show;
}

void setOpenExternally(bool open)
{
    runtime().openExternally = open;
}

void setSignedIn(bool signedIn, const QString& firstName, const QString& lastName, const QString& userId)
{
    CSignInService* service = vantrelApp ? vantrelApp->getSignInService() : nullptr;
    if (!service)
        return;
    if (!signedIn) {
        service->signOut();
        return;
    }
    Ordenz::SignIn::UserInfo user;
    user.userId = userId;
    user.firstName = firstName;
    user.lastName = lastName;
    user.email = QStringLiteral("%1.%2@example.com").arg(firstName, lastName).toLower();
    service->setSignedInUser(user);
}

void scriptSignInResult(bool succeed, const QString& reason)
{
    runtime().nextSignInResult = std::make_pair(succeed, reason);
}

void setAllowed(const QString& id, bool allowed)
{
    runtime().allowed.insert(id, allowed);
}

bool installTranslations(const QString& locale)
{
    static QTranslator* qtTexts = nullptr;
    static QTranslator* hostTexts = nullptr;
    for (QTranslator* old : {qtTexts, hostTexts}) {
        QCoreApplication::removeTranslator(old);
        delete old;
    }
    const QLocale language(locale);
    qtTexts = new QTranslator(qApp);
    if (qtTexts->load(language, QStringLiteral("qtbase"), QStringLiteral("_"),
                      QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(qtTexts);
    hostTexts = new QTranslator(qApp);
    const bool found =
        hostTexts->load(language, QStringLiteral("baseLib"), QStringLiteral("_"), QStringLiteral(":/i18n"));
    if (found)
        QCoreApplication::installTranslator(hostTexts);
    return found;
}

void setVisible(const QString& id, bool visible)
{
    runtime().visible.insert(id, visible);
}

void resetSwitches()
{
    runtime().allowed.clear();
    runtime().visible.clear();
    runtime().windowsPE = false;
    runtime().canUseWebEngine = true;
    runtime().newsFetcherAvailable = true;
}

void setSetting(const QString& key, const QVariant& value)
{
    runtime().settings().Write(key, value);
}

void removeSetting(const QString& key)
{
    runtime().settings().Remove(key);
}

void setWindowsPE(bool value)
{
    runtime().windowsPE = value;
}

void setCanUseWebEngine(bool value)
{
    runtime().canUseWebEngine = value;
}

void setNewsFetcherAvailable(bool available)
{
    runtime().newsFetcherAvailable = available;
}

} // namespace HostControl
