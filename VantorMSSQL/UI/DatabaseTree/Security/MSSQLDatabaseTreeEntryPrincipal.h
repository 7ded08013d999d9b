#pragma once

#include "DatabaseTree/KNDatabaseTreeEntry.h"
#include "Implementations/MSSQLObjectPath.h"

/// A login, user or role.
class MSSQLDatabaseTreeEntryPrincipal : public KNDatabaseTreeEntry
{
public:
    QString dragDropString() const override { return MSSQLObjectPath::readable({displayName()}); }
    bool isDimmed() const override { return m_isDimmed; }
    void setIsDimmed(bool isDimmed) { m_isDimmed = isDimmed; }

private:
    bool m_isDimmed = false;
};
