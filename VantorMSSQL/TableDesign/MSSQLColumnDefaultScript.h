#pragma once

#include "QueryLoader/KNStatementPair.h"
#include "TableDesign/MSSQLDesignedTable.h"

/// The script for an edit of a column's default. Pure, any thread.
class MSSQLColumnDefaultScript
{
public:
    /// The texts of "Table_RemoveDefaultForColumn" and "Table_ReplaceDefaultForColumn" for the server's
    /// version, their placeholders unfilled.
    struct Templates
    {
        QString remove;
        QString replace;
    };

    MSSQLColumnDefaultScript(MSSQLDesignedTable table, Templates templates);

    /// Null or empty text removes the default. Otherwise the exact script writes every apostrophe of the new
    /// default as a double quote, which the template turns back.
    KNStatementPair change(const QString &columnName, const QString &newDefault) const;

private:
    MSSQLDesignedTable m_table;
    Templates m_templates;
};
