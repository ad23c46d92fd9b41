#pragma once
// What the thread does with its links and attachments: the menu of a clicked tile ("Open", "Save as..."),
// downloads into the cache folder with the progress ring on the tile, launching and saving the downloaded
// file, and the thumbnails of image attachments. Every other link of the thread goes to the system browser.
//
// The server is not trusted: the thread id, attachment ids and file names it sends become folder and file
// names only after they have been made safe, and nothing is ever written outside the cache folder or the
// file the user chose. A download is written beside its final name and renamed when complete, so a failed or
// interrupted one never leaves a file that a later "Open" would take for the attachment.

#include "CMessageItemIndex.h"

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QString>

#include <functional>

class CFilePreviewManager;
class CMessageItemsDocument;
class QPoint;
class QTextBrowser;
class QUrl;

class CAttachmentOpener : public QObject
{
    Q_OBJECT

public:
    CAttachmentOpener(CMessageItemsDocument& document, CFilePreviewManager& previews, QObject* parent);

    void attach(QTextBrowser* thread);
    // The thread whose attachments are clicked and previewed from now on.
    void setThreadId(const QString& threadId);

    // A link of the thread view was clicked.
    void onLinkClicked(const QUrl& url);
    // The document shows `index`: its image attachments get their thumbnails.
    void requestThumbnails(const CMessageItemIndex& index);

    void open(const QString& attachmentId, const QString& name);
    void saveAs(const QString& attachmentId, const QString& name);

    // The attachment's name as a file name: unchanged when it is a valid one; otherwise with the characters
    // no file name may hold replaced by "_" and its extension appended again. Whatever is still unusable
    // (control characters, "..", reserved names, empty or over-long names) is then made safe as well.
    static QString safeFileName(const QString& name);
    // Where the attachment is cached: inside the cache folder, whatever the ids and the name hold.
    QString cachePath(const QString& attachmentId, const QString& name) const;

    // The suffixes of the MIME types that get thumbnails, and the thumbnails' size.
    static bool hasThumbnail(const QString& mimeType);
    static constexpr unsigned ThumbnailSize = 200;

private:
    using Completion = std::function<void(const QString& path)>;
    struct Waiter
    {
        Completion done;
        bool report = true; // a failure is told to the user (not for thumbnails)
    };

    void showMenu(const QString& attachmentId, const QString& name);
    // The whole text of a message the thread shows shortened, in a window of its own.
    void showWholeMessage(const QString& messageId);
    // Runs `done` with the cached file, downloading it first when needed; `done` gets an empty path when the
    // download failed (the user has been told).
    void download(const QString& attachmentId, const QString& name, bool report, Completion done);
    void finishDownload(const QString& attachmentId, const QString& name, const QString& partial,
                        const QString& path, bool ok);
    void makeThumbnail(const CMessageItemIndex& index, const QString& attachmentId, const QString& path);
    void tell(const QString& text) const;

    CMessageItemsDocument& m_document;
    CFilePreviewManager& m_previews;
    QPointer<QTextBrowser> m_thread;
    QString m_threadId;
    // Downloads under way, by cache path, with everyone waiting for each.
    QHash<QString, QList<Waiter>> m_waiting;
};
