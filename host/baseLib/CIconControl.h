#pragma once

#include "baseLibGlobal.h"

#include <QIcon>
#include <QWidget>

// Shows an icon centred in the widget at a fixed size.
class BASELIB_EXPORT CIconControl : public QWidget
{
    Q_OBJECT
public:
    explicit CIconControl(QWidget* parent = nullptr);
    ~CIconControl() override;

    void setIcon(const QIcon& icon);
    QIcon icon() const;
    void setIconSize(const QSize& size);
    QSize iconSize() const;

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QIcon m_icon;
    QSize m_iconSize{32, 32};
};
