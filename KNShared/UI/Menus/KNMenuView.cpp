#include "UI/Menus/KNMenuView.h"

#include "DatabaseTree/KNDatabaseTreeContextHelper.h"

#include <QCoreApplication>
#include <QMenu>

namespace {

/// Escapes ampersands, which would become mnemonics.
QString literal(QString title)
{
    return title.replace(QLatin1Char('&'), QStringLiteral("&&"));
}

bool isForLater(const KNMenuItem &item)
{
    return !item.action.isNull() && !(item.target && item.target->knowsAction(item.action));
}

} // namespace

void KNMenuView::fill(QMenu &view, const KNMenu &menu)
{
    view.setToolTipsVisible(true);
    for (const KNMenuItem &item : menu.items) {
        if (item.isSeparator) {
            view.addSeparator();
        } else if (item.submenu) {
            QMenu *const submenu = view.addMenu(literal(item.title));
            fill(*submenu, *item.submenu);
            submenu->menuAction()->setEnabled(item.isEnabled());
        } else {
            QAction *const action = view.addAction(literal(item.title), &view, [item] { item.perform(); });
            action->setObjectName(item.action);
            action->setEnabled(item.isEnabled());
            action->setCheckable(item.isChecked);
            action->setChecked(item.isChecked);
            if (isForLater(item))
                action->setToolTip(QCoreApplication::translate("KNMenuView", "This is not available yet."));
        }
    }
}
