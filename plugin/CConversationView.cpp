#include "CConversationView.h"

#include "CAttachmentsModel.h"
#include "CCommunicationObjectModel.h"
#include "CComposer.h"
#include "CControlLookup.h"
#include "CMessageItemsDocument.h"
#include "CNewsFetcher.h"
#include "CThreadPlaceholder.h"
#include "CVantrelApp.h"
#include "ChatServiceApi.h"
#include "DraftMessageItem.h"
#include "EntitySchemaDto.h"
#include "QtHelpersInvoke.h"
#include "TypingViewModel.h"
#include "WatcherAliases.h"

#include <QAbstractTextDocumentLayout>
#include <QLabel>
#include <QProgressBar>
#include <QScrollBar>
#include <QStyle>
#include <QTextBrowser>
#include <QTextDocument>
#include <QToolButton>

namespace {

// Where a conversation's state lives and where its display name is found.
const QString kTicketEntityType = QStringLiteral("SM_MINICRM_TICKET");
const QString kTicketStateAttribute = QStringLiteral("STATE");
const QString kDisplayNameProperty = QStringLiteral("DISPLAY_NAME");
const QString kThreadAttribute = QString::fromLatin1(DraftMessageItem::kDefaultThreadAttribute);

// A balloon's rectangle sits this much lower than the message's frame.
constexpr int kBalloonOffset = 2;

QString stateDisplayName(const QString& stateKey)
{
    if (!vantrelApp)
        return stateKey;
    const EntitySchemaDto::EntitySchemaDto schema = vantrelApp->getLowcodeSchema();
    const EntitySchemaDto::EnumValueDto* state = schema.enumValue(kTicketEntityType, stateKey);
    return state ? state->properties.value(kDisplayNameProperty).toString() : stateKey;
}

} // namespace

CConversationView::Controls CConversationView::Controls::find(const CViewModelBase* viewModel)
{
    Controls controls;
    controls.thread = CControlLookup::find<QTextBrowser>(viewModel, QStringLiteral("issueMessages"));
    controls.progress = CControlLookup::find<QProgressBar>(viewModel, QStringLiteral("messagesProgress"));
    controls.inputArea = CControlLookup::find<QWidget>(viewModel, QStringLiteral("inputAreaFrame"));
    controls.typing = CControlLookup::find<QLabel>(viewModel, QStringLiteral("typingLabel"));
    controls.title = CControlLookup::find<QLabel>(viewModel, QStringLiteral("issueTitle"));
    controls.state = CControlLookup::find<QLabel>(viewModel, QStringLiteral("issueState"));
    controls.stateButton = CControlLookup::find<QToolButton>(viewModel, QStringLiteral("issueStateButton"));
    controls.createDate = CControlLookup::find<QLabel>(viewModel, QStringLiteral("issueCreateDate"));
    return controls;
}

CConversationView::CConversationView(CMessageItemsDocument& document, TypingViewModel& typing,
                                     CAttachmentsModel& attachments, std::shared_ptr<CNewsFetcher> fetcher,
                                     CCommunicationObjectModel& model, QObject* parent)
    : QObject(parent)
    , m_document(document)
    , m_typing(typing)
    , m_attachments(attachments)
    , m_fetcher(std::move(fetcher))
    , m_model(model)
{}

CConversationView::~CConversationView() = default;

void CConversationView::attach(const Controls& controls, CComposer* composer)
{
    m_thread = controls.thread;
    if (m_thread) {
        m_thread->setAccessibleName(QObject::tr("Conversation"));
        m_placeholder = new CThreadPlaceholder(m_thread);
        connect(m_thread->verticalScrollBar(), &QScrollBar::valueChanged, this,
                &CConversationView::onScrolled);
        // Messages arrive by load, by live update and by the user's own sending.
        connect(&m_document, &QTextDocument::contentsChanged, this, &CConversationView::updatePlaceholder);
    }
    m_progress = controls.progress;
    m_inputArea = controls.inputArea;
    m_typingLabel = controls.typing;
    m_title = controls.title;
    m_state = controls.state;
    m_stateButton = controls.stateButton;
    m_createDate = controls.createDate;
    m_composer = composer;
    // Titles, states and dates come from the server: they are shown as the text they are, never as markup.
    for (QLabel* label : {controls.title, controls.state, controls.createDate}) {
        if (label)
            label->setTextFormat(Qt::PlainText);
    }
    // A long title gives way to the state beside it and ends in an ellipsis; its tool tip keeps the whole.
    if (m_title) {
        m_title->installEventFilter(this);
    }
    if (m_state)
        m_state->setSizePolicy(QSizePolicy::Fixed, m_state->sizePolicy().verticalPolicy());
    m_attached = true;
    setBusy(false);
}

