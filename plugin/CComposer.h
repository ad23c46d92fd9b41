#pragma once
// The composer under a conversation's thread: the rich-text editor with its formatting toolbar, the list of
// attached files and the send and attach buttons. It knows the text as it would be sent, reports every
// change (so that the draft and the send button follow), keeps the length counter, grows with its text, and
// turns Ctrl+Return and a pasted picture into a send request and an attachment. Created by the plugin when
// the main screen is set up; the widgets belong to the form, the attachments model to the plugin.

#include <QObject>
#include <QPointer>

class CAttachmentsModel;
class CViewModelBase;
class QEvent;
class QKeyEvent;
class QLabel;
class QListView;
class QTextEdit;
class QToolButton;
class QWidget;
class RichTextInputWrapper;

class CComposer : public QObject
{
    Q_OBJECT
public:
    struct Controls
    {
        QTextEdit* editor = nullptr;
        QWidget* toolbar = nullptr;
        QListView* attachmentsList = nullptr;
        QLabel* counter = nullptr;
        QToolButton* sendButton = nullptr;
        QToolButton* addAttachment = nullptr;

        // The composer's controls in the main screen's loaded form.
        static Controls find(const CViewModelBase* viewModel);
    };

    // The placeholder whose three lines are the composer's least height.
    static const QString kPlaceholder;
    static constexpr int kFloorLines = 3;
    static constexpr int kMaximumLines = 10;

    CComposer(const Controls& controls, CAttachmentsModel& attachments, QObject* parent);
    ~CComposer() override;

    // The text as it would be sent: GitHub Markdown, trimmed; empty once the editor is gone.
    QString messageText() const;
    // Something to send: text or at least one attached file.
    bool hasContent() const;
    // Replaces the whole text without reporting it as typed (a restored draft, the emptied composer after
    // a send): no draftEdited follows.
    // The open dialog ("All files", several at once); every chosen file joins the attachments.
    void addFilesFromDialog();
    void replaceQuietly(const QString& markdown);
    void setFocus();
    QTextEdit* editor() const;

    // The plugin's event filter hands the editor's and the attachment list's events here; true when the
    // event was consumed.
    bool filterEvent(QObject* watched, QEvent* event);

signals:
    // The text or the list of attachments changed: whether sending is possible may have changed.
    void contentChanged();
    // The user changed the text (not sent after replaceQuietly).
    void draftEdited(const QString& text);
    // Ctrl+Return or Ctrl+Enter.
    void sendRequested();

private:
    bool handleKey(const QKeyEvent* event);
    bool handleDrop(QEvent* event);
    void onTextChanged();
    void updateCounter(const QString& text);
    void updateHeight();
    qreal heightFloor() const;

    CAttachmentsModel& m_attachments;
    QPointer<QTextEdit> m_editor;
    QPointer<QListView> m_attachmentsList;
    QPointer<QLabel> m_counter;
    QPointer<RichTextInputWrapper> m_richTextInput;
    // Raised while the text is replaced by the program, so that the replacement is not saved as a draft.
    bool m_quiet = false;
};
