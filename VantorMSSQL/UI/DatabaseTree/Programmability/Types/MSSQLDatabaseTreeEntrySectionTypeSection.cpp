#include "UI/DatabaseTree/Programmability/Types/MSSQLDatabaseTreeEntrySectionTypeSection.h"

#include "Foundation/KNFormat.h"
#include "UI/DatabaseTree/Programmability/Types/MSSQLDatabaseTreeEntryProgrammabilityType.h"

namespace {

struct TypeKind
{
    const char *name;
    const char *filter;
};

constexpr TypeKind TypeKinds[] = {
    {"User-Defined Data Types", "AND is_table_type = 0"},
    {"User-Defined Table Types", "AND is_table_type = 1"},
    {"User-Defined Types", ""},
};

TypeKind typeKindOf(int typeType)
{
    return typeType >= 0 && typeType < 3 ? TypeKinds[typeType] : TypeKind{"User-Defined Data Types", ""};
}

} // namespace

MSSQLDatabaseTreeEntrySectionTypeSection::MSSQLDatabaseTreeEntrySectionTypeSection(int typeType)
    : MSSQLCatalogSection({
          .errorDomain = "mssqsql.databaseTree.loadTypes",
          .retry = Retry::Never,
          .protocol = {.finishes = Finishes::OnBackgroundThread},
      })
    , m_typeType(typeType)
{
}

QString MSSQLDatabaseTreeEntrySectionTypeSection::displayName() const
{
    return QString::fromLatin1(typeKindOf(m_typeType).name);
}

void MSSQLDatabaseTreeEntrySectionTypeSection::removeChild(const Ptr &child)
{
    removeChildOrFail(child, "Type does not exist in parent.",
                      "UI/DatabaseTree/Programmability/Types/MSSQLDatabaseTreeEntrySectionTypeSection");
}

KNMenu MSSQLDatabaseTreeEntrySectionTypeSection::menu()
{
    return {QStringLiteral("Root"), {refreshMenuItem()}};
}

QString MSSQLDatabaseTreeEntrySectionTypeSection::catalogQuery()
{
    return MSSQLTreeCatalog::text(
        *this, "List_UserTypesByTypeInDatabase_NonSystem",
        {{QStringLiteral("EXTRA_WHERE_CLAUSE"), QString::fromLatin1(typeKindOf(m_typeType).filter)}});
}

KNDatabaseTreeEntry::Ptr MSSQLDatabaseTreeEntrySectionTypeSection::entryForRow(const DatabaseResultSet &row)
{
    const QString schema = row.stringForColumnIndex(0);
    const QString name = row.stringForColumnIndex(1);
    return make<MSSQLDatabaseTreeEntryProgrammabilityType>(KNFormat("%@.%@", schema, name), schema, name,
                                                           m_typeType);
}