bool CConversationView::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_title && (event->type() == QEvent::Resize || event->type() == QEvent::Show))
        elideTitle();
    return QObject::eventFilter(watched, event);
}

void CConversationView::elideTitle()
{
    if (!m_title)
        return;
    // A hidden label has no width to speak of yet; it is cut when it shows.
    if (!m_title->isVisible()) {
        m_title->setText(m_fullTitle);
        return;
    }
    const QString shown = m_title->fontMetrics().elidedText(m_fullTitle, Qt::ElideRight,
                                                            std::max(0, m_title->contentsRect().width()));
    if (m_title->text() != shown)
        m_title->setText(shown);
}

bool CConversationView::isAttached() const
{
    return m_attached;
}

QString CConversationView::currentThreadId() const
{
    return m_threadId;
}

QModelIndex CConversationView::currentConversation() const
{
    return m_conversation;
}

bool CConversationView::canCompose() const
{
    return m_conversation.isValid() &&
           m_conversation.data(CCommunicationObjectModel::StatusRole).toInt() != kClosedComposerState;
}

void CConversationView::reset()
{
    if (m_fetch)
        m_fetch->disconnect(this);
    m_fetch.clear();
    m_reloadQueued = false;
    m_incoming.clear();
    m_older.clear();
    m_threadId.clear();
    m_conversation = QPersistentModelIndex();
    m_document.clear();
    m_typing.reset();
    if (m_attached)
        setBusy(false);
}

void CConversationView::show(const QModelIndex& index)
{
    m_conversation = index;
    m_threadId = index.data(CCommunicationObjectModel::KeyRole).toString();
    // The view may have moved to another screen since the last thread was shown.
    if (m_thread)
        m_document.setDevicePixelRatio(m_thread->devicePixelRatioF());
    m_attachments.setThreadId(m_threadId);
    emit composerStateChanged();
    showHeader(index, true);
    restoreDraft(index);
}

void CConversationView::showHeader(const QModelIndex& index, bool reload)
{
    if (!m_attached || !index.data(CCommunicationObjectModel::ConversationRole).toBool())
        return;
    const QString title = index.data(CCommunicationObjectModel::TitleRole).toString();
    if (m_title) {
        m_fullTitle = title;
        m_title->setAccessibleName(title);
        elideTitle();
        // A tool tip that looks like markup is shown as markup: the title goes in as the text it is.
        m_title->setToolTip(title.isEmpty() ? QString()
                                            : Qt::convertFromPlainText(title, Qt::WhiteSpaceNormal));
    }
    // The list carries the whole ticket; its state key is named by the server's schema.
    const auto ticket = DraftMessageItem::entityFrom(index.data(CCommunicationObjectModel::EntityRole));
    const QString stateText = stateDisplayName(ticket.attributeValue(kTicketStateAttribute).toString());
    if (m_state)
        m_state->setText(stateText);
    if (m_stateButton)
        m_stateButton->setText(stateText);
    if (m_createDate)
        m_createDate->setText(index.data(CCommunicationObjectModel::DateTextRole).toString());

    if (reload)
        loadThread(index);

    const bool open = index.data(CCommunicationObjectModel::StatusRole).toInt() != kClosedComposerState;
    if (m_inputArea) {
        m_inputArea->setEnabled(open);
        m_inputArea->setVisible(open);
    }
    if (open && m_composer)
        m_composer->setFocus();
    emit composerStateChanged();
}

