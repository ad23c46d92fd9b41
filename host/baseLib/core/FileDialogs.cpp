#include "FileDialogs.h"

#include "CSettingsLoader.h"
#include "HostRuntime.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>

namespace {

const QString openFolderKey = QStringLiteral("FileDialogs/lastOpenFolder");
const QString saveFolderKey = QStringLiteral("FileDialogs/lastSaveFolder");
const QChar multiPathSeparator(QLatin1Char('*'));

// "PDF files (*.pdf)": the form that QFileDialog shows; the host separates patterns with ';'.
QString filterText(const CFilterDesc& filter)
{
    const QString patterns =
        filter.pattern.split(QLatin1Char(';'), Qt::SkipEmptyParts).join(QLatin1Char(' '));
    return QStringLiteral("%1 (%2)").arg(filter.description, patterns);
}

QStringList filterTexts(const QList<CFilterDesc>& filters)
{
    QStringList texts;
    for (const CFilterDesc& filter : filters)
        texts << filterText(filter);
    return texts;
}

void recordDialog(const QString& kind, const QString& path, const QList<CFilterDesc>& filters,
                  const FileDialogOptions& options)
{
    HostRuntime::instance().record(QStringLiteral("fileDialog"),
                                   {{QStringLiteral("kind"), kind},
                                    {QStringLiteral("path"), path},
                                    {QStringLiteral("filters"), filterTexts(filters)},
                                    {QStringLiteral("options"), options.options}});
}

QString rememberedFolder(const QString& key)
{
    QVariant folder;
    if (!HostRuntime::instance().settings().Read(key, &folder))
        return QString();
    const QString path = folder.toString();
    return QFileInfo(path).isDir() ? path : QString();
}

void rememberFolder(const QString& key, const QString& chosenFile)
{
    HostRuntime::instance().settings().Write(key, QFileInfo(chosenFile).absolutePath());
}

} // namespace

CFilterDesc::CFilterDesc(const QString& description, const QString& pattern)
    : description(description)
    , pattern(pattern)
{}

FileDialogOptions::FileDialogOptions(unsigned int options)
    : options(options)
{}

bool stdOpenFileDialog(QWidget* parent, const QList<CFilterDesc>& filters, QString& path,
                       const FileDialogOptions& options)
{
    recordDialog(QStringLiteral("open"), path, filters, options);
    const bool multiSelect = options.testFlag(FileDialogOptions::MultiSelect);
    const bool remember = options.testFlag(FileDialogOptions::RememberFolder);

    QStringList chosen;
    HostRuntime& runtime = HostRuntime::instance();
    if (!runtime.openFileAnswers.isEmpty()) {
        chosen = runtime.openFileAnswers.dequeue();
    } else {
        QString startFolder = remember ? rememberedFolder(openFolderKey) : QString();
        if (startFolder.isEmpty())
            startFolder = path;
        const QString caption = QCoreApplication::translate("FileDialogs", "Open");
        const QString filter = filterTexts(filters).join(QStringLiteral(";;"));
        if (multiSelect) {
            chosen = QFileDialog::getOpenFileNames(parent, caption, startFolder, filter);
        } else {
            const QString file = QFileDialog::getOpenFileName(parent, caption, startFolder, filter);
            if (!file.isEmpty())
                chosen << file;
        }
    }

    chosen.removeAll(QString());
    if (chosen.isEmpty())
        return false;
    if (!multiSelect)
        chosen = chosen.mid(0, 1);
    if (remember)
        rememberFolder(openFolderKey, chosen.constFirst());
    path = chosen.join(multiPathSeparator);
    return true;
}

bool stdSaveAsDialog(QWidget* parent, const QList<CFilterDesc>& filters, QString& path,
                     const FileDialogOptions& options)
{
    recordDialog(QStringLiteral("save"), path, filters, options);
    const bool remember = options.testFlag(FileDialogOptions::RememberFolder);

    QString chosen;
    HostRuntime& runtime = HostRuntime::instance();
    if (!runtime.saveAsAnswers.isEmpty()) {
        chosen = runtime.saveAsAnswers.dequeue();
    } else {
        QString proposed = path;
        const QString folder = remember ? rememberedFolder(saveFolderKey) : QString();
        if (!folder.isEmpty())
            proposed = QDir(folder).filePath(QFileInfo(path).fileName());
        QFileDialog::Options dialogOptions;
        if (options.testFlag(FileDialogOptions::NoOverwritePrompt))
            dialogOptions |= QFileDialog::DontConfirmOverwrite;
        chosen = QFileDialog::getSaveFileName(parent, QCoreApplication::translate("FileDialogs", "Save As"),
                                              proposed, filterTexts(filters).join(QStringLiteral(";;")),
                                              nullptr, dialogOptions);
    }

    if (chosen.isEmpty())
        return false;
    if (remember)
        rememberFolder(saveFolderKey, chosen);
    path = chosen;
    return true;
}
