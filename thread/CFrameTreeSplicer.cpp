#include "CFrameTreeSplicer.h"

#include <QTextDocument>
#include <QTextFrame>
#include <QtGui/private/qtextdocument_p.h>
#include <QtGui/private/qtextobject_p.h>

#include <algorithm>

namespace {

// The document keeps "the frame tree must be rebuilt" in a private member. An explicit instantiation may name
// a private member, so this template hands out a pointer to it without touching the document's internals in
// any other way.
using FramesDirtyFlag = bool QTextDocumentPrivate::*;
FramesDirtyFlag framesDirtyFlag();

template<FramesDirtyFlag Flag>
struct FramesDirtyAccess
{
    friend FramesDirtyFlag framesDirtyFlag() { return Flag; }
};
template struct FramesDirtyAccess<&QTextDocumentPrivate::framesDirty>;

QTextFramePrivate* privateOf(QTextFrame* frame)
{
    return static_cast<QTextFramePrivate*>(QObjectPrivate::get(frame));
}

} // namespace

CFrameTreeSplicer::CFrameTreeSplicer(QTextDocument* document)
    : m_document(QTextDocumentPrivate::get(document))
    , m_usable(!(m_document->*framesDirtyFlag()))
{}

void CFrameTreeSplicer::detached()
{
    if (m_usable)
        m_document->*framesDirtyFlag() = false;
}

void CFrameTreeSplicer::link(QTextFrame* child, QTextFrame* parent)
{
    QTextFramePrivate* childData = privateOf(child);
    childData->parentFrame = parent;
    QList<QTextFrame*>& siblings = privateOf(parent)->childFrames;
    // Siblings are kept in document order; the new frame usually goes last.
    const int position = child->firstPosition();
    const auto at = std::partition_point(siblings.begin(), siblings.end(), [position](QTextFrame* sibling) {
        return sibling->firstPosition() < position;
    });
    siblings.insert(at, child);
}

void CFrameTreeSplicer::attach(int first, int last)
{
    if (!m_usable || first < 0 || last < first)
        return;
    QTextFrame* const parent = m_document->frameAt(first);
    if (!parent)
        return;

    // Frames that an insertion already filed (frames made by QTextCursor::insertFrame are) start afresh, so
    // that each frame is linked exactly once, below.
    QList<QTextFrame*>& parentChildren = privateOf(parent)->childFrames;
    const auto filed =
        std::partition_point(parentChildren.begin(), parentChildren.end(),
                             [first](QTextFrame* frame) { return frame->firstPosition() <= first; });
    const auto filedEnd = std::find_if(filed, parentChildren.end(),
                                       [last](QTextFrame* frame) { return frame->firstPosition() > last; });
    parentChildren.erase(filed, filedEnd);

    // Inside the range, frames are met in document order, so a child simply goes after its elder siblings.
    auto adopt = [parent](QTextFrame* frame, QTextFrame* into) {
        privateOf(frame)->childFrames.clear();
        if (into == parent) {
            link(frame, parent);
        } else {
            privateOf(frame)->parentFrame = into;
            privateOf(into)->childFrames.append(frame);
        }
    };
    const QString text = m_document->buffer();
    QTextFrame* current = parent;
    for (auto it = m_document->find(first); !it.atEnd() && it.position() <= last; ++it) {
        auto* frame = qobject_cast<QTextFrame*>(m_document->objectForFormat(it->format));
        if (!frame)
            continue;
        const QChar marker = text.at(it->stringPosition);
        if (marker == QTextBeginningOfFrame) {
            if (frame == current)
                continue; // a later cell of the table that is already open
            adopt(frame, current);
            current = frame;
        } else if (marker == QTextEndOfFrame) {
            if (current == parent)
                return; // the range was not made of whole frames; leave the tree to the full rebuild
            current = privateOf(current)->parentFrame;
        } else if (marker == QChar::ObjectReplacementCharacter) {
            adopt(frame, current);
        }
    }
    if (current != parent)
        return; // unbalanced: the full rebuild stays in charge
    m_document->*framesDirtyFlag() = false;
}