void CConversationView::restoreDraft(const QModelIndex& index)
{
    if (!m_composer || index.data(CCommunicationObjectModel::DraftBusyRole).toBool())
        return;
    m_composer->replaceQuietly(index.data(CCommunicationObjectModel::DraftTextRole).toString());
}

void CConversationView::reloadIfShown(const QString& incidentId, bool pageSelected)
{
    if (!incidentId.isEmpty() && incidentId != m_threadId)
        return;
    if (pageSelected && m_conversation.isValid())
        showHeader(m_conversation, true);
}

void CConversationView::loadThread(const QModelIndex& index)
{
    const QVariant ticketValue = index.data(CCommunicationObjectModel::EntityRole);
    const QString threadId = DraftMessageItem::defaultThreadId(ticketValue);
    if (threadId.isEmpty())
        return;
    if (m_fetch) {
        m_reloadQueued = true;
        return;
    }
    const EntityDto::EntityDto ticket = DraftMessageItem::entityFrom(ticketValue);
    m_fetch = ChatServiceApi::startFetchThreadCommunications(threadId);
    if (!m_fetch)
        return;
    connect(
        m_fetch, &CustomerEntitiesQueryVectorHandler::entitiesFetched, this,
        [this, ticket](const QList<EntityDto::EntityDto>& entities) { onMessagesLoaded(ticket, entities); });
    connect(m_fetch, &CAbstractRestApi::finished, this, &CConversationView::onFetchFinished);
    setBusy(true);
}

void CConversationView::onMessagesLoaded(const EntityDto::EntityDto& ticket,
                                         const QList<EntityDto::EntityDto>& entities)
{
    if (!m_conversation.isValid() || !m_fetcher)
        return;
    QList<Incoming> records;
    records.reserve(entities.size() + 1);
    records.append({m_fetcher->ticketEntityToMessageInfo(ticket), false, true});
    for (const EntityDto::EntityDto& entity : entities)
        records.append({m_fetcher->communicationEntityToMessageInfo(entity), false, true});
    // Live updates that arrived while the answer was on its way are older than it.
    m_incoming.clear();
    // A thread that starts empty is filled without a width, as a document no view shows yet: it is laid out
    // once, lazily, when the view asks for it (the page holding the view may still be hidden, with a width
    // that changes as soon as it shows).
    const bool fresh = m_document.isEmpty();
    const qsizetype firstShown = firstShownOf(records);
    QList<CIncidentCommunication> older;
    older.reserve(firstShown);
    for (qsizetype i = 0; i < firstShown; ++i)
        older.append(records.at(i).record);
    m_older.assign(std::move(older));
    const qreal width = m_document.textWidth();
    if (fresh)
        m_document.setTextWidth(-1);
    const qsizetype applied = applyMessages(records.mid(firstShown));
    if (fresh)
        m_document.setTextWidth(width);
    // A reload that changed nothing shown leaves the reader where they are.
    if (fresh || applied > 0) {
        qtHelpers::invokeOnIdle(this, [this] {
            scrollToEnd();
            // A view that the newest messages do not fill has nothing to scroll: it gets older ones at once.
            if (m_thread && m_thread->verticalScrollBar()->maximum() == 0)
                onScrolled(0);
        });
    }
    emit threadLoaded(m_threadId);
}

qsizetype CConversationView::firstShownOf(const QList<Incoming>& records) const
{
    if (m_document.isEmpty())
        return std::max<qsizetype>(0, records.size() - kShownAtOpen);
    if (m_older.isEmpty())
        return 0;
    // A reload while older messages still wait: they keep waiting, up to the first message shown.
    for (qsizetype i = 0; i < records.size(); ++i) {
        const CIncidentCommunication& record = records.at(i).record;
        if (m_document.messageIndex(record.id).isValid() || m_document.findOlderVersion(record).isValid())
            return i;
    }
    return 0;
}

