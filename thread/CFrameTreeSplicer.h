#pragma once
// Keeps the document's frame tree current across an insertion or the removal of whole frames, and tells the
// document so before the edit block closes. Without it, closing the edit block rebuilds the tree by walking
// every fragment of the document: appending message after message to a long thread grew quadratically, and
// one update of a long thread cost as much as all of its text. Only used when the tree was current before the
// edit began; otherwise the document's own full rebuild stays in charge.

class QTextDocument;
class QTextDocumentPrivate;
class QTextFrame;

class CFrameTreeSplicer
{
public:
    // Call before the insertion's edit block begins.
    explicit CFrameTreeSplicer(QTextDocument* document);

    // Links every frame whose markers lie between `first` and `last` (document positions, both included; the
    // range must hold whole frames only and must have been inserted inside the edit block) into the tree.
    // Call before the edit block ends.
    void attach(int first, int last);

    // Declares the tree current after whole frames were removed inside the edit block: the document unlinks a
    // frame from its parent as soon as its markers go, so nothing is left to rebuild. Call before the edit
    // block ends.
    void detached();

private:
    static void link(QTextFrame* child, QTextFrame* parent);

    QTextDocumentPrivate* m_document = nullptr;
    bool m_usable = false;
};
