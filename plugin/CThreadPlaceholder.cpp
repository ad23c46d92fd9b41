#include "CThreadPlaceholder.h"

#include <QEvent>
#include <QLabel>
#include <QTextBrowser>

namespace {
constexpr int kSideMargin = 24;
constexpr int kTopMargin = 48;
} // namespace

CThreadPlaceholder::CThreadPlaceholder(QTextBrowser* view)
    : QObject(view)
    , m_view(view)
{
    if (!view)
        return;
    m_label = new QLabel(view->viewport());
    m_label->setObjectName(QStringLiteral("threadPlaceholder"));
    m_label->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    m_label->setWordWrap(true);
    m_label->setTextFormat(Qt::PlainText);
    m_label->setStyleSheet(QStringLiteral("color: #5b6b7b; font-size: 12pt;"));
    m_label->hide();
    view->viewport()->installEventFilter(this);
}

void CThreadPlaceholder::update(bool loading, bool hasMessages)
{
    const Reason reason = hasMessages ? Reason::None : (loading ? Reason::Loading : Reason::Empty);
    // Called on every change of the document, progress ticks included: nothing to do most of the time.
    if (!m_label || reason == m_shown)
        return;
    m_shown = reason;
    QString text;
    if (reason == Reason::Loading)
        text = QObject::tr("Loading the conversation…");
    else if (reason == Reason::Empty)
        text = QObject::tr("There are no messages in this conversation yet.");
    m_label->setText(text);
    m_label->setVisible(!text.isEmpty());
    // Screen readers find the reason in the view's description.
    if (m_view)
        m_view->setAccessibleDescription(text);
    place();
}

bool CThreadPlaceholder::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Resize)
        place();
    return QObject::eventFilter(watched, event);
}

void CThreadPlaceholder::place()
{
    if (!m_label || !m_view)
        return;
    const int width = std::max(0, m_view->viewport()->width() - 2 * kSideMargin);
    m_label->setGeometry(kSideMargin, kTopMargin, width, m_label->heightForWidth(width));
}
