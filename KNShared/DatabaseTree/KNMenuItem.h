#pragma once

#include "KNSharedExport.h"

#include <QString>

#include <memory>
#include <variant>

class KNDatabaseTreeContextHelper;
class KNDatabaseTreeEntry;
class KNMenu;
class KNQueryLoader;

/// The argument of a menu action: nothing, a text, a tree entry or a script.
using KNMenuRepresentedObject = std::variant<std::monostate, QString, std::shared_ptr<KNDatabaseTreeEntry>,
                                             std::shared_ptr<KNQueryLoader>>;

/// One menu item as data: a separator, a submenu, or an action that its target performs by name.
struct KNSHARED_EXPORT KNMenuItem
{
    QString title;
    QString action; ///< the name of an operation of the target, such as "alterTable:"; null for none
    std::shared_ptr<KNDatabaseTreeContextHelper> target;
    KNMenuRepresentedObject representedObject;
    bool isChecked = false;
    bool isSeparator = false;
    std::shared_ptr<const KNMenu> submenu;

    static KNMenuItem separator();
    static KNMenuItem withSubmenu(const QString &title, KNMenu submenu);

    /// Whether choosing the item has an effect: its target knows the action and has an argument for it, or an
    /// item of its submenu is enabled.
    bool isEnabled() const;
    /// Performs the action; false if the item is not enabled. On the UI thread.
    bool perform() const;
};
