#include "CRightHandPage.h"

#include "CCommunicationObjectModel.h"
#include "CControlLookup.h"
#include "CNewsWebPage.h"

#include <QDateTime>
#include <QLabel>
#include <QStackedWidget>
#include <QWebEngineView>

namespace {

constexpr int kThreadPage = 0;
constexpr int kNewsViewPage = 1;
constexpr int kThreadOverduePage = 0;
constexpr int kThreadPendingPage = 1;
// The page repeats the beginning of a long opening message; the message itself is on the server.
constexpr qsizetype kFirstMessageShownChars = 600;

QString shortened(const QString& text)
{
    if (text.size() <= kFirstMessageShownChars)
        return text;
    qsizetype cut = text.lastIndexOf(QLatin1Char(' '), kFirstMessageShownChars);
    if (cut < kFirstMessageShownChars / 2)
        cut = kFirstMessageShownChars;
    return text.left(cut) + QStringLiteral("…");
}

} // namespace

void CRightHandPage::attach(const CViewModelBase* viewModel, bool newsView, QObject* receiver,
                            const char* loadFinishedSlot)
{
    m_pages = CControlLookup::find<QStackedWidget>(viewModel, QStringLiteral("stackedWidget"));
    m_entryStack = CControlLookup::find<QStackedWidget>(viewModel, QStringLiteral("newsStack"));
    m_noThreadStack = CControlLookup::find<QStackedWidget>(viewModel, QStringLiteral("noThreadStack"));
    const QWidget* view = CControlLookup::viewOf(viewModel);
    m_noThreadSubject = view->findChild<QLabel*>(QStringLiteral("noThreadSubject"));
    m_noThreadFirstMessage = view->findChild<QLabel*>(QStringLiteral("noThreadFirstMessage"));
    m_entryWriteUs = view->findChild<QLabel*>(QStringLiteral("entryWriteUsLabel"));
    if (newsView) {
        auto* view = new QWebEngineView(m_entryStack);
        QObject::connect(view, SIGNAL(loadFinished(bool)), receiver, loadFinishedSlot);
        view->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
        view->setContextMenuPolicy(Qt::NoContextMenu);
        // News entries link to offers and articles: those belong in the user's browser, not in the page,
        // which only ever shows the entry.
        auto* page = new CNewsWebPage(view);
        view->setPage(page);
        m_entryStack->addWidget(view);
        m_newsView = view;
    }
    setPage(EmptyListPage);
}

std::optional<CRightHandPage::Page> CRightHandPage::choose(const CCommunicationObjectModel& model,
                                                           const QModelIndex& current, bool expanding)
{
    Page page = EmptyListPage;
    if (model.rowCount() == 0) {
        page = EmptyListPage;
    } else if (!current.isValid()) {
        return std::nullopt;
    } else if (current.data(CCommunicationObjectModel::IsFolderRole).toBool()) {
        // The plugin selects the folder's first entry right after expanding it; the folder page would flash.
        if (expanding)
            return std::nullopt;
        page = FolderPage;
    } else if (!current.data(CCommunicationObjectModel::ConversationRole).toBool() ||
               current.data(CCommunicationObjectModel::HasDefaultThreadRole).toBool()) {
        page = EntryPage;
    } else {
        page = NoThreadPage;
        const QDateTime created = current.data(CCommunicationObjectModel::FirstTimeRole).toDateTime();
        const bool pending =
            created.isValid() && created.secsTo(QDateTime::currentDateTimeUtc()) < ThreadPendingSeconds;
        if (m_noThreadStack)
            m_noThreadStack->setCurrentIndex(pending ? kThreadPendingPage : kThreadOverduePage);
        showRequest(current);
    }
    setPage(page);
    return page;
}

void CRightHandPage::showFolderPage()
{
    setPage(FolderPage);
}

void CRightHandPage::showEntry(bool conversation, const QString& html)
{
    if (!conversation && m_newsView)
        m_newsView->page()->setHtml(html, QUrl());
    if (m_entryStack)
        m_entryStack->setCurrentIndex(conversation ? kThreadPage : kNewsViewPage);
    // A link that the host does not allow has no text.
    if (m_entryWriteUs)
        m_entryWriteUs->setVisible(!conversation && !m_entryWriteUs->text().isEmpty());
}

void CRightHandPage::showRequest(const QModelIndex& conversation)
{
    // Until support answers, the page shows what the user asked, so that they know it arrived.
    if (m_noThreadSubject)
        m_noThreadSubject->setText(conversation.data(CCommunicationObjectModel::TitleRole).toString());
    const QString firstMessage = conversation.data(CCommunicationObjectModel::ExtraTextRole).toString();
    if (!m_noThreadFirstMessage)
        return;
    m_noThreadFirstMessage->setText(shortened(firstMessage.trimmed()));
    m_noThreadFirstMessage->setToolTip(firstMessage.size() > kFirstMessageShownChars ? firstMessage
                                                                                     : QString());
    m_noThreadFirstMessage->setVisible(!firstMessage.trimmed().isEmpty());
}

void CRightHandPage::clearNews()
{
    if (m_newsView)
        m_newsView->page()->setUrl(QUrl());
}

void CRightHandPage::setPage(Page page)
{
    if (m_pages)
        m_pages->setCurrentIndex(page);
}
