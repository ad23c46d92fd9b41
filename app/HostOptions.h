#pragma once
// The reference host's command line: where the plugins are, which scenario the simulated server starts
// with, and the unattended screenshot mode used by tests and documentation.

#include <QSize>
#include <QString>
#include <QStringList>

class HostOptions
{
public:
    static constexpr int kDefaultScreenshotDelayMs = 3000;
    static constexpr int kDefaultWidth = 1280;
    static constexpr int kDefaultHeight = 800;

    enum Outcome
    {
        Run,      // the options are fine: start the host
        Done,     // --help or --version was answered in `message`
        BadInput, // `message` says what is wrong and points to --help
    };

    // Parses `arguments` (argv as a list). Needs no application object and no display.
    Outcome parse(const QStringList& arguments, QString* message);

    // Empty: use the default folders.
    QString pluginFolder;
    QString scenarioFile;
    QString screenshotFile;
    int screenshotDelayMs = kDefaultScreenshotDelayMs;
    QString locale;
    bool signedOut = false;
    QSize windowSize{kDefaultWidth, kDefaultHeight};
};
