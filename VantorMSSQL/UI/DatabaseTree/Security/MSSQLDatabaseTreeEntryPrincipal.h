#pragma once

#include "DatabaseTree/KNDatabaseTreeEntry.h"

/// A login, user or role.
class MSSQLDatabaseTreeEntryPrincipal : public KNDatabaseTreeEntry
{
public:
    QList<QStringList> dragNames() const override { return {{displayName()}}; }
    bool isDimmed() const override { return m_isDimmed; }
    void setIsDimmed(bool isDimmed) { m_isDimmed = isDimmed; }

private:
    bool m_isDimmed = false;
};
