#include "UI/DatabaseTree/Programmability/StoredProcedures/MSSQLDatabaseTreeEntrySectionStoredProcedures.h"

#include "Foundation/KNFormat.h"
#include "UI/DatabaseTree/Programmability/StoredProcedures/MSSQLDatabaseTreeEntryStoredProcedure.h"

MSSQLDatabaseTreeEntrySectionStoredProcedures::MSSQLDatabaseTreeEntrySectionStoredProcedures()
    : MSSQLCatalogSection({
          .errorDomain = "mssqsql.databaseTree.loadProcedures",
          .retry = Retry::Never,
          .protocol = {.finishes = Finishes::OnBackgroundThread},
      })
{
}

void MSSQLDatabaseTreeEntrySectionStoredProcedures::removeChild(const Ptr &child)
{
    removeChildOrFail(
        child, "Procedure does not exist in parent.",
        "UI/DatabaseTree/Programmability/StoredProcedures/MSSQLDatabaseTreeEntrySectionStoredProcedures");
}

KNMenu MSSQLDatabaseTreeEntrySectionStoredProcedures::menu()
{
    return {QStringLiteral("Root"),
            {actionItem("New Stored Procedure",
                        "addQueryTab:", MSSQLTreeCatalog::text(*this, "NewStoredProcedure")),
             newQueryMenuItem(), refreshMenuItem()}};
}

QString MSSQLDatabaseTreeEntrySectionStoredProcedures::catalogQuery()
{
    return MSSQLTreeCatalog::text(*this, "List_StoredProceduresInDatabase_NonSystem");
}

KNDatabaseTreeEntry::Ptr
MSSQLDatabaseTreeEntrySectionStoredProcedures::entryForRow(const DatabaseResultSet &row)
{
    const QString schema = row.stringForColumnIndex(0);
    const QString name = row.stringForColumnIndex(1);
    return make<MSSQLDatabaseTreeEntryStoredProcedure>(KNFormat("%@.%@", schema, name), schema, name);
}
