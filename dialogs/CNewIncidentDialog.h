#pragma once
// The dialog that opens a new support conversation from a subject and a message. A signed-out user signs in
// inside it first. On OK it asks the ticket service to create the ticket, waits on a busy page and, on
// success, hands the new ticket out through newIncidentCreated() and closes. The plugin opens it.

#include "CKOLDialog.h"
#include "EntityDto.h"

#include <QByteArray>
#include <QNetworkReply>
#include <QPointer>
#include <QString>

class CBusyStateCtl;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QStackedWidget;
class SignInControl;
class TicketEntityCreateHandler;

class CNewIncidentDialog : public CKOLDialog
{
    Q_OBJECT
public:
    enum Page
    {
        SignInPage = 0,
        FormPage = 1,
        BusyPage = 2,
    };

    static constexpr int kInitialWidth = 640;
    static constexpr int kInitialHeight = 480;
    static constexpr int kBackgroundColor = 34;
    static constexpr double kCaptionPointSize = 14.5;
    static constexpr int kButtonsMask = 3;

    explicit CNewIncidentDialog(QWidget* parent, const QVariant& argument = QVariant());
    ~CNewIncidentDialog() override;

signals:
    void newIncidentCreated(EntityDto::EntityDto entity);

public slots:
    void onIncidentCreated(bool succeeded);
    void onIncidentCreationError(int httpCode, QNetworkReply::NetworkError error, QString errorString,
                                 QByteArray data);
    void onSignInUiFlagsChanged();
    void reject() override;

protected:
    QString getFormResourceName() const override;
    QSize getInitialSize() const override;
    bool escapeRejects() const override;
    bool isFixedTopLevelSize() const override;
    void setupUi() override;
    int getButtonsMask() const override;
    QString getHelpTopic() const override;
    bool showErrorsAsBalloons() const override;
    bool canCloseOnAccept() const override;
    void onAccept() override;

private:
    // The named control of the form; a missing one is a programming error and throws.
    template<class T>
    T* findControl(const QString& name) const;
    void onSignedIn();
    void onMessageChanged();
    void onSubjectChanged(const QString& text);
    void showCounter();

    QString m_message;
    // The buttons' own texts, for when the sign-in control has nothing to say about them.
    QString m_okText;
    QString m_cancelText;
    QString m_subject;
    QPointer<TicketEntityCreateHandler> m_request;
    QPointer<SignInControl> m_signInControl;
    QPointer<QLabel> m_createAccountLink;
    QPointer<QPlainTextEdit> m_messageEdit;
    QPointer<QLineEdit> m_subjectEdit;
    QPointer<QWidget> m_titleArea;
    QPointer<QLabel> m_caption;
    QPointer<QLabel> m_charsTypedLabel;
    QPointer<QStackedWidget> m_stackedWidget;
};
