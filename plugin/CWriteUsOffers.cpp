#include "CWriteUsOffers.h"

#include "CControlLookup.h"
#include "ConfigurableObjects.h"

#include <QLabel>
#include <QShortcut>
#include <QToolButton>

namespace {

// The write-us links beside the one of the empty page, which every form has.
const char* const kOtherLinks[] = {"folderWriteUsLabel", "noThreadWriteUsLabel", "entryWriteUsLabel"};
const char* const kHeaderButton = "newConversationButton";

} // namespace

bool CWriteUsOffers::allowed()
{
    return ConfigurableObjects::isAllowed(QStringLiteral("allowUseIncidents")) &&
           !ConfigurableObjects::isAllowed(QStringLiteral("useZendeskTickets"));
}

void CWriteUsOffers::attach(QWidget* view, QObject* context, const std::function<void()>& open)
{
    QList<QLabel*> links{CControlLookup::find<QLabel>(view, QStringLiteral("writeUsLabel"))};
    for (const char* name : kOtherLinks) {
        if (auto* link = view->findChild<QLabel*>(QLatin1String(name)))
            links << link;
    }
    auto* button = view->findChild<QToolButton*>(QLatin1String(kHeaderButton));

    if (!allowed()) {
        // An empty link offers nothing and takes no room; the news page shows its link only when it has one.
        for (QLabel* link : std::as_const(links))
            link->setText(QString());
        if (button)
            button->hide();
        return;
    }
    for (QLabel* link : std::as_const(links)) {
        link->setAccessibleName(QObject::tr("Write us a message"));
        QObject::connect(link, &QLabel::linkActivated, context, open);
    }
    if (button) {
        button->setAccessibleName(QObject::tr("New conversation"));
        QObject::connect(button, &QToolButton::clicked, context, open);
    }
    auto* shortcut = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_N), view);
    shortcut->setContext(Qt::WidgetWithChildrenShortcut);
    QObject::connect(shortcut, &QShortcut::activated, context, open);
}