void CConversationView::onScrolled(int value)
{
    if (m_older.isEmpty() || m_olderQueued || !m_thread || value > m_thread->viewport()->height())
        return;
    m_olderQueued = true;
    qtHelpers::invokeOnIdle(this, [this] { showOlder(); });
}

void CConversationView::showOlder()
{
    m_olderQueued = false;
    if (m_older.isEmpty() || !m_thread)
        return;
    QScrollBar* scrollBar = m_thread->verticalScrollBar();
    QAbstractTextDocumentLayout* layout = m_document.documentLayout();
    QTextFrame* anchor = m_document.firstMessageFrame();
    const qreal offset = anchor ? layout->frameBoundingRect(anchor).top() - scrollBar->value() : 0.0;

    const QList<CIncidentCommunication> portion = m_older.takeNewest(kOlderPortion);
    QList<CMessageItemIndex> shown;
    shown.reserve(portion.size());
    QTextCursor batch(&m_document);
    batch.beginEditBlock();
    for (auto it = portion.crbegin(); it != portion.crend(); ++it)
        shown.append(m_document.prependMessage(*it));
    batch.endEditBlock();

    // The message that was first stays where the reader saw it.
    if (anchor)
        scrollBar->setValue(qRound(layout->frameBoundingRect(anchor).top() - offset));
    for (const CMessageItemIndex& index : std::as_const(shown)) {
        if (index.isValid())
            emit messageShown(index);
    }
    updatePlaceholder();
    onScrolled(scrollBar->value());
}

void CConversationView::onFetchFinished()
{
    m_fetch.clear();
    setBusy(false);
    if (m_reloadQueued) {
        m_reloadQueued = false;
        if (m_conversation.isValid())
            loadThread(m_conversation);
    }
}

void CConversationView::updatePlaceholder()
{
    if (m_placeholder)
        m_placeholder->update(m_fetch, !m_document.isEmpty());
}

void CConversationView::setBusy(bool busy)
{
    updatePlaceholder();
    if (!m_progress)
        return;
    m_progress->setProperty(kStopAnimationProperty, !busy);
    // The style reads the property when it polishes the bar.
    QStyle* style = m_progress->style();
    style->unpolish(m_progress);
    style->polish(m_progress);
    m_progress->update();
}

// True when a message shown from `shown` would look the same shown from `record`: reloading a long thread
// then touches only what changed.
bool CConversationView::showsSame(const CIncidentCommunication& shown, const CIncidentCommunication& record)
{
    const auto sameAttachment = [](const CIncidentAttachment& a, const CIncidentAttachment& b) {
        return a.id == b.id && a.fileName == b.fileName && a.size == b.size && a.noLink == b.noLink;
    };
    return shown.editVersion == record.editVersion && shown.deleted == record.deleted &&
           shown.text == record.text && shown.senderName == record.senderName &&
           shown.fromOtherParty == record.fromOtherParty && shown.time == record.time &&
           std::equal(shown.attachments.cbegin(), shown.attachments.cend(), record.attachments.cbegin(),
                      record.attachments.cend(), sameAttachment);
}

qsizetype CConversationView::applyMessages(const QList<Incoming>& records)
{
    // One edit block around the whole batch: the document is laid out once, not once per message.
    QTextCursor batch(&m_document);
    batch.beginEditBlock();
    QList<CMessageItemIndex> shown;
    for (const Incoming& incoming : records) {
        const CIncidentCommunication& record = incoming.record;
        CMessageItemIndex existing = m_document.messageIndex(record.id);
        // A change to a message that waits above the shown part waits with it.
        if (!existing.isValid() && !incoming.fetched && m_older.absorb(record))
            continue;
        if (incoming.deletion) {
            if (existing.isValid())
                shown.append(m_document.replaceMessage(existing, record));
            continue;
        }
        if (incoming.fetched && existing.isValid() && showsSame(existing.message, record))
            continue;
        if (!existing.isValid() && !record.id.isEmpty())
            existing = m_document.findOlderVersion(record);
        const CMessageItemIndex index = existing.isValid() ? m_document.replaceMessage(existing, record)
                                                           : m_document.appendMessage(record);
        shown.append(index);
    }
    batch.endEditBlock();
    for (const CMessageItemIndex& index : std::as_const(shown)) {
        if (index.isValid())
            emit messageShown(index);
    }
    return shown.size();
}

