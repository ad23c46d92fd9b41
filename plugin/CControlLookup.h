#pragma once
// Finds the named controls of a form that a view model has loaded. A form without a control the code
// relies on is a programming error, not a run-time condition: the lookup logs it as critical and throws
// std::runtime_error instead of handing back a null pointer that would fail somewhere far away.

#include <QString>
#include <QWidget>

class CViewModelBase;

class CControlLookup
{
public:
    // The view-model's loaded view; throws "No view loaded for model <class>" while it has none.
    static QWidget* viewOf(const CViewModelBase* viewModel);

    // The control `name` of type T anywhere below `widget`; throws "<class>. No control found: <name>".
    template<typename T>
    static T* find(const QWidget* widget, const QString& name)
    {
        T* control = widget ? widget->findChild<T*>(name) : nullptr;
        if (!control)
            failMissingControl(widget, name);
        return control;
    }

    // The control `name` of type T in the view-model's view.
    template<typename T>
    static T* find(const CViewModelBase* viewModel, const QString& name)
    {
        return find<T>(viewOf(viewModel), name);
    }

    // Logs `message` as critical and throws it as std::runtime_error (UTF-8).
    [[noreturn]] static void fail(const QString& message);

private:
    [[noreturn]] static void failMissingControl(const QWidget* widget, const QString& name);
};
