// The reference host as a user starts it: a separate process with its command line, under the offscreen
// platform. Covers the unattended screenshot, refusing a broken scenario and refusing a module built for
// another application.

#include "FakeForeignPlugin.h"
#include "HostTestMain.h"

#include <QImage>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>

namespace {
constexpr int kHostTimeoutMs = 120000;
constexpr int kExitBadInput = 2;
const QString kShortDelay = QStringLiteral("800");
const QString kHostInterfaceId = QStringLiteral("com.vantrel.KolApplication.IKolPlugin");
const QString kForeignInterfaceId = QStringLiteral("org.example.NotAKolPlugin");
constexpr int kSampleGrid = 16;
} // namespace

class TestHostApplication : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void writesScreenshotOfTheWindow_data();
    void writesScreenshotOfTheWindow();
    void rejectsMalformedScenarioNamingFileAndPosition();
    void refusesModuleBuiltForAnotherInterface();
    void answersHelpAndVersionWithoutADisplay();

private:
    struct Run
    {
        bool finished = false;
        int exitCode = -1;
        QProcess::ExitStatus exitStatus = QProcess::CrashExit;
        QString output; // stdout
        QString errors; // stderr
    };
    // `platform` empty: no display at all (no DISPLAY, no WAYLAND_DISPLAY, no platform plugin set).
    Run runHost(const QStringList& arguments, const QString& platform = QStringLiteral("offscreen"));

    QTemporaryDir m_scratch;
};

void TestHostApplication::initTestCase()
{
    QVERIFY(m_scratch.isValid());
    QVERIFY2(QFileInfo::exists(QStringLiteral(NEWSREADER_HOST_BINARY)), NEWSREADER_HOST_BINARY);
}

TestHostApplication::Run TestHostApplication::runHost(const QStringList& arguments, const QString& platform)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    if (platform.isEmpty()) {
        for (const char* name : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"})
            environment.remove(QString::fromLatin1(name));
    } else {
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), platform);
    }
    environment.insert(QStringLiteral("QTWEBENGINE_DISABLE_SANDBOX"), QStringLiteral("1"));
    environment.insert(QStringLiteral("QTWEBENGINE_CHROMIUM_FLAGS"), QStringLiteral("--disable-gpu"));
    // The host keeps user settings; a test run must not touch the real ones.
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), m_scratch.filePath(QStringLiteral("config")));
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(NEWSREADER_HOST_BINARY), arguments);

    Run run;
    run.finished =
        QTest::qWaitFor([&process] { return process.state() == QProcess::NotRunning; }, kHostTimeoutMs);
    if (!run.finished) {
        process.kill();
        if (!QTest::qWaitFor([&process] { return process.state() == QProcess::NotRunning; }))
            qWarning("the host process did not end after kill()");
    }
    if (process.error() == QProcess::FailedToStart) {
        run.finished = false;
        return run;
    }
    run.exitCode = process.exitCode();
    run.exitStatus = process.exitStatus();
    run.output = QString::fromLocal8Bit(process.readAllStandardOutput());
    run.errors = QString::fromLocal8Bit(process.readAllStandardError());
    return run;
}

void TestHostApplication::writesScreenshotOfTheWindow_data()
{
    QTest::addColumn<QStringList>("sizeArguments");
    QTest::addColumn<QSize>("expectedSize");
    QTest::newRow("requested size") << QStringList{QStringLiteral("--size"), QStringLiteral("1024x700")}
                                    << QSize(1024, 700);
}

void TestHostApplication::writesScreenshotOfTheWindow()
{
    QFETCH(QStringList, sizeArguments);
    QFETCH(QSize, expectedSize);
    const QString picture =
        m_scratch.filePath(QStringLiteral("%1.png").arg(QTest::currentDataTag()).replace(' ', '_'));

    const Run run =
        runHost(QStringList{QStringLiteral("--screenshot"), picture, QStringLiteral("--delay"), kShortDelay}
                << sizeArguments);
    QVERIFY2(run.finished, "the host did not exit after its screenshot");
    QCOMPARE(run.exitStatus, QProcess::NormalExit);
    QVERIFY2(run.exitCode == 0, qPrintable(run.errors));
    // The build tree's module is found without --plugins and accepted.
    QVERIFY2(run.output.contains(QStringLiteral("class 'CNewsReaderPlugin'")), qPrintable(run.output));
    QVERIFY2(run.output.contains(QStringLiteral("-> loaded")), qPrintable(run.output));

    QImage image;
    QVERIFY2(image.load(picture, "PNG"), qPrintable(picture));
    QCOMPARE(image.size(), expectedSize);
    // A blank grab has one colour; a painted window has many.
    QSet<QRgb> colours;
    for (int y = 0; y < kSampleGrid; ++y) {
        for (int x = 0; x < kSampleGrid; ++x)
            colours.insert(image.pixel(x * image.width() / kSampleGrid, y * image.height() / kSampleGrid));
    }
    QVERIFY2(colours.size() > 2, "the screenshot is blank");
}

