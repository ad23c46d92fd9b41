#pragma once

#include "baseLibGlobal.h"

#include <QWidget>

class QTimer;

// A spinning busy indicator with a line of text under it. Spins while visible.
class BASELIB_EXPORT CBusyStateCtl : public QWidget
{
    Q_OBJECT
public:
    explicit CBusyStateCtl(QWidget* parent = nullptr);
    ~CBusyStateCtl() override;

    void setBusyText(const QString& text);
    QString busyText() const;

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    QString m_text;
    QTimer* m_timer;
    int m_angle = 0;
};
