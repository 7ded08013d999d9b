#pragma once

#include "Scripts/MSSQLScriptQueryLoader.h"

/// The CREATE script of a table, with everything that belongs to it. Names are not escaped.
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

    /// The script; null when there is no such table or it failed, which is reported. `report` may be null.
    /// Blocks on the server.
    static QString creationQueryForTable(const QString &table, const QString &inSchema,
                                         const VantorDBC &withConnectionDetails,
                                         KNQueryReport *report = nullptr);

protected:
    QString script(const VantorDBC &details, KNQueryReport *report) const override;

private:
    QString m_tableName;
    QString m_targetSchema;
};
