#pragma once

#include "DatabaseTree/KNMenuItem.h"

#include <vector>

/// A menu as data, which the host's view shows. The title is for submenus and for who lists menus.
class KNMenu
{
public:
    QString title;
    std::vector<KNMenuItem> items;
};