void CConversationView::onCommunicationReceived(const CIncidentCommunication& communication)
{
    if (!m_attached || !isCurrentThread(communication.threadId))
        return;
    if (m_incoming.isEmpty())
        qtHelpers::invokeOnIdle(this, [this] { flushIncoming(); });
    m_incoming.append({communication, false});
}

void CConversationView::onCommunicationDeleted(const CIncidentCommunication& communication, bool pageSelected)
{
    if (!m_attached || !pageSelected || !isCurrentThread(communication.threadId))
        return;
    CIncidentCommunication deleted = communication;
    deleted.deleted = true;
    if (m_incoming.isEmpty())
        qtHelpers::invokeOnIdle(this, [this] { flushIncoming(); });
    m_incoming.append({deleted, true});
}

void CConversationView::flushIncoming()
{
    if (m_incoming.isEmpty())
        return;
    const QList<Incoming> incoming = std::exchange(m_incoming, {});
    const bool received = std::any_of(incoming.cbegin(), incoming.cend(),
                                      [](const Incoming& update) { return !update.deletion; });
    // Changes that only reached messages waiting above the shown part leave the reader where they are.
    if (applyMessages(incoming) > 0 && received)
        scrollToEnd();
}

void CConversationView::onThreadIsBeingEdited(const CIncidentCommunication& communication, bool isEditing)
{
    if (m_attached && isCurrentThread(communication.threadId))
        m_typing.setTyping(communication, isEditing);
}

void CConversationView::onWatchersCacheChanged()
{
    if (!m_attached || !m_fetcher)
        return;
    const QTextCursor remembered = m_thread ? m_thread->textCursor() : QTextCursor();
    QScrollBar* scrollBar = m_thread ? m_thread->verticalScrollBar() : nullptr;
    const int scrollPosition = scrollBar ? scrollBar->value() : 0;
    CNewsFetcher* fetcher = m_fetcher.get();
    QTextCursor batch(&m_document);
    batch.beginEditBlock();
    m_document.updatePartyNames([fetcher](const QString& id) { return fetcher->getWatcherName(id); });
    batch.endEditBlock();
    if (!remembered.isNull() && m_thread)
        m_thread->setTextCursor(remembered);
    // Renamed bubbles keep their heights within a line; the reader stays where they were.
    if (scrollBar)
        scrollBar->setValue(scrollPosition);
}

void CConversationView::setTypingText(const QString& text)
{
    if (m_typingLabel)
        m_typingLabel->setText(text);
}

void CConversationView::scrollToEnd()
{
    if (!m_thread)
        return;
    m_thread->moveCursor(QTextCursor::End);
    // The cursor is in view a margin above the bottom; the reader expects the very end.
    QScrollBar* scrollBar = m_thread->verticalScrollBar();
    scrollBar->setValue(scrollBar->maximum());
}

void CConversationView::scrollTo(const CMessageItemIndex& index)
{
    if (!m_thread || !index.isValid())
        return;
    m_thread->setTextCursor(index.frame->lastCursorPosition());
    m_thread->ensureCursorVisible();
}

QRect CConversationView::messageRect(const CMessageItemIndex& index) const
{
    if (!m_thread || !index.isValid())
        return {};
    const QRectF frame = m_document.frameRect(index);
    if (!frame.isValid())
        return {};
    const int scroll = m_thread->verticalScrollBar()->value();
    const QRect onViewport = frame.translated(0, kBalloonOffset - scroll).toAlignedRect();
    return QRect(m_thread->viewport()->mapTo(m_thread, onViewport.topLeft()), onViewport.size());
}

QTextBrowser* CConversationView::threadView() const
{
    return m_thread;
}

bool CConversationView::isCurrentThread(const QString& threadId) const
{
    return m_conversation.isValid() && !threadId.isEmpty() && threadId == m_threadId;
}
