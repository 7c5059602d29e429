#include "ui/actionmenu.h"

#include "ui/appcolors.h"

#include <QStyleOptionMenuItem>

namespace quillfern {

namespace {

constexpr char destructiveProperty[] = "quillfernDestructive";

} // namespace

ActionMenu::ActionMenu(QWidget *parent)
    : QMenu(parent)
{
}

QAction *ActionMenu::addDestructiveAction(const QString &text)
{
    QAction *action = addAction(text);
    action->setProperty(destructiveProperty, true);
    return action;
}

bool ActionMenu::isDestructive(const QAction *action)
{
    return action->property(destructiveProperty).toBool();
}

void ActionMenu::initStyleOption(QStyleOptionMenuItem *option, const QAction *action) const
{
    QMenu::initStyleOption(option, action);
    if (!isDestructive(action) || !action->isEnabled())
        return;
    // Styles draw item text from different roles; the highlighted item keeps its own text colour.
    for (QPalette::ColorRole role : {QPalette::Text, QPalette::ButtonText, QPalette::WindowText})
        option->palette.setColor(role, AppColors::danger());
}

} // namespace quillfern
