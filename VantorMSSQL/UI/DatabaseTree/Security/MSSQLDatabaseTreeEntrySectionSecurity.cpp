#include "UI/DatabaseTree/Security/MSSQLDatabaseTreeEntrySectionSecurity.h"

#include "UI/DatabaseTree/Security/MSSQLDatabaseTreeEntrySectionPrincipals.h"

KNDatabaseTreeEntry::List MSSQLDatabaseTreeEntrySectionSecurity::makeEntries()
{
    using Section = MSSQLDatabaseTreeEntrySectionPrincipals;
    return {make<Section>(m_scope, Section::Kind::Individuals), make<Section>(m_scope, Section::Kind::Roles)};
}
