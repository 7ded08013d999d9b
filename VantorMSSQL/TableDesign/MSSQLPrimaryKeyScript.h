#pragma once

#include "Catalog/MSSQLColumnRecord.h"
#include "Catalog/MSSQLPrimaryKeyRecord.h"
#include "TableDesign/MSSQLIndexScript.h"

/// The script that adds a column to a table's primary key or takes it out. Pure, any thread.
class MSSQLPrimaryKeyScript
{
public:
    /// `dropTemplate` is the text of "Table_DropPrimaryKey" for the server's version, unfilled.
    MSSQLPrimaryKeyScript(MSSQLDesignedTable table, QString dropTemplate,
                          MSSQLIndexSyntax syntax = MSSQLIndexSyntax::Current);

    /// Whether the change is refused because the column would become part of the key while it takes NULL.
    static bool needsNotNull(const MSSQLColumnRecord &column, bool becomesKey);
    /// `columns` in the table's order, as they are before. Drops the key there is and adds one of the columns
    /// that remain, the added column last. The corrected script keeps the name of the `key` there is, its
    /// order, its sort orders and whether it is clustered, and the fill factor, options, compression and data
    /// space of its `index`. Nothing when the column is unknown, refused, or that already.
    KNStatementPair change(const QList<MSSQLColumnRecord> &columns, const QString &columnName,
                           bool becomesKey, const MSSQLPrimaryKeyRecord &key = {},
                           const MSSQLIndexDefinition &index = {}) const;

private:
    KNStatementPair addition(const QStringList &names, const MSSQLPrimaryKeyRecord &key,
                             const MSSQLIndexDefinition &index) const;
    QString correctedAddition(const QStringList &names, const MSSQLPrimaryKeyRecord &key) const;
    MSSQLIndexCreation creation(const MSSQLPrimaryKeyRecord &key, const MSSQLIndexDefinition &index) const;

    MSSQLDesignedTable m_table;
    QString m_dropTemplate;
    MSSQLIndexSyntax m_syntax;
};
