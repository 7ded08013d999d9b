#pragma once

#include "UI/DatabaseTree/MSSQLCatalogSection.h"
#include "UI/DatabaseTree/Security/MSSQLDatabaseTreeEntrySectionSecurity.h"

/// The logins, users or roles that this login may see, with their kind as details.
class MSSQLDatabaseTreeEntrySectionPrincipals : public MSSQLCatalogSection
{
public:
    enum class Kind {
        Individuals, ///< logins or users
        Roles
    };

    MSSQLDatabaseTreeEntrySectionPrincipals(MSSQLPrincipalScope scope, Kind kind);

    QString displayName() const override;
    KNMenu menu() override;

protected:
    QString catalogQuery() override;
    Ptr entryForRow(const DatabaseResultSet &row) override;

private:
    const MSSQLPrincipalScope m_scope;
    const Kind m_kind;
};
