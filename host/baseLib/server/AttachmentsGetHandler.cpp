#include "AttachmentsGetHandler.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>
#include <QUrl>

namespace {

constexpr int kFullPercent = 100;

// "name.ext" → "name (2).ext", "name (3).ext", ... until the name is free.
QString freeFileName(const QString& path)
{
    const QFileInfo info(path);
    const QString base = info.completeBaseName();
    const QString suffix = info.suffix().isEmpty() ? QString() : QLatin1Char('.') + info.suffix();
    for (int n = 2;; ++n) {
        const QString candidate =
            info.dir().filePath(QStringLiteral("%1 (%2)%3").arg(base).arg(n).arg(suffix));
        if (!QFileInfo::exists(candidate))
            return candidate;
    }
}

} // namespace

AttachmentsGetHandler::AttachmentsGetHandler(QObject* parent)
    : CAbstractRestApi(parent)
{}

AttachmentsGetHandler::~AttachmentsGetHandler() = default;

QNetworkReply* AttachmentsGetHandler::startDownload(const QString& attachmentId, const QVariant& target,
                                                    ExistingFilePolicy policy)
{
    m_target = target.toString();
    m_written.clear();
    m_policy = policy;
    const QString path =
        QStringLiteral("/attachments/%1").arg(QString::fromLatin1(QUrl::toPercentEncoding(attachmentId)));
    QNetworkReply* reply = startRequest("GET", path);
    connect(reply, &QNetworkReply::downloadProgress, this, [this](qint64 received, qint64 total) {
        const int percent = total > 0 ? int(received * kFullPercent / total) : kFullPercent;
        emit downloadProgress(percent, quint64(received), quint64(std::max<qint64>(total, 0)));
    });
    return reply;
}

QString AttachmentsGetHandler::downloadedFilePath() const
{
    return m_written;
}

bool AttachmentsGetHandler::handleReply(const QByteArray& body, QString& error)
{
    if (m_target.isEmpty()) {
        error = QStringLiteral("No target file given for the download");
        return false;
    }
    QString path = QFileInfo(m_target).absoluteFilePath();
    if (QFileInfo::exists(path)) {
        switch (m_policy) {
        case ExistingFileFail:
            error = QStringLiteral("The file %1 exists already").arg(QDir::toNativeSeparators(path));
            return false;
        case ExistingFileRename:
            path = freeFileName(path);
            break;
        case ExistingFileOverwrite:
            break;
        }
    }
    if (!QDir().mkpath(QFileInfo(path).absolutePath())) {
        error = QStringLiteral("Cannot create the folder of %1").arg(QDir::toNativeSeparators(path));
        return false;
    }
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(body) != body.size() || !file.commit()) {
        error = QStringLiteral("Cannot write %1: %2").arg(QDir::toNativeSeparators(path), file.errorString());
        return false;
    }
    m_written = path;
    return true;
}
