#include "CComposer.h"

#include "CAttachmentItemDelegate.h"
#include "CAttachmentsModel.h"
#include "CComposerDocument.h"
#include "CControlLookup.h"
#include "ChatServiceApi.h"
#include "FileDialogs.h"
#include "HostFiles.h"
#include "QtHelpersImages.h"
#include "RichTextInputWrapper.h"

#include <QAbstractTextDocumentLayout>
#include <QClipboard>
#include <QDropEvent>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImage>
#include <QKeyEvent>
#include <QLabel>
#include <QListView>
#include <QMimeData>
#include <QPixmap>
#include <QScopedValueRollback>
#include <QTextBlock>
#include <QTextEdit>
#include <QTextLayout>
#include <QToolButton>
#include <QUrl>

#include <algorithm>
#include <cmath>

const QString CComposer::kPlaceholder = QStringLiteral("Write a message");

CComposer::Controls CComposer::Controls::find(const CViewModelBase* viewModel)
{
    Controls controls;
    controls.editor = CControlLookup::find<QTextEdit>(viewModel, QStringLiteral("messageEditor"));
    controls.toolbar = CControlLookup::find<QWidget>(viewModel, QStringLiteral("richTextToolbar"));
    controls.attachmentsList = CControlLookup::find<QListView>(viewModel, QStringLiteral("attachmentsList"));
    controls.counter = CControlLookup::find<QLabel>(viewModel, QStringLiteral("charsTypedLabel"));
    controls.sendButton = CControlLookup::find<QToolButton>(viewModel, QStringLiteral("sendButton"));
    controls.addAttachment = CControlLookup::find<QToolButton>(viewModel, QStringLiteral("addAttachment"));
    return controls;
}

CComposer::CComposer(const Controls& controls, CAttachmentsModel& attachments, QObject* parent)
    : QObject(parent)
    , m_attachments(attachments)
    , m_editor(controls.editor)
    , m_attachmentsList(controls.attachmentsList)
    , m_counter(controls.counter)
{
    controls.sendButton->setIcon(qtHelpers::images::icon(QStringLiteral("send-message")));
    controls.sendButton->setEnabled(false);
    controls.addAttachment->setIcon(qtHelpers::images::icon(QStringLiteral("attachment")));
    controls.sendButton->setAccessibleName(QObject::tr("Send"));
    controls.sendButton->setToolTip(QObject::tr("Send (Ctrl+Return)"));
    controls.addAttachment->setAccessibleName(QObject::tr("Attach files"));
    controls.addAttachment->setToolTip(QObject::tr("Attach files"));
    controls.attachmentsList->setAccessibleName(QObject::tr("Attachments"));

    QListView* list = controls.attachmentsList;
    list->setModel(&m_attachments);
    // One stop for Tab; arrows move between the tiles, Delete removes one.
    list->setTabKeyNavigation(false);
    list->setFocusPolicy(Qt::StrongFocus);
    auto* delegate = new CAttachmentItemDelegate(list);
    list->setItemDelegate(delegate);
    connect(delegate, &CAttachmentItemDelegate::removeAttachmentRequest, this,
            [this](const QModelIndex& index) { m_attachments.remove(index); });
    // Each row's remove button is its persistent editor.
    connect(&m_attachments, &QAbstractItemModel::rowsInserted, list,
            [this, list](const QModelIndex& parent, int first, int last) {
                for (int row = first; row <= last; ++row)
                    list->openPersistentEditor(m_attachments.index(row, 0, parent));
            });
    connect(&m_attachments, &QAbstractItemModel::rowsInserted, this, &CComposer::contentChanged);
    connect(&m_attachments, &QAbstractItemModel::rowsRemoved, this, &CComposer::contentChanged);
    m_attachments.setView(list);
    list->setMaximumHeight(m_attachments.preferredViewHeight());
    list->setVisible(false);
    connect(&m_attachments, &CAttachmentsModel::contentChanged, list, &QWidget::setVisible);

    QTextEdit* editor = controls.editor;
    // The editor's own document would read any file a picture in a draft or in pasted text names.
    auto* document = new CComposerDocument(editor);
    document->setDefaultFont(editor->document()->defaultFont());
    editor->setDocument(document);
    // Parented to the editor, so that it goes with the form.
    m_richTextInput = new RichTextInputWrapper(editor, controls.toolbar, editor);
    editor->setAcceptRichText(true);
    editor->setMaximumHeight(int(std::ceil(heightFloor())));
    updateCounter(QString());

    connect(editor, &QTextEdit::textChanged, this, &CComposer::onTextChanged);
    connect(editor->document()->documentLayout(), &QAbstractTextDocumentLayout::documentSizeChanged, this,
            &CComposer::updateHeight);
}

CComposer::~CComposer() = default;

QString CComposer::messageText() const
{
    return m_editor ? RichTextInputWrapper::messageMarkdown(m_editor->document()) : QString();
}

bool CComposer::hasContent() const
{
    return m_attachments.rowCount() > 0 || !messageText().isEmpty();
}

