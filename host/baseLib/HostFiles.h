#pragma once
// File and folder helpers of the host.

#include "baseLibGlobal.h"

#include <QFlags>
#include <QString>
#include <QVariant>

// Folder kinds understood by GetAbsDirName and GetAbsFileName, and where they live (QStandardPaths).
enum HostFolderKind : int
{
    FolderDocuments = 9,  // the user's documents folder (DocumentsLocation)
    FolderAppData = 14,   // the application's persistent data (AppDataLocation)
    FolderDownloads = 23, // the application's download cache (CacheLocation + "/Downloads"): everything in it
                          // can be fetched from the server again
};

// Absolute folder for `kind` (a HostFolderKind as int) joined with `relativePath`; created when `create`.
BASELIB_EXPORT QString GetAbsDirName(const QVariant& kind, const QString& relativePath, bool create);

// Absolute file name: `fileName` placed in the folder `folder`, which is either a HostFolderKind (int)
// or an absolute folder path (string).
BASELIB_EXPORT QString GetAbsFileName(const QVariant& folder, const QString& fileName);

// Opens `path` with the application the desktop associates with it; `verb` and `parameters` are passed
// on where the platform knows them. On failure returns false and sets `error`.
BASELIB_EXPORT bool LaunchFile(const QString& path, const QString& verb, const QString& parameters,
                               QString& error);

// The extension of a file name ("report.PDF" -> "pdf"; with `withDot` ".pdf"); empty when there is none.
// Always lower case.
BASELIB_EXPORT QString getFileNameExtension(const QString& fileName, bool withDot);

enum FileNameValidationReason : unsigned
{
    FileNameValid = 0,
    FileNameEmpty = 0x1,
    FileNameForbiddenCharacter = 0x2, // one of < > : " / \ | ? * or a control character
    FileNameReserved = 0x4,           // CON, PRN, AUX, NUL, COM1..9, LPT1..9, "." and ".."
    FileNameTooLong = 0x8,            // more than 255 characters
    FileNameTrailingDotOrSpace = 0x10,
};
Q_DECLARE_FLAGS(FileNameValidationReasons, FileNameValidationReason)
Q_DECLARE_OPERATORS_FOR_FLAGS(FileNameValidationReasons)

// Why `fileName` cannot be used as a file name on every platform the host supports; empty when it can.
BASELIB_EXPORT FileNameValidationReasons isValidFileName(const QString& fileName);
