#pragma once
// A small stand-in for the main screen's composer: a formatting toolbar built in code with the form's
// object names above a rich-text editor, shown so that shortcuts and focus behave as on screen.

#include <QComboBox>
#include <QHBoxLayout>
#include <QTextEdit>
#include <QToolButton>
#include <QVBoxLayout>
#include <QWidget>

class ComposerTestWindow : public QWidget
{
public:
    ComposerTestWindow()
    {
        setObjectName(QStringLiteral("composerWindow"));
        auto* layout = new QVBoxLayout(this);
        toolbar = new QWidget(this);
        toolbar->setObjectName(QStringLiteral("richTextToolbar"));
        auto* row = new QHBoxLayout(toolbar);
        row->setContentsMargins(0, 0, 0, 0);
        row->setSpacing(2);
        for (const char* name : {"boldButton", "italicButton", "strikeOutButton"}) {
            auto* button = new QToolButton(toolbar);
            button->setObjectName(QString::fromLatin1(name));
            button->setCheckable(true);
            button->setAutoRaise(true);
            button->setIconSize(QSize(18, 18));
            row->addWidget(button);
        }
        combo = new QComboBox(toolbar);
        combo->setObjectName(QStringLiteral("paragraphItemsCombo"));
        combo->setMinimumWidth(130);
        combo->setFocusPolicy(Qt::NoFocus);
        row->addSpacing(8);
        row->addWidget(combo);
        row->addStretch();
        editor = new QTextEdit(this);
        editor->setObjectName(QStringLiteral("messageEditor"));
        editor->setAcceptRichText(true);
        layout->addWidget(toolbar);
        layout->addWidget(editor);
        resize(420, 160);
    }

    QToolButton* button(const char* name) const
    {
        return toolbar->findChild<QToolButton*>(QString::fromLatin1(name));
    }

    QWidget* toolbar;
    QComboBox* combo;
    QTextEdit* editor;
};