void CComposer::replaceQuietly(const QString& markdown)
{
    if (!m_editor)
        return;
    const QScopedValueRollback<bool> quiet(m_quiet, true);
    if (markdown.isEmpty())
        m_editor->clear();
    else
        m_editor->document()->setMarkdown(markdown, QTextDocument::MarkdownDialectGitHub);
    // The document was replaced behind the editor's back; its cursor belongs at the end of the new text.
    m_editor->moveCursor(QTextCursor::End);
}

void CComposer::setFocus()
{
    if (m_editor)
        m_editor->setFocus(Qt::OtherFocusReason);
}

QTextEdit* CComposer::editor() const
{
    return m_editor;
}

bool CComposer::filterEvent(QObject* watched, QEvent* event)
{
    if (!watched)
        return false;
    if (watched == m_editor && event->type() == QEvent::KeyPress)
        return handleKey(static_cast<QKeyEvent*>(event));
    if (m_editor && watched == m_editor->viewport())
        return handleDrop(event);
    if (watched == m_attachmentsList && event->type() == QEvent::Resize)
        m_attachmentsList->setMaximumHeight(m_attachments.preferredViewHeight());
    if (watched == m_attachmentsList && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        const QModelIndex current = m_attachmentsList->currentIndex();
        if ((key == Qt::Key_Delete || key == Qt::Key_Backspace) && current.isValid()) {
            m_attachments.remove(current);
            return true;
        }
    }
    return false;
}

// Files dropped from a file manager are attached as the add button attaches them, a dropped picture as a
// pasted one; text is left to the editor.
bool CComposer::handleDrop(QEvent* event)
{
    const auto type = event->type();
    if (type != QEvent::DragEnter && type != QEvent::DragMove && type != QEvent::Drop)
        return false;
    auto* drop = static_cast<QDropEvent*>(event);
    const QMimeData* data = drop->mimeData();
    QStringList files;
    for (const QUrl& url : data->urls()) {
        if (url.isLocalFile() && QFileInfo(url.toLocalFile()).isFile())
            files << url.toLocalFile();
    }
    const bool picture = files.isEmpty() && data->hasImage();
    if (files.isEmpty() && !picture)
        return false;
    drop->acceptProposedAction();
    if (type == QEvent::Drop) {
        if (picture)
            m_attachments.addScreenshot(QPixmap::fromImage(qvariant_cast<QImage>(data->imageData())));
        else
            m_attachments.addFiles(files);
    }
    return true;
}

bool CComposer::handleKey(const QKeyEvent* event)
{
    const int key = event->key();
    const Qt::KeyboardModifiers modifiers = event->modifiers();
    if ((key == Qt::Key_Return || key == Qt::Key_Enter) && modifiers.testFlag(Qt::ControlModifier)) {
        emit sendRequested();
        return true;
    }
    const bool paste = (key == Qt::Key_V && modifiers.testFlag(Qt::ControlModifier)) ||
                       (key == Qt::Key_Insert && modifiers.testFlag(Qt::ShiftModifier));
    if (!paste)
        return false;
    // A picture on the clipboard becomes an attachment; text is left to the editor's own paste.
    const QPixmap picture = QGuiApplication::clipboard()->pixmap();
    if (picture.isNull())
        return false;
    m_attachments.addScreenshot(picture);
    return true;
}

void CComposer::onTextChanged()
{
    const QString text = messageText();
    emit contentChanged();
    if (!m_quiet)
        emit draftEdited(text);
    updateCounter(text);
}

void CComposer::updateCounter(const QString& text)
{
    QString counterText;
    ChatServiceApi::checkCommunicationLength(text, counterText);
    if (m_counter)
        m_counter->setText(counterText);
}

qreal CComposer::heightFloor() const
{
    QTextDocument placeholder;
    if (m_editor)
        placeholder.setDefaultFont(m_editor->font());
    placeholder.setPlainText(kPlaceholder);
    return kFloorLines * placeholder.size().height();
}

void CComposer::updateHeight()
{
    if (!m_editor)
        return;
    const QTextDocument* document = m_editor->document();
    const qreal floor = heightFloor();
    const int lineLimit = std::max(1, std::min(kMaximumLines, document->lineCount()));

    int lines = 0;
    qreal height = 0;
    for (QTextBlock block = document->begin(); block.isValid(); block = block.next()) {
        if (lines > lineLimit)
            break;
        const QTextLayout* layout = block.layout();
        if (!layout)
            continue;
        lines += layout->lineCount();
        for (int i = 0; i < layout->lineCount(); ++i) {
            const QTextLine line = layout->lineAt(i);
            height += line.ascent() + line.descent() + line.leading();
        }
    }
    height = qFuzzyIsNull(height) ? floor : height + 2 * document->rootFrame()->frameFormat().margin();
    m_editor->setMaximumHeight(int(std::ceil(std::max(floor, height))));
}

void CComposer::addFilesFromDialog()
{
    QString paths = GetAbsDirName(int(FolderDocuments), QString(), false);
    const QList<CFilterDesc> filters = {CFilterDesc(QObject::tr("All files"), QStringLiteral("*"))};
    const FileDialogOptions options(FileDialogOptions::MultiSelect | FileDialogOptions::RememberFolder);
    if (!stdOpenFileDialog(m_editor, filters, paths, options))
        return;
    m_attachments.addFiles(paths.split(QLatin1Char('*'), Qt::SkipEmptyParts));
}
