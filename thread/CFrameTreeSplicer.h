#pragma once
// Links the frames of freshly inserted content into the document's frame tree while the insertion's edit
// block is still open, and tells the document that its tree is current. Without it, closing the edit block
// rebuilds the tree by walking every fragment of the document, so appending message after message to a long
// thread grew quadratically. Only used when the tree was current before the edit began and the edit is the
// outermost one; otherwise the document's own full rebuild stays in charge.

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

private:
    static void link(QTextFrame* child, QTextFrame* parent);

    QTextDocumentPrivate* m_document = nullptr;
    bool m_usable = false;
};
