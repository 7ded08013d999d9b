#pragma once

#include "Export/KNDatabaseScripter.h"
#include "Scripts/MSSQLScriptQueryLoader.h"

/// A table with its rows as a script for MySQL.
class MSSQLScriptTableAsMySQLQueryLoader : public MSSQLScriptQueryLoader
{
public:
    /// Names are not escaped.
    MSSQLScriptTableAsMySQLQueryLoader(const QString &tableName, const QString &inSchema, bool includeDrop,
                                       bool includeCreate, bool includeInserts)
        : m_targetTableName(tableName)
        , m_targetSchema(inSchema)
        , m_shouldIncldueDrop(includeDrop)
        , m_shouldIncludeCreate(includeCreate)
        , m_shouldIncludeInserts(includeInserts)
    {
    }

    const QString &targetTableName() const { return m_targetTableName; }
    const QString &targetSchema() const { return m_targetSchema; }
    bool shouldIncldueDrop() const { return m_shouldIncldueDrop; }
    bool shouldIncludeCreate() const { return m_shouldIncludeCreate; }
    bool shouldIncludeInserts() const { return m_shouldIncludeInserts; }

    /// The script, with comments in place of failed parts. Failures are shown to the user and recorded in
    /// `report`, which may be null. Blocks on the server.
    static QString creationQueryForTable(const QString &table, const QString &inSchema, bool includeDrop,
                                         bool includeCreate, bool includeInserts,
                                         const VantorDBC &withConnectionDetails,
                                         KNQueryReport *report = nullptr);

    /// The same, written in UTF-8 while rows arrive: only some thousand of them are in memory at a time.
    /// `control` can stop the reading of rows and receives their number.
    static void writeCreationQueryForTable(const QString &table, const QString &inSchema, bool includeDrop,
                                           bool includeCreate, bool includeInserts,
                                           const VantorDBC &withConnectionDetails, QIODevice &device,
                                           KNQueryReport *report, const KNScriptControl &control = {});

    bool writeQuery(const VantorDBC &details, QIODevice &device, KNQueryReport *report) const override;

    /// The bytes of the longest value in a column; 0 when there is none or it failed, which is shown to the
    /// user and set in `error`; that may be null. Blocks on the server.
    static qint64 largestSizeOfDatabaseColumn(const QString &column, const QString &inTable,
                                              const QString &inSchema, const VantorDBC &connectionDetails,
                                              KNError *error = nullptr);

protected:
    QString script(const VantorDBC &details, KNQueryReport *report) const override;

private:
    QString m_targetTableName;
    QString m_targetSchema;
    bool m_shouldIncldueDrop;
    bool m_shouldIncludeCreate;
    bool m_shouldIncludeInserts;
};
