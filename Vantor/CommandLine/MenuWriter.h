#pragma once

#include "DatabaseTree/KNMenu.h"

/// Writes a menu to standard output, one line for each item: its title, its action, the object of the action,
/// and whether it is disabled or checked. Submenus are indented.
void writeMenu(const KNMenu &menu);
