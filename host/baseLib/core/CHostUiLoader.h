#pragma once
// The form loader behind CFormRepository: QUiLoader that also knows the host's own widgets, so that forms
// can use SignInControl, CBusyStateCtl and CIconControl like standard widgets.

#include <QUiLoader>

class CHostUiLoader : public QUiLoader
{
    Q_OBJECT
public:
    explicit CHostUiLoader(QObject* parent = nullptr);

    QWidget* createWidget(const QString& className, QWidget* parent = nullptr,
                          const QString& name = QString()) override;
};
