#pragma once
// Base of the host's dialogs: a form loaded from the host's form repository above an OK / Cancel button
// row. Subclasses name the form and react to the steps below; Execute() runs the dialog modally.

#include "baseLibGlobal.h"

#include <QDialog>
#include <QVariant>

class QDialogButtonBox;
class QPushButton;
class QVBoxLayout;

class BASELIB_EXPORT CKOLDialog : public QDialog
{
    Q_OBJECT
public:
    // `modeless`: Execute() shows the dialog and returns at once. `argument`: handed to the subclass.
    // `fixedSize`: the dialog cannot be resized.
    CKOLDialog(QWidget* parent, bool modeless, const QVariant& argument, bool fixedSize);
    ~CKOLDialog() override;

    // Loads the form (once), sets the dialog up and runs it; returns the result passed to done().
    int Execute();

    QPushButton* okButton() const;
    QPushButton* cancelButton() const;
    QVariant argument() const;
    QWidget* formWidget() const; // the loaded form, null before Execute() / ensureLoaded()

    // Loads the form and runs the set-up step without showing the dialog.
    bool ensureLoaded();

public slots:
    void accept() override;
    void reject() override;

protected:
    // Steps in the order the host calls them. Execute(): LoadUI() (once), setupUi(), getInitialSize(),
    // setUpFixedTopLevelSize(), then the dialog runs; DoneUI() after it has finished.
    virtual bool LoadUI();                       // loads getFormResourceName() into the dialog; false: failed
    virtual QString getFormResourceName() const; // resource name of the form in the host's form repository
    virtual QString GetLinkBindingEntry() const; // help link of the dialog; default none
    virtual QSize getInitialSize() const;        // size the dialog opens with; default: its size hint
    virtual QString getEscapeHotkeyButtonName() const; // object name of the button Escape presses
    virtual bool escapeRejects() const;                // Escape presses the Cancel button; default true
    virtual void setUpFixedTopLevelSize();             // fixes the size when isFixedTopLevelSize()
    virtual bool isFixedTopLevelSize() const;          // default: the `fixedSize` constructor argument
    virtual bool useRepository() const;        // forms come from the host's form repository; default true
    virtual void setupUi();                    // the form is loaded: find and wire its controls
    virtual bool DoneUI();                     // the dialog has finished; default true
    virtual int getButtonsMask() const;        // 1: OK, 2: Cancel; default both (3)
    virtual QString getHelpTopic() const;      // default none
    virtual bool GetMsgBoxParams() const;      // default false
    virtual bool showErrorsAsBalloons() const; // default true
    virtual bool CanCloseDlg() const;          // whether Cancel may close the dialog now; default true
    virtual bool canCloseOnAccept() const;     // whether the default onAccept() closes; default true
    virtual unsigned GetApplicableObjectMask() const; // default 0
    virtual void onAccept(); // OK pressed; default: done(Accepted) when canCloseOnAccept()

    void keyPressEvent(QKeyEvent* event) override;

private:
    bool m_modeless;
    bool m_fixedSize;
    bool m_loaded = false;
    QVariant m_argument;
    QWidget* m_form = nullptr;
    QVBoxLayout* m_layout;
    QDialogButtonBox* m_buttons;
};
