#include "DatabaseTree/KNMenu.h"

#include <algorithm>

void KNMenu::extend(const KNMenu &additional)
{
    for (const KNMenuItem &item : additional.items) {
        const auto same = std::find_if(items.begin(), items.end(), [&](const KNMenuItem &existing) {
            return existing.submenu && item.submenu && existing.title == item.title;
        });
        if (same == items.end()) {
            items.push_back(item);
            continue;
        }
        KNMenu extended = *same->submenu;
        extended.extend(*item.submenu);
        same->submenu = std::make_shared<const KNMenu>(std::move(extended));
    }
}

void KNMenu::addGroup(const std::vector<KNMenuItem> &group)
{
    if (group.empty())
        return;
    if (!items.empty())
        items.push_back(KNMenuItem::separator());
    items.insert(items.end(), group.begin(), group.end());
}
