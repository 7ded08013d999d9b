#include "UI/DatabaseTree/MSSQLDatabaseTreeContextHelper.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryDatabase.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryDatabaseTable.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntrySectionTables.h"
#include "UI/DatabaseTree/Programmability/Functions/MSSQLDatabaseTreeEntryFunction.h"
#include "UI/DatabaseTree/Programmability/StoredProcedures/MSSQLDatabaseTreeEntryStoredProcedure.h"
#include "UI/Scripts/KNGenerateScriptsWindowController.h"

namespace {

using IsChecked = KNScriptObjectModel::IsChecked;

template <typename Entry>
const Entry *entryAs(const KNDatabaseTreeEntry::Ptr &entry)
{
    return dynamic_cast<const Entry *>(entry.get());
}

IsChecked isNamed(const QString &schema, const QString &name)
{
    return [schema, name](const KNScriptObject &object) {
        return object.schema == schema && object.name == name &&
               !object.kind.endsWith(QLatin1String("TYPE")); // types have names of their own
    };
}

/// The objects that an entry of the tree stands for; empty if it stands for none.
IsChecked objectsOf(const KNDatabaseTreeEntry::Ptr &entry)
{
    if (entryAs<MSSQLDatabaseTreeEntryDatabase>(entry))
        return [](const KNScriptObject &) { return true; };
    if (entryAs<MSSQLDatabaseTreeEntrySectionTables>(entry))
        return [](const KNScriptObject &object) { return object.hasRows; };
    if (const auto *const table = entryAs<MSSQLDatabaseTreeEntryDatabaseTable>(entry))
        return isNamed(table->schema(), table->tableName());
    if (const auto *const function = entryAs<MSSQLDatabaseTreeEntryFunction>(entry))
        return isNamed(function->schema(), function->functionName());
    if (const auto *const procedure = entryAs<MSSQLDatabaseTreeEntryStoredProcedure>(entry))
        return isNamed(procedure->schema(), procedure->procedureName());
    return {};
}

} // namespace

void MSSQLDatabaseTreeContextHelper::addScriptActions()
{
    addEntryAction<KNDatabaseTreeEntry>(
        QStringLiteral("generateScripts:"),
        [](KNWorkspace &workspace, const KNDatabaseTreeEntry::Ptr &entry) {
            const IsChecked isChecked = objectsOf(entry);
            if (isChecked)
                (new KNGenerateScriptsWindowController(entry->databaseConnectionDetails(), isChecked,
                                                       workspace.sheetParent()))
                    ->beginSheet({});
        });
}
