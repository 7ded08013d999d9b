#include "UI/DatabaseTree/Security/MSSQLDatabaseTreeEntrySectionPrincipals.h"

#include "Foundation/KNFormat.h"
#include "UI/DatabaseTree/Security/MSSQLDatabaseTreeEntryPrincipal.h"

namespace {

bool isRole(const QString &kind)
{
    return kind.endsWith(QLatin1String("_ROLE"));
}

} // namespace

MSSQLDatabaseTreeEntrySectionPrincipals::MSSQLDatabaseTreeEntrySectionPrincipals(MSSQLPrincipalScope scope,
                                                                                 Kind kind)
    : MSSQLCatalogSection({
          .errorDomain = "mssql.databaseTree.loadPrincipals",
          .retry = Retry::OnError,
          .protocol = {.finishes = Finishes::OnMainQueue},
      })
    , m_scope(scope)
    , m_kind(kind)
{
}

QString MSSQLDatabaseTreeEntrySectionPrincipals::displayName() const
{
    const bool isOfServer = m_scope == MSSQLPrincipalScope::Server;
    if (m_kind == Kind::Roles)
        return isOfServer ? QStringLiteral("Server Roles") : QStringLiteral("Roles");
    return isOfServer ? QStringLiteral("Logins") : QStringLiteral("Users");
}

KNMenu MSSQLDatabaseTreeEntrySectionPrincipals::menu()
{
    return {QStringLiteral("Root"), {refreshMenuItem()}};
}

QString MSSQLDatabaseTreeEntrySectionPrincipals::catalogQuery()
{
    return MSSQLTreeCatalog::text(*this, m_scope == MSSQLPrincipalScope::Server ? "List_ServerPrincipals"
                                                                                : "List_DatabasePrincipals");
}

KNDatabaseTreeEntry::Ptr MSSQLDatabaseTreeEntrySectionPrincipals::entryForRow(const DatabaseResultSet &row)
{
    const QString kind = row.stringForColumnIndex(1);
    if (isRole(kind) != (m_kind == Kind::Roles))
        return nullptr;
    auto principal = make<MSSQLDatabaseTreeEntryPrincipal>();
    principal->setDisplayName(row.stringForColumnIndex(0));
    const bool isDisabled = row.objectForColumnIndex(2).toBool();
    const QString details = kind.toLower().replace(QLatin1Char('_'), QLatin1Char(' '));
    principal->setDetails(isDisabled ? KNFormat("%@, disabled", details) : details);
    principal->setIsDimmed(isDisabled);
    principal->setImage(isRole(kind) ? QStringLiteral("DatabaseTree-Role")
                                     : QStringLiteral("DatabaseTree-User"));
    return principal;
}
