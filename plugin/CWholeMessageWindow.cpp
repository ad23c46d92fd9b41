#include "CWholeMessageWindow.h"

#include <QDialogButtonBox>
#include <QPlainTextEdit>
#include <QVBoxLayout>

namespace {

const QSize kInitialSize(720, 560);

} // namespace

CWholeMessageWindow::CWholeMessageWindow(const QString& author, const QString& text, QWidget* parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("wholeMessageWindow"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(author.isEmpty() ? QObject::tr("Whole message")
                                    : QObject::tr("Whole message from %1").arg(author));
    auto* view = new QPlainTextEdit(this);
    view->setObjectName(QStringLiteral("wholeMessageText"));
    view->setAccessibleName(QObject::tr("Message"));
    view->setReadOnly(true);
    view->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    view->setPlainText(text);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(view);
    layout->addWidget(buttons);
    resize(kInitialSize);
    view->setFocus();
}
