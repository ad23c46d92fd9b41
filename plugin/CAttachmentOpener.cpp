#include "CAttachmentOpener.h"

#include "AttachmentLinks.h"
#include "AttachmentsGetHandler.h"
#include "BalloonMessage.h"
#include "CBrowserItemMetaData.h"
#include "CFilePreviewHandler.h"
#include "CFilePreviewManager.h"
#include "CMessageBody.h"
#include "CMessageItemsDocument.h"
#include "CVantrelApp.h"
#include "CWholeMessageWindow.h"
#include "ChatServiceApi.h"
#include "FileDialogs.h"
#include "HostFiles.h"
#include "QtHelpersInvoke.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMenu>
#include <QMimeDatabase>
#include <QScrollBar>
#include <QSet>
#include <QTextBrowser>
#include <QUrl>

#include <algorithm>
#include <cmath>

namespace {

// A download is written under its final name with this ending and renamed once complete.
const QString kPartialSuffix = QStringLiteral(".part");
// Names are cut to this length (extension included), well inside every file system's limit.
constexpr int kMaxNameLength = 180;
constexpr int kMaxExtensionLength = 16;
// The menu opens this far below the tile's top edge.
constexpr int kMenuOffset = 2;

bool isValidName(const QString& name)
{
    return isValidFileName(name) == FileNameValid;
}

QString replaceForbidden(QString name)
{
    for (QChar& c : name) {
        if (QStringView(u"<>:\"/\\|?*").contains(c) || c.unicode() < 0x20 || c.unicode() == 0x7f)
            c = QLatin1Char('_');
    }
    return name;
}

// One folder level named by the server (thread or attachment id): kept when it is a plain name, otherwise
// replaced by a name derived from it, so that different ids still get different folders.
QString safeFolderName(const QString& id)
{
    if (isValidName(id) && !id.startsWith(QLatin1Char('.')))
        return id;
    const QByteArray digest = QCryptographicHash::hash(id.toUtf8(), QCryptographicHash::Sha256).toHex();
    return QStringLiteral("id-") + QString::fromLatin1(digest.left(32));
}

} // namespace

CAttachmentOpener::CAttachmentOpener(CMessageItemsDocument& document, CFilePreviewManager& previews,
                                     QObject* parent)
    : QObject(parent)
    , m_document(document)
    , m_previews(previews)
{}

void CAttachmentOpener::attach(QTextBrowser* thread)
{
    m_thread = thread;
}

void CAttachmentOpener::setThreadId(const QString& threadId)
{
    m_threadId = threadId;
}

void CAttachmentOpener::onLinkClicked(const QUrl& url)
{
    const QString href = QString::fromUtf8(url.toEncoded(QUrl::FullyEncoded));
    if (newsReader::isAttachLink(href)) {
        QString id;
        QString name;
        if (newsReader::parseAttachLink(href, id, name))
            showMenu(id, name);
        return;
    }
    // A URL the parser refuses encodes to nothing: an abort link with a hostile id, never a page to open.
    if (href.isEmpty() || newsReader::isAbortLink(href))
        return;
    if (CMessageBody::isWholeTextLink(href)) {
        showWholeMessage(CMessageBody::messageIdFromWholeTextLink(href));
        return;
    }
    if (vantrelApp)
        vantrelApp->onExternalBrowserLinkClicked(href);
}

void CAttachmentOpener::showWholeMessage(const QString& messageId)
{
    const CMessageItemIndex index = m_document.messageIndex(messageId);
    if (!index.isValid() || !m_thread)
        return;
    auto* window = new CWholeMessageWindow(index.message.senderName, index.message.text, m_thread->window());
    window->show();
}

void CAttachmentOpener::showMenu(const QString& attachmentId, const QString& name)
{
    if (!m_thread)
        return;
    const QRectF tile = m_document.attachmentRect(attachmentId);
    if (!tile.isValid())
        return;
    const QPointF corner =
        tile.translated(0, kMenuOffset - m_thread->verticalScrollBar()->value()).bottomLeft();
    const QPoint at(int(std::lround(corner.x())), int(std::lround(corner.y())));
    if (!m_thread->viewport()->rect().contains(at))
        return;
    auto* menu = new QMenu(m_thread);
    menu->setObjectName(QStringLiteral("attachmentMenu"));
    menu->setAccessibleName(name);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction(QObject::tr("Open"), this, [this, attachmentId, name] { open(attachmentId, name); });
    menu->addAction(QObject::tr("Save as..."), this,
                    [this, attachmentId, name] { saveAs(attachmentId, name); });
    menu->popup(m_thread->viewport()->mapToGlobal(at));
}

