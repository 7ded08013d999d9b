#pragma once

#include "Scripts/MSSQLScriptQueryLoader.h"

/// A statement on a table, view or procedure for the user to complete, with its columns or parameters.
class MSSQLScriptStatementQueryLoader : public MSSQLScriptQueryLoader
{
public:
    enum class Statement { Select, Insert, Update, Execute };

    /// Names are not escaped. Execute is for procedures, the others are for tables and views.
    MSSQLScriptStatementQueryLoader(Statement statement, const QString &schema, const QString &object)
        : m_statement(statement)
        , m_schema(schema)
        , m_object(object)
    {
    }

protected:
    QString script(const VantorDBC &details, KNQueryReport *report) const override;

private:
    QString execution(const VantorDBC &details, KNError *error) const;

    const Statement m_statement;
    const QString m_schema;
    const QString m_object;
};
