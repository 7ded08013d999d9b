#include "UI/DatabaseTree/MSSQLDatabaseTreeEntrySectionFederations.h"

#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryFederation.h"

MSSQLDatabaseTreeEntrySectionFederations::MSSQLDatabaseTreeEntrySectionFederations()
    : MSSQLCatalogSection({
          .errorDomain = "mssqsql.databaseTree.loadFederations",
          .retry = Retry::Never,
          .protocol = {.finishes = Finishes::OnBackgroundThread},
      })
{
}

KNMenu MSSQLDatabaseTreeEntrySectionFederations::menu()
{
    return {QStringLiteral("Root"), {refreshMenuItem()}};
}

QString MSSQLDatabaseTreeEntrySectionFederations::catalogQuery()
{
    return MSSQLTreeCatalog::text(*this, "List_Federations");
}

KNDatabaseTreeEntry::Ptr MSSQLDatabaseTreeEntrySectionFederations::entryForRow(const DatabaseResultSet &row)
{
    auto federation = make<MSSQLDatabaseTreeEntryFederation>(
        row.stringForColumnIndex(2), row.stringForColumnIndex(3), row.stringForColumnIndex(4));
    federation->setDisplayName(row.stringForColumnIndex(1));
    return federation;
}
