#include "UI/Menus/KNMenuView.h"

#include "DatabaseTree/KNDatabaseTreeContextHelper.h"

#include <QCoreApplication>
#include <QMenu>

#include <algorithm>

namespace {

/// Escapes ampersands, which would become mnemonics.
QString literal(QString title)
{
    return title.replace(QLatin1Char('&'), QStringLiteral("&&"));
}

/// The reason why the item is disabled, for its tool tip.
QString disabledReason(const KNMenuItem &item)
{
    const bool isUnknown = !item.submenu && !(item.target && item.target->knowsAction(item.action));
    return isUnknown ? QCoreApplication::translate("KNMenuView", "This is not available yet.")
                     : QCoreApplication::translate("KNMenuView", "There is nothing that this could act on.");
}

/// The items with the disabled ones at the end of each group.
std::vector<KNMenuItem> inDisplayOrder(std::vector<KNMenuItem> items)
{
    const auto isEnabled = [](const KNMenuItem &item) { return item.isEnabled(); };
    for (auto first = items.begin(); first != items.end();) {
        const auto end = std::find_if(first, items.end(), [](const KNMenuItem &i) { return i.isSeparator; });
        std::stable_partition(first, end, isEnabled);
        first = end == items.end() ? end : std::next(end);
    }
    return items;
}

void addAction(QMenu &view, const KNMenuItem &item)
{
    QAction *const action = view.addAction(literal(item.title), &view, [item] { item.perform(); });
    action->setObjectName(item.action);
    action->setEnabled(item.isEnabled());
    action->setCheckable(item.isChecked);
    action->setChecked(item.isChecked);
    if (!item.isEnabled())
        action->setToolTip(disabledReason(item));
}

} // namespace

void KNMenuView::fill(QMenu &view, const KNMenu &menu)
{
    view.setToolTipsVisible(true);
    for (const KNMenuItem &item : inDisplayOrder(menu.items)) {
        if (item.isSeparator) {
            view.addSeparator();
        } else if (item.submenu) {
            QMenu *const submenu = view.addMenu(literal(item.title));
            fill(*submenu, *item.submenu);
            submenu->menuAction()->setEnabled(item.isEnabled());
            if (!item.isEnabled())
                submenu->menuAction()->setToolTip(disabledReason(item));
        } else {
            addAction(view, item);
        }
    }
}
