#include "CFormTexts.h"

#include <QCoreApplication>
#include <QVariant>
#include <QWidget>

namespace {

// The texts of "newsReader.mainScreen" and "communications.createIncident", exactly as the forms carry
// them, so that the catalogue lists them under the module's context.
[[maybe_unused]] constexpr const char* kFormTexts[] = {
    QT_TRANSLATE_NOOP("QObject", "Communications"),
    QT_TRANSLATE_NOOP("QObject", "No communications yet"),
    QT_TRANSLATE_NOOP("QObject", "News from us and your conversations with support will appear here."),
    QT_TRANSLATE_NOOP("QObject", "<a href=\"#write\">Write us a message</a>"),
    QT_TRANSLATE_NOOP("QObject", "Select a message on the left to read it"),
    QT_TRANSLATE_NOOP("QObject", "Support has not answered yet. You will find the answer here."),
    QT_TRANSLATE_NOOP("QObject", "Your request has been received"),
    QT_TRANSLATE_NOOP("QObject", "Support will answer shortly. You will find the answer here."),
    QT_TRANSLATE_NOOP("QObject", "New conversation"),
    QT_TRANSLATE_NOOP("QObject", "Write to support (Ctrl+N)"),
    QT_TRANSLATE_NOOP("QObject", "Bold (Ctrl+B)"),
    QT_TRANSLATE_NOOP("QObject", "Italic (Ctrl+I)"),
    QT_TRANSLATE_NOOP("QObject", "Strike out (Shift+Alt+X)"),
    QT_TRANSLATE_NOOP("QObject", "Paragraph style"),
    QT_TRANSLATE_NOOP("QObject", "Write a message"),
    QT_TRANSLATE_NOOP("QObject", "Attach files"),
    QT_TRANSLATE_NOOP("QObject", "Send (Ctrl+Enter)"),
    QT_TRANSLATE_NOOP("QObject", "This conversation is closed"),
    QT_TRANSLATE_NOOP("QObject", "Write us a message"),
    QT_TRANSLATE_NOOP("QObject", "Write us a message!"),
    QT_TRANSLATE_NOOP("QObject", "No account yet? <a href=\"#create-account\">Create an account</a>"),
    QT_TRANSLATE_NOOP("QObject", "Subject"),
    QT_TRANSLATE_NOOP("QObject", "What is your question about?"),
    QT_TRANSLATE_NOOP("QObject", "Message"),
    QT_TRANSLATE_NOOP(
        "QObject", "Describe what happened and what you expected. The more we know, the faster we can help."),
};

constexpr const char* kTextProperties[] = {"text",        "placeholderText", "toolTip",
                                           "windowTitle", "accessibleName",  "accessibleDescription",
                                           "statusTip",   "whatsThis"};

void translateProperties(QObject* object)
{
    for (const char* property : kTextProperties) {
        const QVariant value = object->property(property);
        if (value.typeId() != QMetaType::QString)
            continue;
        const QString text = value.toString();
        if (text.isEmpty())
            continue;
        const QString translated = QCoreApplication::translate("QObject", text.toUtf8().constData());
        if (translated != text)
            object->setProperty(property, translated);
    }
}

} // namespace

void CFormTexts::translate(QWidget* form)
{
    if (!form)
        return;
    translateProperties(form);
    const QList<QWidget*> widgets = form->findChildren<QWidget*>();
    for (QWidget* widget : widgets)
        translateProperties(widget);
}
