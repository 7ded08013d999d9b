#include "UI/DatabaseTree/Agent/MSSQLDatabaseTreeEntrySectionAgentJobs.h"

#include "UI/DatabaseTree/Agent/MSSQLDatabaseTreeEntryAgentJob.h"

MSSQLDatabaseTreeEntrySectionAgentJobs::MSSQLDatabaseTreeEntrySectionAgentJobs()
    : MSSQLCatalogSection({
          .errorDomain = "mssqsql.databaseTree.loadJobs",
          .retry = Retry::Never,
          .protocol = {.returnsOnceStarted = false, .finishes = Finishes::OnBackgroundThread},
      })
{
}

KNMenu MSSQLDatabaseTreeEntrySectionAgentJobs::menu()
{
    return {QStringLiteral("Root"),
            {actionItem("New job", "SQLAgentCreateJob:"), KNMenuItem::separator(), refreshMenuItem()}};
}

QString MSSQLDatabaseTreeEntrySectionAgentJobs::catalogQuery()
{
    return MSSQLTreeCatalog::text(*this, "List_AgentJobs");
}

KNDatabaseTreeEntry::Ptr MSSQLDatabaseTreeEntrySectionAgentJobs::entryForRow(const DatabaseResultSet &row)
{
    return make<MSSQLDatabaseTreeEntryAgentJob>(row.objectForColumnIndex(0), row.stringForColumnIndex(1));
}
