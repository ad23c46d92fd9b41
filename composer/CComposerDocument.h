#pragma once
// The composer's text document. A restored draft comes from the server and pasted HTML from anywhere, and the
// editor's own image handler would read any file a picture names, so every picture the text asks for is
// answered here: read within CResourceGuard's limits, or the generic file icon when it may not be read.
// Nothing else (no style sheet) is loaded. Installed into the composer's editor by CComposer; the editor
// owns it.

#include <QTextDocument>

class CComposerDocument : public QTextDocument
{
    Q_OBJECT

public:
    explicit CComposerDocument(QObject* parent);

protected:
    QVariant loadResource(int type, const QUrl& name) override;
};
