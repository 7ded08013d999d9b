#pragma once

#include "DatabaseTree/KNDatabaseTreeEntry.h"

/// A parameter of a stored procedure, with its type as details.
class MSSQLDatabaseTreeEntryStoredProcedureParameter : public KNDatabaseTreeEntry
{
public:
    QString image() const override { return QStringLiteral("DatabaseTree-StoredProcedureParameter"); }
};
