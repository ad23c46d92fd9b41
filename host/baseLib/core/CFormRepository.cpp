#include "CFormRepository.h"

#include "CHostUiLoader.h"

#include <QCoreApplication>
#include <QFile>
#include <QWidget>

namespace {

const QString formsRoot = QStringLiteral(":/forms/");

QString formPath(const QString& name)
{
    return formsRoot + name;
}

void setError(QString* error, const QString& text)
{
    if (error)
        *error = text;
}

} // namespace

QWidget* CFormRepository::load(const QString& name, QWidget* parent, QString* error)
{
    if (name.isEmpty()) {
        setError(error, QCoreApplication::translate("CFormRepository", "No form name given."));
        return nullptr;
    }
    QFile file(formPath(name));
    if (!file.open(QIODevice::ReadOnly)) {
        setError(error,
                 QCoreApplication::translate("CFormRepository", "The form %1 does not exist.").arg(name));
        return nullptr;
    }

    CHostUiLoader loader;
    QWidget* widget = loader.load(&file, parent);
    if (!widget) {
        setError(error, QCoreApplication::translate("CFormRepository", "The form %1 cannot be loaded: %2")
                            .arg(name, loader.errorString()));
        return nullptr;
    }
    setError(error, QString());
    return widget;
}

bool CFormRepository::contains(const QString& name)
{
    return !name.isEmpty() && QFile::exists(formPath(name));
}
