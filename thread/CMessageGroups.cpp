#include "CMessageGroups.h"

#include <QTextCursor>
#include <QTextDocument>
#include <QTextFrame>
#include <QTextTable>

namespace {

// An empty block between two frames, or before the first one, would otherwise take a line of height.
void flatten(const QTextBlock& block)
{
    if (!block.isValid() || block.blockFormat().lineHeightType() == QTextBlockFormat::FixedHeight)
        return;
    QTextBlockFormat format;
    format.setLineHeight(0, QTextBlockFormat::FixedHeight);
    QTextCursor(block).setBlockFormat(format);
}

// The empty block at the end of a group, after its last table: where a table inserted comes last.
QTextBlock lastBlockOf(const QTextFrame* group)
{
    return group->document()->findBlock(group->lastPosition());
}

// The empty block at the start of a group, before its first table.
QTextBlock firstBlockOf(const QTextFrame* group)
{
    return group->document()->findBlock(group->firstPosition());
}

} // namespace

QTextFrame* CMessageGroups::insertFrame(QTextDocument* document, const QTextCursor& at)
{
    QTextCursor cursor(at);
    QTextFrameFormat format;
    format.setMargin(0);
    format.setPadding(0);
    format.setBorder(0);
    QTextFrame* frame = cursor.insertFrame(format);
    flatten(firstBlockOf(frame));
    flatten(document->findBlock(frame->firstPosition() - 1));
    // The block after the last section stays as it is: it is the room under the thread's last message.
    const QTextBlock after = document->findBlock(frame->lastPosition() + 1);
    if (after != document->lastBlock())
        flatten(after);
    return frame;
}

// The group at one end of the thread, in the section at that end; a new group (and section) there when
// those are full.
QTextCursor CMessageGroups::cursorAt(QTextDocument* document, bool atEnd)
{
    const auto end = [atEnd](const QList<QTextFrame*>& frames) {
        return frames.isEmpty() ? nullptr : atEnd ? frames.constLast() : frames.constFirst();
    };
    QTextFrame* section = end(document->rootFrame()->childFrames());
    const QList<QTextFrame*> groups = section ? section->childFrames() : QList<QTextFrame*>();
    QTextFrame* group = end(groups);
    if (group && group->childFrames().size() < GroupSize)
        return QTextCursor(atEnd ? lastBlockOf(group) : firstBlockOf(group));
    if (!section || groups.size() >= SectionSize)
        section = insertFrame(document, QTextCursor(atEnd ? document->lastBlock() : document->begin()));
    group = insertFrame(document, QTextCursor(atEnd ? lastBlockOf(section) : firstBlockOf(section)));
    return QTextCursor(firstBlockOf(group));
}

QTextCursor CMessageGroups::endCursor(QTextDocument* document)
{
    return cursorAt(document, true);
}

QTextCursor CMessageGroups::startCursor(QTextDocument* document)
{
    return cursorAt(document, false);
}

QList<QTextFrame*> CMessageGroups::groups(const QTextDocument* document)
{
    QList<QTextFrame*> groups;
    for (QTextFrame* section : document->rootFrame()->childFrames())
        groups += section->childFrames();
    return groups;
}

QList<QTextTable*> CMessageGroups::messages(const QTextDocument* document)
{
    QList<QTextTable*> tables;
    for (QTextFrame* group : groups(document)) {
        for (QTextFrame* child : group->childFrames()) {
            if (auto* table = qobject_cast<QTextTable*>(child))
                tables.append(table);
        }
    }
    return tables;
}

QTextTable* CMessageGroups::firstMessage(const QTextDocument* document)
{
    for (QTextFrame* group : groups(document)) {
        if (!group->childFrames().isEmpty())
            return qobject_cast<QTextTable*>(group->childFrames().constFirst());
    }
    return nullptr;
}

qsizetype CMessageGroups::messageCount(const QTextDocument* document)
{
    qsizetype count = 0;
    for (QTextFrame* group : groups(document))
        count += group->childFrames().size();
    return count;
}