void CAttachmentOpener::open(const QString& attachmentId, const QString& name)
{
    download(attachmentId, name, true, [this](const QString& path) {
        if (path.isEmpty())
            return;
        QString error;
        if (!LaunchFile(path, QString(), QString(), error))
            tell(QObject::tr("The file could not be opened: %1").arg(error));
    });
}

void CAttachmentOpener::saveAs(const QString& attachmentId, const QString& name)
{
    const QString safeName = safeFileName(name);
    QString target = GetAbsFileName(int(FolderDownloads), safeName);
    QList<CFilterDesc> filters;
    const QString extension = getFileNameExtension(safeName, false);
    if (!extension.isEmpty()) {
        const QString title = extension.left(1).toUpper() + extension.mid(1);
        filters.append(
            CFilterDesc(QObject::tr("%1 files").arg(title), QStringLiteral("*.%1").arg(extension)));
    }
    if (!stdSaveAsDialog(m_thread, filters, target, FileDialogOptions(FileDialogOptions::RememberFolder)) ||
        target.isEmpty())
        return;
    // The cached copy is downloaded (or reused) and then copied: the chosen file is replaced only by a
    // complete one.
    download(attachmentId, name, true, [this, target](const QString& path) {
        if (path.isEmpty() || QFileInfo(path).canonicalFilePath() == QFileInfo(target).canonicalFilePath())
            return;
        const QString partial = target + kPartialSuffix;
        QFile::remove(partial);
        const bool copied = QFile::copy(path, partial) && (!QFile::exists(target) || QFile::remove(target)) &&
                            QFile::rename(partial, target);
        if (!copied) {
            QFile::remove(partial);
            tell(QObject::tr("The file could not be saved as \"%1\".").arg(QDir::toNativeSeparators(target)));
        }
    });
}

void CAttachmentOpener::requestThumbnails(const CMessageItemIndex& index)
{
    for (const CIncidentAttachment& attachment : index.message.attachments) {
        if (attachment.noLink || !hasThumbnail(attachment.mimeType))
            continue;
        const QString messageId = index.message.id;
        const QString attachmentId = attachment.id;
        download(attachmentId, attachment.fileName, false,
                 [this, messageId, attachmentId](const QString& path) {
                     if (path.isEmpty())
                         return;
                     // One picture per turn of the event loop: the interface stays responsive while a thread
                     // full of pictures gets its thumbnails.
                     qtHelpers::invokeOnIdle(this, [this, messageId, attachmentId, path] {
                         makeThumbnail(m_document.messageIndex(messageId), attachmentId, path);
                     });
                 });
    }
}

void CAttachmentOpener::makeThumbnail(const CMessageItemIndex& index, const QString& attachmentId,
                                      const QString& path)
{
    if (!index.isValid())
        return;
    const VantrelBrowser::CBrowserItemMetaData item(path);
    const std::shared_ptr<CFilePreviewHandler> handler = m_previews.getPreviewHandlerForPath(item);
    if (!handler)
        return;
    // Asked for at the view's pixel density. The handler never enlarges a picture beyond its own size, so a
    // small picture keeps the size it has on an ordinary screen instead of shrinking.
    const qreal ratio = m_thread ? std::max(qreal(1.0), m_thread->devicePixelRatioF()) : qreal(1.0);
    QPixmap thumbnail = handler->getThumbnail(unsigned(std::ceil(ThumbnailSize * ratio)), item);
    if (thumbnail.isNull())
        return;
    const int longerSide = std::max(thumbnail.width(), thumbnail.height());
    thumbnail.setDevicePixelRatio(std::max(qreal(1.0), longerSide / qreal(ThumbnailSize)));
    // A reader at the newest message stays there while the pictures above grow the thread.
    QScrollBar* bar = m_thread ? m_thread->verticalScrollBar() : nullptr;
    const bool atEnd = bar && bar->value() == bar->maximum();
    m_document.setContentsThumbnail(index, attachmentId, thumbnail);
    if (atEnd)
        bar->setValue(bar->maximum());
}

