#pragma once

#include "DatabaseTree/KNDatabaseTreeFixedEntry.h"

enum class MSSQLPrincipalScope { Server, Database };

/// The logins and roles of a server, or the users and roles of a database. Read-only.
class MSSQLDatabaseTreeEntrySectionSecurity : public KNDatabaseTreeFixedEntry
{
public:
    explicit MSSQLDatabaseTreeEntrySectionSecurity(MSSQLPrincipalScope scope)
        : m_scope(scope)
    {
    }

    QString displayName() const override { return QStringLiteral("Security"); }
    QString image() const override { return QStringLiteral("DatabaseTree-Folder"); }

protected:
    List makeEntries() override;

private:
    const MSSQLPrincipalScope m_scope;
};
