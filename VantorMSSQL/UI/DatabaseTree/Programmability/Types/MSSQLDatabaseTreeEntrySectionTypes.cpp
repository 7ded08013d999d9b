#include "UI/DatabaseTree/Programmability/Types/MSSQLDatabaseTreeEntrySectionTypes.h"

#include "UI/DatabaseTree/MSSQLTreeCatalog.h"
#include "UI/DatabaseTree/Programmability/Types/MSSQLDatabaseTreeEntrySectionTypeSection.h"

KNMenu MSSQLDatabaseTreeEntrySectionTypes::menu()
{
    return {QStringLiteral("Root"),
            {actionItem("New Function", "addQueryTab:", MSSQLTreeCatalog::text(*this, "NewFunction")),
             refreshMenuItem()}};
}

KNDatabaseTreeEntry::List MSSQLDatabaseTreeEntrySectionTypes::makeEntries()
{
    // Other types are not shown.
    return {make<MSSQLDatabaseTreeEntrySectionTypeSection>(0),
            make<MSSQLDatabaseTreeEntrySectionTypeSection>(1)};
}
