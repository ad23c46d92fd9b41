#include "CViewModelBase.h"

#include "CFormRepository.h"

#include <QDebug>
#include <QWidget>

CViewModelBase::CViewModelBase(QObject* parent)
    : QObject(parent)
{}

CViewModelBase::~CViewModelBase() = default;

void CViewModelBase::refreshView()
{
    for (const QPointer<CViewModelBase>& subModel : std::as_const(m_subModels)) {
        if (subModel)
            refreshSubView(subModel);
    }
}

QWidget* CViewModelBase::View(QWidget* parent)
{
    if (!m_view)
        loadView(parent);
    return m_view;
}

void CViewModelBase::registerSubViewModel(CViewModelBase* subModel)
{
    if (subModel && !m_subModels.contains(subModel))
        m_subModels.append(subModel);
}

void CViewModelBase::unregisterSubViewModel(CViewModelBase* subModel)
{
    m_subModels.removeAll(subModel);
}

int CViewModelBase::sortKey() const
{
    return 0;
}

QWidget* CViewModelBase::getViewWidget() const
{
    return m_view;
}

QString CViewModelBase::getUiFormName() const
{
    return QString();
}

void CViewModelBase::setupView()
{}

void CViewModelBase::refreshSubView(CViewModelBase* subModel)
{
    if (subModel)
        subModel->refreshView();
}

void CViewModelBase::setSubViewActive(CViewModelBase* subModel, bool active)
{
    if (subModel)
        subModel->onActiveChanged(active);
}

void CViewModelBase::onActiveChanged(bool active)
{
    Q_UNUSED(active)
}

QSizePolicy CViewModelBase::getSizePolicyForWidget() const
{
    return QSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

bool CViewModelBase::loadView(QWidget* parent)
{
    QString error;
    QWidget* view = CFormRepository::load(getUiFormName(), parent, &error);
    if (!view) {
        qWarning() << "CViewModelBase: no view for" << metaObject()->className() << ":" << error;
        return false;
    }
    view->setSizePolicy(getSizePolicyForWidget());
    m_view = view;
    setupView();
    return true;
}

void CViewModelBase::refreshBusyView()
{}

QString CViewModelBase::getConfigurableObjectId() const
{
    // Models that the host configuration can switch off override this with their switch id.
    return QString();
}
