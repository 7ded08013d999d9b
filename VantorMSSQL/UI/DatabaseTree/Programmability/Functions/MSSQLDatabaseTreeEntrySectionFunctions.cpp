#include "UI/DatabaseTree/Programmability/Functions/MSSQLDatabaseTreeEntrySectionFunctions.h"

#include "UI/DatabaseTree/MSSQLTreeCatalog.h"
#include "UI/DatabaseTree/Programmability/Functions/MSSQLDatabaseTreeEntrySectionFunctionsSection.h"

void MSSQLDatabaseTreeEntrySectionFunctions::removeChild(const Ptr &child)
{
    removeChildOrFail(child, "Function does not exist in parent.",
                      "UI/DatabaseTree/Programmability/Functions/MSSQLDatabaseTreeEntrySectionFunctions");
}

KNMenu MSSQLDatabaseTreeEntrySectionFunctions::menu()
{
    return {QStringLiteral("Root"),
            {actionItem("New Function", "addQueryTab:", MSSQLTreeCatalog::text(*this, "NewFunction")),
             refreshMenuItem()}};
}

KNDatabaseTreeEntry::List MSSQLDatabaseTreeEntrySectionFunctions::makeEntries()
{
    // Aggregate functions are not shown.
    return {make<MSSQLDatabaseTreeEntrySectionFunctionsSection>(0),
            make<MSSQLDatabaseTreeEntrySectionFunctionsSection>(1)};
}