void CAttachmentOpener::download(const QString& attachmentId, const QString& name, bool report,
                                 Completion done)
{
    const QString path = cachePath(attachmentId, name);
    if (path.isEmpty()) {
        if (report)
            tell(QObject::tr("\"%1\" cannot be stored on this computer under a safe name.").arg(name));
        done(QString());
        return;
    }
    const QFileInfo cached(path);
    if (cached.isFile() && !cached.isSymLink()) {
        done(cached.absoluteFilePath());
        return;
    }
    auto waiting = m_waiting.find(path);
    if (waiting != m_waiting.end()) {
        waiting->append({std::move(done), report});
        return;
    }
    m_waiting.insert(path, {{std::move(done), report}});

    const QString partial = path + kPartialSuffix;
    QFile::remove(partial);
    AttachmentsGetHandler* handler =
        ChatServiceApi::startDownloadFile(attachmentId, partial, ExistingFileOverwrite);
    if (!handler) {
        finishDownload(attachmentId, name, partial, path, false);
        return;
    }
    m_document.setAttachProgress(attachmentId, 0);
    connect(handler, &AttachmentsGetHandler::downloadProgress, this,
            [this, attachmentId](int percent, unsigned long long, unsigned long long) {
                // The ring stays until the file is complete and in place.
                m_document.setAttachProgress(attachmentId, std::clamp(percent, 0, 99));
            });
    connect(handler, &CAbstractRestApi::finished, this,
            [this, handler, attachmentId, name, partial, path](bool ok) {
                handler->deleteLater();
                finishDownload(attachmentId, name, partial, path, ok);
            });
}

void CAttachmentOpener::finishDownload(const QString& attachmentId, const QString& name,
                                       const QString& partial, const QString& path, bool ok)
{
    m_document.setAttachProgress(attachmentId, 100);
    const QFileInfo written(partial);
    bool complete = ok && written.isFile() && !written.isSymLink();
    if (complete) {
        QFile::remove(path);
        complete = QFile::rename(partial, path);
    }
    if (!complete)
        QFile::remove(partial);
    const QList<Waiter> waiters = m_waiting.take(path);
    const bool report =
        std::any_of(waiters.cbegin(), waiters.cend(), [](const Waiter& w) { return w.report; });
    if (!complete && report)
        tell(QObject::tr("\"%1\" could not be downloaded. Please try again later.").arg(name));
    for (const Waiter& waiter : waiters)
        waiter.done(complete ? path : QString());
}

void CAttachmentOpener::tell(const QString& text) const
{
    if (m_thread)
        issueBalloonMessage(m_thread, text, QMessageBox::Warning);
}

QString CAttachmentOpener::safeFileName(const QString& name)
{
    if (isValidName(name))
        return name;
    QString safe = replaceForbidden(name + getFileNameExtension(name, true));
    while (safe.endsWith(QLatin1Char('.')) || safe.endsWith(QLatin1Char(' ')))
        safe.chop(1);
    QString extension = getFileNameExtension(safe, true);
    if (extension.size() > kMaxExtensionLength)
        extension.clear();
    if (safe.size() > kMaxNameLength)
        safe = safe.left(kMaxNameLength - extension.size()) + extension;
    if (!isValidName(safe) || safe.startsWith(QLatin1Char('.')))
        safe = QStringLiteral("attachment") +
               (isValidName(QStringLiteral("a") + extension) ? extension : QString());
    return safe;
}

QString CAttachmentOpener::cachePath(const QString& attachmentId, const QString& name) const
{
    const QString folder =
        QDir::cleanPath(GetAbsDirName(int(FolderDownloads),
                                      QStringLiteral("%1/%2/%3")
                                          .arg(safeFolderName(QCoreApplication::applicationName()),
                                               safeFolderName(m_threadId), safeFolderName(attachmentId)),
                                      true));
    const QString root = QDir::cleanPath(GetAbsDirName(int(FolderDownloads), QString(), false));
    const QString path = QDir::cleanPath(GetAbsFileName(folder, safeFileName(name)));
    // Whatever the names held, the file lies inside the cache folder, directly in the attachment's folder.
    if (!folder.startsWith(root + QLatin1Char('/')) || QFileInfo(path).absolutePath() != folder)
        return QString();
    return path;
}

bool CAttachmentOpener::hasThumbnail(const QString& mimeType)
{
    static const QSet<QString> previewed = {
        QStringLiteral("png"), QStringLiteral("jpeg"), QStringLiteral("bmp"), QStringLiteral("gif"),
        QStringLiteral("svg"), QStringLiteral("webp"), QStringLiteral("pdf")};
    if (mimeType.isEmpty())
        return false;
    const QStringList suffixes = QMimeDatabase().mimeTypeForName(mimeType).suffixes();
    return std::any_of(suffixes.cbegin(), suffixes.cend(),
                       [](const QString& suffix) { return previewed.contains(suffix); });
}
