#include "CAttachmentsModel.h"

#include "CShellImageList.h"

#include <QBuffer>
#include <QDir>
#include <QFileInfo>
#include <QPixmap>
#include <QRegularExpression>

namespace {

const char* const kPngFormat = "PNG";

const QRegularExpression& forbiddenCharacters()
{
    static const QRegularExpression expression(CAttachmentsModel::kForbiddenCharactersPattern);
    return expression;
}

} // namespace

const QString CAttachmentsModel::kForbiddenCharactersPattern = QStringLiteral("[<>:\"/\\\\|?*%=]");
const QString CAttachmentsModel::kScreenshotForbiddenCharactersPattern = QStringLiteral("[<>:\"/\\\\|?*]");

CAttachmentsModel::CAttachmentsModel(QObject* parent)
    : QStandardItemModel(parent)
{}

CAttachmentsModel::~CAttachmentsModel() = default;

void CAttachmentsModel::setView(QListView* view)
{
    m_view = view;
}

QListView* CAttachmentsModel::view() const
{
    return m_view;
}

void CAttachmentsModel::addFiles(const QStringList& paths)
{
    for (const QString& path : paths) {
        if (path.isEmpty())
            continue;
        // Cleaned so that "a/../a/x" and "a/x/" are recognised as the file they name.
        const QString absolutePath = QDir::cleanPath(QFileInfo(path).absoluteFilePath());
        if (contains(absolutePath))
            continue;
        const QPixmap icon = CShellImageList::instance()->getShellImage(absolutePath, kIconSize);
        appendRow(QFileInfo(absolutePath).fileName(), icon, OutgoingAttachment{QByteArray(), absolutePath});
    }
    resizeView();
    announceContent();
}

void CAttachmentsModel::addScreenshot(const QPixmap& pixmap, const QDateTime& takenAtUtc)
{
    const QString name = screenshotName(takenAtUtc);
    if (!contains(name)) {
        QByteArray png;
        QBuffer buffer(&png);
        buffer.open(QIODevice::WriteOnly);
        pixmap.save(&buffer, kPngFormat);
        const QPixmap icon = CShellImageList::instance()->getShellImage(name, kIconSize);
        appendRow(name, icon, OutgoingAttachment{png, name});
    }
    resizeView();
    announceContent();
}

void CAttachmentsModel::remove(const QModelIndex& index)
{
    if (!index.isValid() || index.model() != this || index.row() >= m_attachments.size())
        return;
    const int row = index.row();
    m_attachments.removeAt(row);
    removeRow(row);
    resizeView();
    announceContent();
}

void CAttachmentsModel::clear()
{
    m_attachments.clear();
    removeRows(0, rowCount());
}

void CAttachmentsModel::removeAll()
{
    clear();
    resizeView();
    announceContent();
}

void CAttachmentsModel::setThreadId(const QString& threadId)
{
    if (threadId == m_threadId)
        return;
    if (!m_attachments.isEmpty())
        m_putAside.insert(m_threadId, m_attachments);
    m_threadId = threadId;
    const QList<OutgoingAttachment> records = m_putAside.take(threadId);
    if (m_attachments.isEmpty() && records.isEmpty())
        return;
    clear();
    for (const OutgoingAttachment& record : records) {
        const QString name = record.data.isEmpty() ? QFileInfo(record.path).fileName() : record.path;
        appendRow(name, CShellImageList::instance()->getShellImage(record.path, kIconSize), record);
    }
    resizeView();
    announceContent();
}

QString CAttachmentsModel::threadId() const
{
    return m_threadId;
}

const QList<OutgoingAttachment>& CAttachmentsModel::attachments() const
{
    return m_attachments;
}

bool CAttachmentsModel::checkNames(QStringList& badNames) const
{
    badNames.clear();
    for (const OutgoingAttachment& attachment : m_attachments) {
        const QString name = QFileInfo(attachment.path).fileName();
        if (!isValidFileName(name))
            badNames.append(name);
    }
    return badNames.isEmpty();
}

int CAttachmentsModel::preferredViewHeight() const
{
    if (!m_view)
        return 0;
    const int spacing = m_view->spacing();
    const int rowHeight = qMax(m_view->fontMetrics().height(), kMinimumRowHeight) + kRowPadding;
    if (rowCount() == 0)
        return rowHeight + 2 * spacing;
    QRect rows;
    for (int row = 0; row < rowCount(); ++row)
        rows |= m_view->visualRect(index(row, 0));
    return qMin(kMaximumVisibleRows * (rowHeight + spacing), rows.height()) + 2 * spacing;
}

bool CAttachmentsModel::isValidFileName(const QString& name)
{
    return !name.contains(forbiddenCharacters());
}

QString CAttachmentsModel::screenshotName(const QDateTime& takenAtUtc)
{
    static const QRegularExpression forbidden(kScreenshotForbiddenCharactersPattern);
    QString name = QObject::tr("Screenshot %1.png").arg(takenAtUtc.toUTC().toString(Qt::ISODateWithMs));
    return name.remove(forbidden);
}

QString CAttachmentsModel::invalidNameToolTip()
{
    return QObject::tr("Attachment name can't contain any of the following characters: %2")
        .arg(kForbiddenCharactersPattern);
}

bool CAttachmentsModel::contains(const QString& path) const
{
    return std::any_of(m_attachments.cbegin(), m_attachments.cend(),
                       [&path](const OutgoingAttachment& attachment) { return attachment.path == path; });
}

void CAttachmentsModel::appendRow(const QString& displayName, const QPixmap& icon,
                                  const OutgoingAttachment& record)
{
    auto* item = new QStandardItem(displayName);
    item->setData(icon, Qt::DecorationRole);
    item->setData(record.path, AttachmentPathRole);
    const bool valid = isValidFileName(displayName);
    item->setData(valid, AttachmentNameValidRole);
    if (!valid)
        item->setToolTip(invalidNameToolTip());
    // The record goes first so that views reacting to the new row already find it.
    m_attachments.append(record);
    QStandardItemModel::appendRow(item);
}

void CAttachmentsModel::resizeView()
{
    if (!m_view)
        return;
    m_view->setMaximumHeight(preferredViewHeight());
}

void CAttachmentsModel::announceContent()
{
    emit contentChanged(rowCount() > 0);
}
