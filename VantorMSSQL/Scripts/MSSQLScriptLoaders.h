#pragma once

#include "QueryLoader/KNQueryLoader.h"

/// The scripts that menus offer for an object.
enum class MSSQLScript {
    CreateTable,
    DropAndCreateTable,
    TableAsMySQL,
    TablesAsMySQL, ///< of the whole database: has no name and no schema
    CreateView,
    AlterView,
    DropView, ///< also of tables
    DropAndCreateView,
    CreateStoredProcedure,
    AlterStoredProcedure,
    DropStoredProcedure,
    DropAndCreateStoredProcedure,
    CreateFunction,
    AlterFunction,
    DropFunction,
    DropAndCreateFunction,
    CreateType,
    DropType,
    DropAndCreateType,
};

/// The one place where menus get the loaders of their scripts.
namespace MSSQLScriptLoaders {

/// A new loader of this script for the object, whose names are not escaped; null when there is no generator
/// for it, and menus then show the script disabled.
KNQueryLoaderPtr loader(MSSQLScript script, const QString &name, const QString &inSchema);

} // namespace MSSQLScriptLoaders
