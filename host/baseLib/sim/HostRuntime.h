#pragma once
// Process-wide state of the stand-in host that is not part of the real host's API: feature switches, the
// log of what plugins asked of the host, scripted answers of dialogs. baseLib functions consult and record
// here; the control surface (host/control/HostControl.h) exposes it to tests and the reference host.

#include "../baseLibGlobal.h"

#include <QHash>
#include <QObject>
#include <QQueue>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <memory>
#include <optional>

class CSettingsLoader;

class BASELIB_EXPORT HostRuntime : public QObject
{
    Q_OBJECT
public:
    static HostRuntime& instance();

    // Feature switches (ConfigurableObjects); unknown ids are allowed and visible.
    QHash<QString, bool> allowed;
    QHash<QString, bool> visible;
    bool windowsPE = false;
    bool canUseWebEngine = true;
    bool newsFetcherAvailable = true;

    // External effects: when false, LaunchFile and browser links are only recorded.
    bool openExternally = true;
    bool showBalloons = true;

    // Scripted dialog answers; each entry answers one dialog. An empty open list / save path means Cancel.
    QQueue<QStringList> openFileAnswers;
    QQueue<QString> saveAsAnswers;
    // The next sign-in attempt: {succeed, reason}.
    std::optional<std::pair<bool, QString>> nextSignInResult;

    // Records one event (see HostControl::Event for kinds and details).
    void record(const QString& kind, const QVariantMap& details = {});
    struct Event
    {
        QString kind;
        QVariantMap details;
    };
    QList<Event> events;

    // The host settings store (CVantrelApp::getSettingsInstance()). Created on first use at the application's
    // default location.
    CSettingsLoader& settings();
    // Keeps the settings store in `fileName` from now on (tests use a temporary file). The store object stays
    // the same, so references obtained earlier remain valid and read the new file.
    void useSettingsFile(const QString& fileName);

signals:
    void eventRecorded(const QString& kind, const QVariantMap& details);

private:
    HostRuntime();
    ~HostRuntime() override;

    std::unique_ptr<CSettingsLoader> m_settings;
};
