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
    // Steps in the order the host calls them.
    virtual bool LoadUI();                       // loads getFormResourceName() into the dialog
    virtual QString getFormResourceName() const; // resource name of the form in the host's form repository
    virtual QString GetLinkBindingEntry() const; // help link of the dialog
    virtual QSize getInitialSize() const;        // size the dialog opens with
    virtual QString getEscapeHotkeyButtonName() const;
    virtual bool escapeRejects() const; // Escape presses the Cancel button
    virtual void setUpFixedTopLevelSize();
    virtual bool isFixedTopLevelSize() const;
    virtual bool useRepository() const; // forms come from the host's form repository
    virtual void setupUi();             // the form is loaded: find and wire its controls
    virtual bool DoneUI();
    virtual int getButtonsMask() const; // 1: OK, 2: Cancel
    virtual QString getHelpTopic() const;
    virtual bool GetMsgBoxParams() const;
    virtual bool showErrorsAsBalloons() const;
    virtual bool CanCloseDlg() const;
    virtual bool canCloseOnAccept() const;
    virtual unsigned GetApplicableObjectMask() const;
    virtual void onAccept(); // OK pressed; the subclass closes the dialog itself

private:
    bool m_modeless;
    bool m_fixedSize;
    bool m_loaded = false;
    QVariant m_argument;
    QWidget* m_form = nullptr;
    QVBoxLayout* m_layout;
    QDialogButtonBox* m_buttons;
};
