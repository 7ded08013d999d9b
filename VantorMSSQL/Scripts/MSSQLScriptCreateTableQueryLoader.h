#pragma once

#include "Scripts/MSSQLScriptQueryLoader.h"

/// The CREATE script of a table with its keys, indexes, constraints and triggers. Names are not escaped.
class MSSQLScriptCreateTableQueryLoader : public MSSQLScriptQueryLoader
{
public:
    MSSQLScriptCreateTableQueryLoader(const QString &tableName, const QString &inSchema)
        : m_tableName(tableName)
        , m_targetSchema(inSchema)
    {
    }

    const QString &tableName() const { return m_tableName; }
    void setTableName(const QString &tableName) { m_tableName = tableName; }
    const QString &targetSchema() const { return m_targetSchema; }

    /// The script; null if the table does not exist or an error occurred, which is reported. `report` may be
    /// null. Blocks on the server.
    static QString creationQueryForTable(const QString &table, const QString &inSchema,
                                         const VantorDBC &withConnectionDetails,
                                         KNQueryReport *report = nullptr);

protected:
    QString script(const VantorDBC &details, KNQueryReport *report) const override;

private:
    QString m_tableName;
    QString m_targetSchema;
};
