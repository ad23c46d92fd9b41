#include "HostOptions.h"

#include <QCommandLineParser>
#include <QRegularExpression>

bool HostOptions::parse(const QStringList& arguments, QString* error)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Reference host: loads the page plugins of a folder into a host window backed by a "
                       "simulated support server."));
    parser.addHelpOption();
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
    const QCommandLineOption localeOption(QStringLiteral("locale"),
                                          QStringLiteral("Locale of the plugins' translations, e.g. de."),
                                          QStringLiteral("name"));
    const QCommandLineOption signedOutOption(QStringLiteral("signed-out"),
                                             QStringLiteral("Start without a signed-in user."));
    const QCommandLineOption sizeOption(QStringLiteral("size"), QStringLiteral("Window size."),
                                        QStringLiteral("WxH"));
    parser.addOptions({pluginsOption, scenarioOption, screenshotOption, delayOption, localeOption,
                       signedOutOption, sizeOption});
    parser.process(arguments);

    pluginFolder = parser.value(pluginsOption);
    scenarioFile = parser.value(scenarioOption);
    screenshotFile = parser.value(screenshotOption);
    locale = parser.value(localeOption);
    signedOut = parser.isSet(signedOutOption);

    bool delayOk = false;
    screenshotDelayMs = parser.value(delayOption).toInt(&delayOk);
    if (!delayOk || screenshotDelayMs < 0) {
        *error = QStringLiteral("--delay expects a number of milliseconds, not '%1'")
                     .arg(parser.value(delayOption));
        return false;
    }

    if (parser.isSet(sizeOption)) {
        static const QRegularExpression sizePattern(QStringLiteral("^(\\d+)[xX](\\d+)$"));
        const QRegularExpressionMatch match = sizePattern.match(parser.value(sizeOption));
        if (!match.hasMatch() || match.captured(1).toInt() <= 0 || match.captured(2).toInt() <= 0) {
            *error = QStringLiteral("--size expects WIDTHxHEIGHT, not '%1'").arg(parser.value(sizeOption));
            return false;
        }
        windowSize = QSize(match.captured(1).toInt(), match.captured(2).toInt());
    }
    return true;
}
