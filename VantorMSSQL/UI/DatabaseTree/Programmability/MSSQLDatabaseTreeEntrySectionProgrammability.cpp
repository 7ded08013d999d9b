#include "UI/DatabaseTree/Programmability/MSSQLDatabaseTreeEntrySectionProgrammability.h"

#include "UI/DatabaseTree/Programmability/Functions/MSSQLDatabaseTreeEntrySectionFunctions.h"
#include "UI/DatabaseTree/Programmability/StoredProcedures/MSSQLDatabaseTreeEntrySectionStoredProcedures.h"
#include "UI/DatabaseTree/Programmability/Types/MSSQLDatabaseTreeEntrySectionTypes.h"

KNMenu MSSQLDatabaseTreeEntrySectionProgrammability::menu()
{
    return {QStringLiteral("Test"), {newQueryMenuItem()}};
}

KNDatabaseTreeEntry::List MSSQLDatabaseTreeEntrySectionProgrammability::makeEntries()
{
    // Database triggers are not shown.
    return {make<MSSQLDatabaseTreeEntrySectionStoredProcedures>(),
            make<MSSQLDatabaseTreeEntrySectionFunctions>(), make<MSSQLDatabaseTreeEntrySectionTypes>()};
}
