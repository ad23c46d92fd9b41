#pragma once
// The files and pasted screenshots attached to the message being written: one row per attachment for the
// list view under the composer, and the parallel list of records that the send path uploads. Names that
// the server refuses are accepted but marked. The plugin owns one model and hands it its view.

#include "OutgoingAttachment.h"

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QListView>
#include <QPointer>
#include <QStandardItemModel>

class QPixmap;

class CAttachmentsModel : public QStandardItemModel
{
    Q_OBJECT
public:
    enum Roles
    {
        AttachmentPathRole = Qt::UserRole + 1,
        AttachmentNameValidRole = Qt::UserRole + 2,
    };

    // Characters an attachment's name must not contain, as a regular expression (14 characters).
    static const QString kForbiddenCharactersPattern;
    // The same without % and =, for names this model makes up itself.
    static const QString kScreenshotForbiddenCharactersPattern;
    static constexpr int kIconSize = 128;
    static constexpr int kMinimumRowHeight = 20;
    static constexpr int kRowPadding = 4;
    static constexpr int kMaximumVisibleRows = 3;

    explicit CAttachmentsModel(QObject* parent = nullptr);
    ~CAttachmentsModel() override;

    // The list view that shows the model; its height follows the rows.
    void setView(QListView* view);
    QListView* view() const;

    // Appends files by absolute path; a file that is already attached is skipped.
    void addFiles(const QStringList& paths);
    // Appends a pasted picture as a PNG named after `takenAtUtc`; a second one with the same name is skipped.
    void addScreenshot(const QPixmap& pixmap, const QDateTime& takenAtUtc = QDateTime::currentDateTimeUtc());
    void remove(const QModelIndex& index);
    // Drops every row and record without resizing the view or emitting contentChanged().
    void clear();
    // Drops every row and record, as after a send: the view shrinks and contentChanged(false) follows.
    void removeAll();
    // The conversation the files are attached for. Each conversation keeps its own files: those of the
    // conversation left are put aside and come back when it is shown again.
    void setThreadId(const QString& threadId);
    QString threadId() const;

    // The records in row order, for sending.
    const QList<OutgoingAttachment>& attachments() const;

    // Fills `badNames` with the attachment names that break the name rule; true when there are none.
    bool checkNames(QStringList& badNames) const;

    // The height the view should have at most: up to three rows, one empty row's height without any.
    int preferredViewHeight() const;

    static bool isValidFileName(const QString& name);
    // "Screenshot 2024-05-01T101530.123Z.png" for that moment.
    static QString screenshotName(const QDateTime& takenAtUtc);
    // The tool tip of a row whose name breaks the rule.
    static QString invalidNameToolTip();

signals:
    void contentChanged(bool notEmpty);

private:
    bool contains(const QString& path) const;
    void appendRow(const QString& displayName, const QPixmap& icon, const OutgoingAttachment& record);
    void resizeView();
    void announceContent();

    QPointer<QListView> m_view;
    QList<OutgoingAttachment> m_attachments;
    QString m_threadId;
    QHash<QString, QList<OutgoingAttachment>> m_putAside;
};
