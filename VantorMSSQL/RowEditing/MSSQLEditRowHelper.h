#pragma once

#include "RowEditing/KNEditRowHelper.h"

/// One row of a table of SQL Server. Statements run on pooled connections.
class MSSQLEditRowHelper : public KNEditRowHelper
{
public:
    using KNEditRowHelper::KNEditRowHelper;

    /// Without a schema, reads the table of this name in the login's default schema.
    void loadTableColumns() override;
    KNStatementPair generateQuery() const override;
    KNStatementPair generateInsert() const;
    KNStatementPair generateUpdate() const;
    /// The corrected form has no statement when nothing is modified; that is an error.
    bool applyChanges(bool corrected, KNError *error) override;

private:
    void readRow(const QString &sql, KNError *error);
};
