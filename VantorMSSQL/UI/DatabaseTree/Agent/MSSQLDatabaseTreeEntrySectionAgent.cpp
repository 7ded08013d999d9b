#include "UI/DatabaseTree/Agent/MSSQLDatabaseTreeEntrySectionAgent.h"

#include "UI/DatabaseTree/Agent/MSSQLDatabaseTreeEntrySectionAgentJobs.h"

KNDatabaseTreeEntry::List MSSQLDatabaseTreeEntrySectionAgent::makeEntries()
{
    return {make<MSSQLDatabaseTreeEntrySectionAgentJobs>()};
}
