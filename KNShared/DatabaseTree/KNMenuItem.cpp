#include "DatabaseTree/KNMenuItem.h"

#include "DatabaseTree/KNDatabaseTreeContextHelper.h"
#include "DatabaseTree/KNMenu.h"

#include <algorithm>

namespace {

/// Whether the object is a null entry or script.
bool isMissing(const KNMenuRepresentedObject &object)
{
    const auto *const entry = std::get_if<std::shared_ptr<KNDatabaseTreeEntry>>(&object);
    const auto *const script = std::get_if<std::shared_ptr<KNQueryLoader>>(&object);
    return (entry && !*entry) || (script && !*script);
}

} // namespace

KNMenuItem KNMenuItem::separator()
{
    KNMenuItem item;
    item.isSeparator = true;
    return item;
}

KNMenuItem KNMenuItem::withSubmenu(const QString &title, KNMenu submenu)
{
    KNMenuItem item;
    item.title = title;
    item.submenu = std::make_shared<const KNMenu>(std::move(submenu));
    return item;
}

bool KNMenuItem::isEnabled() const
{
    if (submenu)
        return std::any_of(submenu->items.begin(), submenu->items.end(),
                           [](const KNMenuItem &item) { return item.isEnabled(); });
    return target && target->knowsAction(action) && !isMissing(representedObject);
}

bool KNMenuItem::perform() const
{
    return isEnabled() && target && target->performAction(action, representedObject);
}
