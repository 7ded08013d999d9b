#pragma once

#include "DatabaseTree/KNMenu.h"

/// Writes a menu to standard output, a line for each item: its title, its action, what that works on, and
/// whether it is disabled or checked. Submenus are indented.
void writeMenu(const KNMenu &menu);
