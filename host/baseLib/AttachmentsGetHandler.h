#pragma once

#include "CAbstractRestApi.h"

#include <QString>
#include <QVariant>

// What a download does when its target file exists already.
enum ExistingFilePolicy : int
{
    ExistingFileFail = 0,      // the download fails
    ExistingFileRename = 1,    // the new file gets a free name ("name (2).ext")
    ExistingFileOverwrite = 2, // the file is replaced
};

// Downloads one attachment to a local file, reporting progress.
class BASELIB_EXPORT AttachmentsGetHandler : public CAbstractRestApi
{
    Q_OBJECT
public:
    explicit AttachmentsGetHandler(QObject* parent = nullptr);
    ~AttachmentsGetHandler() override;

    // `target` is the absolute path of the file to write (a string).
    QNetworkReply* startDownload(const QString& attachmentId, const QVariant& target,
                                 ExistingFilePolicy policy);
    // The file written; valid after finished(true).
    QString downloadedFilePath() const;

signals:
    // `percent` 0..100, and the bytes received of the total.
    void downloadProgress(int percent, unsigned long long received, unsigned long long total);

protected:
    bool handleReply(const QByteArray& body, QString& error) override;

private:
    QString m_target;
    QString m_written;
    ExistingFilePolicy m_policy = ExistingFileFail;
};
