#pragma once
// Shows the whole text of a message that the thread shows shortened, as plain text the reader can scroll,
// search with the keyboard and copy from. A window of its own, closed independently of the page.

#include <QDialog>

class CWholeMessageWindow : public QDialog
{
    Q_OBJECT

public:
    CWholeMessageWindow(const QString& author, const QString& text, QWidget* parent);
};
