#pragma once
// Where message tables go in the thread document. Messages are not children of the root frame: they lie in
// plain frames that each hold a run of up to GroupSize of them, and the groups in turn lie in sections of up
// to SectionSize groups, all in order. After every change the toolkit's layout walks the children of each
// frame the change touches, and a frame's layout position is relative to its parent: with three levels a
// change in a long thread walks a few dozen frames instead of every message after it, and inserting at the
// top shifts the sections below, not each message. Groups and sections paint nothing and take no room.

#include <QList>

class QTextCursor;
class QTextDocument;
class QTextFrame;
class QTextTable;

class CMessageGroups
{
public:
    static constexpr int GroupSize = 16;
    static constexpr int SectionSize = 16;

    // A cursor at which a message table inserted becomes the last message, or the first one; a new group
    // (and section) is made when the one at that end is full. The cursors are made from blocks, so they ask
    // nothing of the layout.
    static QTextCursor endCursor(QTextDocument* document);
    static QTextCursor startCursor(QTextDocument* document);

    // The message tables in document order, and the first of them (or null).
    static QList<QTextTable*> messages(const QTextDocument* document);
    static QTextTable* firstMessage(const QTextDocument* document);
    static qsizetype messageCount(const QTextDocument* document);

private:
    static QTextCursor cursorAt(QTextDocument* document, bool atEnd);
    static QTextFrame* insertFrame(QTextDocument* document, const QTextCursor& at);
    // Every group, in order.
    static QList<QTextFrame*> groups(const QTextDocument* document);
};
