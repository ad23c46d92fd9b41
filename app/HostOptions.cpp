#include "HostOptions.h"

#include <QCommandLineParser>
#include <QRegularExpression>

HostOptions::Outcome HostOptions::parse(const QStringList& arguments, QString* message)
{
    QString* const error = message;
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Reference host: loads the page plugins of a folder into a host window backed by a "
                       "simulated support server."));
    const QCommandLineOption helpOption({QStringLiteral("h"), QStringLiteral("help")},
                                        QStringLiteral("Show this help and exit."));
    const QCommandLineOption versionOption(QStringLiteral("version"),
                                           QStringLiteral("Show the version and exit."));
    parser.addOption(helpOption);
    parser.addOption(versionOption);
    const QCommandLineOption pluginsOption(QStringLiteral("plugins"),
                                           QStringLiteral("Folder holding the plugin modules."),
                                           QStringLiteral("dir"));
    const QCommandLineOption scenarioOption(QStringLiteral("scenario"),
                                            QStringLiteral("Scenario of the simulated server (JSON)."),
                                            QStringLiteral("file.json"));
    const QCommandLineOption screenshotOption(
        QStringLiteral("screenshot"), QStringLiteral("Write a picture of the window to this file and exit."),
        QStringLiteral("file.png"));
    const QCommandLineOption delayOption(QStringLiteral("delay"),
                                         QStringLiteral("Milliseconds to wait before the screenshot."),
                                         QStringLiteral("ms"), QString::number(kDefaultScreenshotDelayMs));
    const QCommandLineOption localeOption(
        QStringLiteral("locale"),
        QStringLiteral("Locale of the plugins' texts and of dates, e.g. de or de_DE."),
        QStringLiteral("name"));
    const QCommandLineOption signedOutOption(QStringLiteral("signed-out"),
                                             QStringLiteral("Start without a signed-in user."));
    const QCommandLineOption sizeOption(QStringLiteral("size"), QStringLiteral("Window size, e.g. 900x600."),
                                        QStringLiteral("WxH"));
    parser.addOptions({pluginsOption, scenarioOption, screenshotOption, delayOption, localeOption,
                       signedOutOption, sizeOption});
    const auto bad = [error](const QString& text) {
        *error = text + QStringLiteral("\nTry 'newsReaderHost --help' for the options.");
        return BadInput;
    };
    if (!parser.parse(arguments))
        return bad(parser.errorText());
    if (!parser.positionalArguments().isEmpty())
        return bad(
            QStringLiteral("Unexpected argument '%1'.").arg(parser.positionalArguments().constFirst()));
    if (parser.isSet(helpOption)) {
        *message =
            parser.helpText().replace(QStringLiteral("<executable_name>"), QStringLiteral("newsReaderHost"));
        return Done;
    }
    if (parser.isSet(versionOption)) {
        *message = QStringLiteral("newsReaderHost %1").arg(QStringLiteral(NEWSREADER_VERSION));
        return Done;
    }

    pluginFolder = parser.value(pluginsOption);
    scenarioFile = parser.value(scenarioOption);
    screenshotFile = parser.value(screenshotOption);
    locale = parser.value(localeOption);
    signedOut = parser.isSet(signedOutOption);

    bool delayOk = false;
    screenshotDelayMs = parser.value(delayOption).toInt(&delayOk);
    if (!delayOk || screenshotDelayMs < 0) {
        return bad(QStringLiteral("--delay expects a number of milliseconds, not '%1'.")
                       .arg(parser.value(delayOption)));
    }

    if (parser.isSet(sizeOption)) {
        static const QRegularExpression sizePattern(QStringLiteral("^(\\d+)[xX](\\d+)$"));
        const QRegularExpressionMatch match = sizePattern.match(parser.value(sizeOption));
        if (!match.hasMatch() || match.captured(1).toInt() <= 0 || match.captured(2).toInt() <= 0) {
            return bad(
                QStringLiteral("--size expects WIDTHxHEIGHT, not '%1'.").arg(parser.value(sizeOption)));
        }
        windowSize = QSize(match.captured(1).toInt(), match.captured(2).toInt());
    }
    return Run;
}
