// The reference host application: loads the page plugins of a folder with QPluginLoader as the real host
// does and shows them in a host window, with the simulated support server behind the host services.

#include "CAbstractKolPlugin.h"
#include "CVantrelApp.h"
#include "HostControl.h"
#include "HostMainWindow.h"
#include "HostOptions.h"
#include "PluginLoader.h"

#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QScreen>
#include <QTimer>
#include <QWindow>
#include <private/qlocale_p.h>

#include <cstdio>
#include <unistd.h>

namespace {
constexpr int kExitBadInput = 2;
constexpr int kExitScreenshotFailed = 3;
const QByteArray kSandboxVariable = QByteArrayLiteral("QTWEBENGINE_DISABLE_SANDBOX");
const QString kX11Platform = QStringLiteral("xcb");

void printLine(FILE* stream, const QString& text)
{
    std::fputs(qPrintable(text + QLatin1Char('\n')), stream);
    std::fflush(stream);
}

// Under X the screen holds what is really on display (web views included); elsewhere the widgets paint
// themselves into the picture.
QPixmap grabWindow(QWidget* window)
{
    if (QGuiApplication::platformName() == kX11Platform && window->windowHandle()) {
        const QPixmap onScreen = window->screen()->grabWindow(window->winId());
        if (!onScreen.isNull())
            return onScreen;
    }
    return window->grab();
}

bool saveScreenshot(QWidget* window, const QString& path)
{
    const QFileInfo target(path);
    QDir().mkpath(target.absolutePath());
    const QPixmap picture = grabWindow(window);
    return !picture.isNull() && picture.save(target.absoluteFilePath(), "PNG");
}

bool loadScenario(const HostOptions& options)
{
    if (options.scenarioFile.isEmpty()) {
        HostControl::loadDefaultScenario();
        return true;
    }
    QString error;
    if (HostControl::loadScenarioFile(options.scenarioFile, &error))
        return true;
    printLine(stderr, error);
    return false;
}

QString pluginFolder(const HostOptions& options)
{
    if (!options.pluginFolder.isEmpty())
        return QDir(options.pluginFolder).absolutePath();
    const QStringList folders = PluginLoader::defaultFolders(QStringLiteral(NEWSREADER_PLUGIN_DIR),
                                                             QCoreApplication::applicationDirPath());
    return folders.isEmpty() ? QString() : folders.first();
}

QList<PluginLoadResult> loadPlugins(const QString& folder, const QString& locale)
{
    const QList<PluginLoadResult> results =
        folder.isEmpty() ? QList<PluginLoadResult>() : PluginLoader().loadFolder(folder);
    printLine(stdout,
              QStringLiteral("Plugins in %1: %2 module(s)")
                  .arg(folder.isEmpty() ? QStringLiteral("(no folder)") : QDir::toNativeSeparators(folder))
                  .arg(results.size()));
    for (const PluginLoadResult& result : results) {
        printLine(stdout, QStringLiteral("  ") + result.summary());
        if (!result.loaded) {
            printLine(stderr, result.refusal);
            continue;
        }
        result.plugin->installPluginTranslation(qApp, locale);
        HostControl::recordPluginRequests(result.plugin);
    }
    return results;
}

// Dates and numbers that plugins format with the system locale follow --locale too, as they would on a
// desktop set to that language. Only the formats change: the character set stays what it was, since the C
// library may not have the chosen locale installed.
void useLocaleForFormats(const QString& locale)
{
    QByteArray characters = qgetenv("LC_ALL");
    if (characters.isEmpty())
        characters = qgetenv("LC_CTYPE");
    if (characters.isEmpty())
        characters = qgetenv("LANG");
    qunsetenv("LC_ALL");
    qputenv("LC_CTYPE", characters.isEmpty() ? QByteArrayLiteral("C.UTF-8") : characters);
    const QByteArray name = QLocale(locale).name().toLatin1() + QByteArrayLiteral(".UTF-8");
    for (const char* category : {"LC_TIME", "LC_NUMERIC", "LC_MESSAGES"})
        qputenv(category, name);
    // Libraries loaded with the host read the system locale before main() runs; a new system locale
    // object makes Qt read the environment again.
    static QSystemLocale rereadEnvironment;
}

// Plugin objects must go while the application object and its services still exist.
void releasePlugins(const QList<PluginLoadResult>& results)
{
    for (const PluginLoadResult& result : results)
        delete result.instance.data();
}
} // namespace

int main(int argc, char** argv)
{
    // The command line is read before anything needs a display: --help, --version and mistakes work anywhere.
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    HostOptions options;
    QString message;
    switch (options.parse(arguments, &message)) {
    case HostOptions::Done:
        printLine(stdout, message);
        return 0;
    case HostOptions::BadInput:
        printLine(stderr, message);
        return kExitBadInput;
    case HostOptions::Run:
        break;
    }

    // The web engine's sandbox cannot work for root (containers run the host so); everywhere else it stays
    // on.
    if (geteuid() == 0 && !qEnvironmentVariableIsSet(kSandboxVariable.constData())) {
        qputenv(kSandboxVariable.constData(), QByteArrayLiteral("1"));
        printLine(stderr,
                  QStringLiteral("Running as root: the web engine's sandbox is turned off for news pages."));
    }
    const bool knownLocale = options.locale.isEmpty() || QLocale(options.locale).language() != QLocale::C;
    if (!options.locale.isEmpty() && knownLocale)
        useLocaleForFormats(options.locale);
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    CVantrelApp app(argc, argv);

    if (!knownLocale)
        printLine(
            stderr,
            QStringLiteral("Unknown locale '%1': texts and dates stay in English.").arg(options.locale));
    if (!loadScenario(options))
        return kExitBadInput;
    HostControl::setSignedIn(!options.signedOut);
    // This host runs its own support conversations (not on Zendesk), so pages offer the write-us link.
    HostControl::setAllowed(QStringLiteral("useZendeskTickets"), false);

    const QString locale = options.locale.isEmpty() ? QLocale().name() : options.locale;
    if (!options.locale.isEmpty())
        QLocale::setDefault(QLocale(options.locale));
    HostControl::installTranslations(locale);
    const QString folder = pluginFolder(options);
    const QList<PluginLoadResult> plugins = loadPlugins(folder, locale);

    int exitCode = 0;
    {
        HostMainWindow window(folder, plugins);
        app.setMainWidget(&window);
        window.resize(options.windowSize);
        window.show();
        if (!options.screenshotFile.isEmpty()) {
            QTimer::singleShot(options.screenshotDelayMs, &window, [&window, &options] {
                const bool saved = saveScreenshot(&window, options.screenshotFile);
                if (saved)
                    printLine(stdout, QStringLiteral("Screenshot written to %1").arg(options.screenshotFile));
                else
                    printLine(
                        stderr,
                        QStringLiteral("Could not write the screenshot %1").arg(options.screenshotFile));
                QCoreApplication::exit(saved ? 0 : kExitScreenshotFailed);
            });
        }
        exitCode = app.exec();
        app.setMainWidget(nullptr);
    }
    releasePlugins(plugins);
    return exitCode;
}
