#pragma once
// What the host shows in place of the navigation list while the page has nothing to list: a faded icon over
// "No communications received yet". Made by the plugin on request; the host owns it once shown.

#include <QWidget>

class CEmptyListWidget : public QWidget
{
    Q_OBJECT
public:
    static constexpr int kMargin = 24;
    static constexpr int kIconSize = 96;
    static constexpr qreal kIconOpacity = 0.6;
    static constexpr int kTextPointSize = 11;

    explicit CEmptyListWidget(const QString& iconName);
    ~CEmptyListWidget() override;
};
