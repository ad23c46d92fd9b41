#include "CEmptyListWidget.h"

#include "CIconControl.h"
#include "HostColors.h"
#include "QtHelpersImages.h"

#include <QGraphicsOpacityEffect>
#include <QLabel>
#include <QVBoxLayout>

CEmptyListWidget::CEmptyListWidget(const QString& iconName)
    : QWidget(nullptr)
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    layout->setSpacing(0);
    layout->addStretch();

    auto* icon = new CIconControl(this);
    icon->setMinimumSize(kIconSize, kIconSize);
    icon->setIconSize(QSize(kIconSize, kIconSize));
    icon->setIcon(qtHelpers::images::icon(iconName));
    auto* fade = new QGraphicsOpacityEffect(icon);
    fade->setOpacity(kIconOpacity);
    icon->setGraphicsEffect(fade);
    layout->addWidget(icon);

    auto* label = new QLabel(QObject::tr("No communications received yet"), this);
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignCenter);
    QFont font = label->font();
    font.setPointSize(kTextPointSize);
    font.setWeight(QFont::Normal);
    label->setFont(font);
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, getPaletteColor(clrPlaceholderText));
    label->setPalette(palette);
    layout->addWidget(label);
    layout->addStretch();
}

CEmptyListWidget::~CEmptyListWidget() = default;
