#include "UI/DatabaseTree/Programmability/Functions/MSSQLDatabaseTreeEntrySectionFunctionsSection.h"

#include "Foundation/KNFormat.h"
#include "UI/DatabaseTree/Programmability/Functions/MSSQLDatabaseTreeEntryFunction.h"

namespace {

struct FunctionKind
{
    const char *name;
    const char *filter;
};

constexpr FunctionKind FunctionKinds[] = {
    {"Table-valued Functions", "AND DATA_TYPE = 'TABLE'"},
    {"Scalar-valued Functions", "AND DATA_TYPE != 'TABLE'"},
    {"Aggregate Functions", ""},
};

FunctionKind kindOf(int functionType)
{
    return functionType >= 0 && functionType < 3 ? FunctionKinds[functionType]
                                                 : FunctionKind{"Functions", ""};
}

} // namespace

MSSQLDatabaseTreeEntrySectionFunctionsSection::MSSQLDatabaseTreeEntrySectionFunctionsSection(int functionType)
    : MSSQLCatalogSection({
          .errorDomain = "mssqsql.databaseTree.loadFunctions",
          .retry = Retry::Never,
          .protocol = {.finishes = Finishes::OnBackgroundThread},
      })
    , m_functionType(functionType)
{
}

QString MSSQLDatabaseTreeEntrySectionFunctionsSection::displayName() const
{
    return QString::fromLatin1(kindOf(m_functionType).name);
}

void MSSQLDatabaseTreeEntrySectionFunctionsSection::removeChild(const Ptr &child)
{
    removeChildOrFail(
        child, "Function does not exist in parent.",
        "UI/DatabaseTree/Programmability/Functions/MSSQLDatabaseTreeEntrySectionFunctionsSection");
}

KNMenu MSSQLDatabaseTreeEntrySectionFunctionsSection::menu()
{
    return {QStringLiteral("Root"),
            {actionItem("New Function", "addQueryTab:", MSSQLTreeCatalog::text(*this, "NewFunction")),
             refreshMenuItem()}};
}

QString MSSQLDatabaseTreeEntrySectionFunctionsSection::catalogQuery()
{
    return MSSQLTreeCatalog::text(
        *this, "List_FunctionsByTypeInDatabase_NonSystem",
        {{QStringLiteral("EXTRA_WHERE_CLAUSE"), QString::fromLatin1(kindOf(m_functionType).filter)}});
}

KNDatabaseTreeEntry::Ptr
MSSQLDatabaseTreeEntrySectionFunctionsSection::entryForRow(const DatabaseResultSet &row)
{
    const QString schema = row.stringForColumnIndex(0);
    const QString name = row.stringForColumnIndex(1);
    return make<MSSQLDatabaseTreeEntryFunction>(KNFormat("%@.%@", schema, name), schema, name);
}
