#pragma once

#include "DatabaseTree/KNMenuItem.h"
#include "KNSharedExport.h"

#include <vector>

/// A menu as data, displayed by the host. The title is for submenus and for code that lists menus.
class KNSHARED_EXPORT KNMenu
{
public:
    QString title;
    std::vector<KNMenuItem> items;

    /// Appends items. A submenu with the title of an existing one extends that one.
    void extend(const KNMenu &additional);
    /// Appends items after a separator, which an empty menu does not need.
    void addGroup(const std::vector<KNMenuItem> &group);
};
