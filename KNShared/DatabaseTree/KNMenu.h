#pragma once

#include "DatabaseTree/KNMenuItem.h"

#include <vector>

/// A menu as data, displayed by the host. The title is for submenus and for code that lists menus.
class KNMenu
{
public:
    QString title;
    std::vector<KNMenuItem> items;
};