void TestHostApplication::rejectsMalformedScenarioNamingFileAndPosition()
{
    const QString scenario = m_scratch.filePath(QStringLiteral("broken-scenario.json"));
    QFile file(scenario);
    QVERIFY(file.open(QIODevice::WriteOnly));
    // The stray comma on line 3 is the fault.
    file.write("{\n  \"news\": [\n    { \"id\": \"n1\", , \"title\": \"Broken\" }\n  ]\n}\n");
    file.close();
    const QString picture = m_scratch.filePath(QStringLiteral("never-written.png"));

    const Run run = runHost({QStringLiteral("--scenario"), scenario, QStringLiteral("--screenshot"), picture,
                             QStringLiteral("--delay"), kShortDelay});
    QVERIFY(run.finished);
    QCOMPARE(run.exitStatus, QProcess::NormalExit);
    QCOMPARE(run.exitCode, kExitBadInput);
    QVERIFY2(run.errors.contains(QStringLiteral("broken-scenario.json")), qPrintable(run.errors));
    const QRegularExpression position(QStringLiteral("\\b3:\\d+\\b"));
    QVERIFY2(position.match(run.errors).hasMatch(), qPrintable(run.errors));
    // It stopped before any window existed.
    QVERIFY(!QFileInfo::exists(picture));
}

void TestHostApplication::refusesModuleBuiltForAnotherInterface()
{
    const QString picture = m_scratch.filePath(QStringLiteral("foreign.png"));
    const Run run = runHost({QStringLiteral("--plugins"), QStringLiteral(FOREIGN_PLUGIN_DIR),
                             QStringLiteral("--screenshot"), picture, QStringLiteral("--delay"), kShortDelay,
                             QStringLiteral("--size"), QStringLiteral("900x600")});
    QVERIFY(run.finished);
    QCOMPARE(run.exitStatus, QProcess::NormalExit);
    QVERIFY2(run.exitCode == 0, qPrintable(run.errors));

    const QString refusal =
        QStringLiteral("interface identifier '%1' is not the host's '%2'; module not loaded")
            .arg(kForeignInterfaceId, kHostInterfaceId);
    QVERIFY2(run.errors.contains(refusal), qPrintable(run.errors));
    QVERIFY2(run.errors.contains(QStringLiteral("fakeForeignPlugin")), qPrintable(run.errors));
    // The Plugins listing names the class and its metadata even though the module was not loaded.
    QVERIFY2(run.output.contains(QStringLiteral("class 'FakeForeignPlugin'")), qPrintable(run.output));
    QVERIFY2(run.output.contains(QStringLiteral("\"disableOnWinPE\":false")), qPrintable(run.output));
    QVERIFY2(!run.output.contains(QString::fromLatin1(FakeForeignPlugin::kCreatedMessage)),
             "the refused module's object was created");
    QImage image;
    QVERIFY(image.load(picture, "PNG"));
    QCOMPARE(image.size(), QSize(900, 600));
}

void TestHostApplication::answersHelpAndVersionWithoutADisplay()
{
    const Run help = runHost({QStringLiteral("--help")}, QString());
    QVERIFY(help.finished);
    QCOMPARE(help.exitCode, 0);
    for (const char* option : {"--scenario", "--screenshot", "--locale", "--size", "--version"})
        QVERIFY2(help.output.contains(QLatin1String(option)), option);

    const Run version = runHost({QStringLiteral("--version")}, QString());
    QCOMPARE(version.exitCode, 0);
    QVERIFY(version.output.startsWith(QStringLiteral("newsReaderHost ")));

    const Run unknown = runHost({QStringLiteral("--colour"), QStringLiteral("red")}, QString());
    QCOMPARE(unknown.exitCode, 2);
    QVERIFY2(unknown.errors.contains(QStringLiteral("--help")), qPrintable(unknown.errors));
    // A size without height and a stray argument are refused like an unknown option.
    for (const QStringList& arguments : {QStringList{"--size", "900x0"}, QStringList{"stray"}})
        QCOMPARE(runHost(arguments, QString()).exitCode, kExitBadInput);
}

HOST_TEST_MAIN(TestHostApplication)
#include "tst_hostapplication.moc"
