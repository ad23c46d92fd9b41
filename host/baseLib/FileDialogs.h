#pragma once
// The host's file dialogs.

#include "baseLibGlobal.h"

#include <QList>
#include <QString>

class QWidget;

// One filter of a file dialog: a description ("PDF files") and a pattern ("*.pdf"; several separated by ';').
class BASELIB_EXPORT CFilterDesc
{
public:
    CFilterDesc(const QString& description, const QString& pattern);
    QString description;
    QString pattern;
};

// Option words of the file dialogs.
class BASELIB_EXPORT FileDialogOptions
{
public:
    enum Option : unsigned int
    {
        NoOverwritePrompt = 0x1, // save: do not ask before replacing a file
        MultiSelect = 0x2,       // open: several files may be chosen
        RememberFolder = 0x4,    // start in, and remember, the folder last used with this dialog
    };
    explicit FileDialogOptions(unsigned int options = 0);
    bool testFlag(Option option) const { return (options & option) != 0; }
    unsigned int options;
};

// Shows the open dialog. `path` holds the start folder or file on entry and the chosen path on return;
// with MultiSelect several paths are joined by '*'. Returns false when the user cancels.
BASELIB_EXPORT bool stdOpenFileDialog(QWidget* parent, const QList<CFilterDesc>& filters, QString& path,
                                      const FileDialogOptions& options);

// Shows the save dialog. `path` holds the proposed file on entry and the chosen file on return.
BASELIB_EXPORT bool stdSaveAsDialog(QWidget* parent, const QList<CFilterDesc>& filters, QString& path,
                                    const FileDialogOptions& options);
