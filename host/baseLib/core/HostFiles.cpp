#include "HostFiles.h"

#include "HostRuntime.h"

#include <QCoreApplication>
#include <QDebug>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <QUrl>

namespace {

// Downloads live under the cache location: everything there can be fetched from the server again, so the
// desktop's cleaners may drop it without losing the user's data.
const QString downloadsFolderName = QStringLiteral("Downloads");
constexpr int maxFileNameLength = 255;
constexpr ushort firstPrintableCharacter = 0x20;
const QString forbiddenCharacters = QStringLiteral("<>:\"/\\|?*");

QString folderForKind(int kind)
{
    switch (kind) {
    case FolderDocuments:
        return QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    case FolderAppData:
        return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    case FolderDownloads:
        return QDir(QStandardPaths::writableLocation(QStandardPaths::CacheLocation))
            .filePath(downloadsFolderName);
    default:
        qWarning() << "GetAbsDirName: unknown folder kind" << kind;
        return QString();
    }
}

QString joinPath(const QString& folder, const QString& relativePath)
{
    if (relativePath.isEmpty())
        return QDir::cleanPath(folder);
    return QDir::cleanPath(QDir(folder).filePath(relativePath));
}

bool isReservedDeviceName(const QString& fileName)
{
    // Windows reserves these names with any extension ("con.txt" is as unusable as "con").
    static const QStringList reserved = [] {
        QStringList names{QStringLiteral("CON"), QStringLiteral("PRN"), QStringLiteral("AUX"),
                          QStringLiteral("NUL")};
        for (int number = 1; number <= 9; ++number) {
            names << QStringLiteral("COM%1").arg(number) << QStringLiteral("LPT%1").arg(number);
        }
        return names;
    }();
    const QString stem = fileName.section(QLatin1Char('.'), 0, 0).trimmed();
    return reserved.contains(stem, Qt::CaseInsensitive);
}

} // namespace

QString GetAbsDirName(const QVariant& kind, const QString& relativePath, bool create)
{
    bool isKind = false;
    const int folderKind = kind.toInt(&isKind);
    if (!isKind) {
        qWarning() << "GetAbsDirName: not a folder kind:" << kind;
        return QString();
    }
    const QString folder = folderForKind(folderKind);
    if (folder.isEmpty())
        return QString();

    const QString path = joinPath(folder, relativePath);
    if (create && !QDir().mkpath(path))
        qWarning() << "GetAbsDirName: cannot create" << path;
    return path;
}

QString GetAbsFileName(const QVariant& folder, const QString& fileName)
{
    QString folderPath;
    bool isKind = false;
    const int folderKind = folder.toInt(&isKind);
    if (folder.typeId() == QMetaType::QString && !isKind)
        folderPath = folder.toString();
    else if (isKind)
        folderPath = GetAbsDirName(folderKind, QString(), false);
    if (folderPath.isEmpty())
        return QString();
    return joinPath(folderPath, fileName);
}

bool LaunchFile(const QString& path, const QString& verb, const QString& parameters, QString& error)
{
    // The desktop services know no verbs or parameters; opening with the associated application is all
    // there is on the platforms the stand-in runs on.
    Q_UNUSED(verb)
    Q_UNUSED(parameters)

    HostRuntime& runtime = HostRuntime::instance();
    runtime.record(QStringLiteral("launchFile"), {{QStringLiteral("path"), path}});

    if (!QFileInfo::exists(path)) {
        error = QCoreApplication::translate("HostFiles", "The file %1 does not exist.")
                    .arg(QDir::toNativeSeparators(path));
        return false;
    }
    if (!runtime.openExternally)
        return true;
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(path))) {
        error = QCoreApplication::translate("HostFiles", "No application is set up to open %1.")
                    .arg(QDir::toNativeSeparators(path));
        return false;
    }
    return true;
}

QString getFileNameExtension(const QString& fileName, bool withDot)
{
    const qsizetype separator =
        qMax(fileName.lastIndexOf(QLatin1Char('/')), fileName.lastIndexOf(QLatin1Char('\\')));
    const QString name = fileName.mid(separator + 1);
    const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
    // A leading dot marks a hidden file (".profile"), not an extension; a trailing dot has nothing after it.
    if (dot <= 0 || dot == name.length() - 1)
        return QString();
    const QString extension = name.mid(dot + 1).toLower();
    return withDot ? QLatin1Char('.') + extension : extension;
}

FileNameValidationReasons isValidFileName(const QString& fileName)
{
    if (fileName.isEmpty())
        return FileNameEmpty;
    if (fileName == QLatin1String(".") || fileName == QLatin1String(".."))
        return FileNameReserved;

    FileNameValidationReasons reasons;
    for (const QChar character : fileName) {
        if (character.unicode() < firstPrintableCharacter || forbiddenCharacters.contains(character)) {
            reasons |= FileNameForbiddenCharacter;
            break;
        }
    }
    if (isReservedDeviceName(fileName))
        reasons |= FileNameReserved;
    if (fileName.length() > maxFileNameLength)
        reasons |= FileNameTooLong;
    if (fileName.endsWith(QLatin1Char('.')) || fileName.endsWith(QLatin1Char(' ')))
        reasons |= FileNameTrailingDotOrSpace;
    return reasons;
}
