#pragma once

#include "KNSharedExport.h"

#include <QString>

#include <memory>
#include <variant>

class KNDatabaseTreeContextHelper;
class KNDatabaseTreeEntry;
class KNMenu;
class KNQueryLoader;

/// What a menu's action works on: nothing, a text, an entry of the tree or a script.
using KNMenuRepresentedObject = std::variant<std::monostate, QString, std::shared_ptr<KNDatabaseTreeEntry>,
                                             std::shared_ptr<KNQueryLoader>>;

/// One item of a menu, as data: a separator, a submenu, or an action that its target carries out by name.
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

    /// Whether choosing the item does anything: its target knows the action and there is something to do it
    /// with, or one item of its submenu is enabled.
    bool isEnabled() const;
    /// Carries the action out; false when the item is not enabled. On the UI thread.
    bool perform() const;
};
