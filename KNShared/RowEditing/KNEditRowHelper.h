#pragma once

#include "Database/VantorDBC.h"
#include "Foundation/KNError.h"
#include "KNSharedExport.h"
#include "QueryLoader/KNStatementPair.h"
#include "RowEditing/KNEditRowColumn.h"

#include <QList>
#include <QMap>

#include <memory>
#include <optional>

/// One row of a table that a form edits or adds. Connectors subclass it. Used by one thread at a time; what
/// reads or writes the row waits for the server.
class KNSHARED_EXPORT KNEditRowHelper
{
public:
    using Settings = std::shared_ptr<const VantorDBC>;
    using Values = QMap<QString, KNValue>; ///< by column name
    /// How much of the changed row could be read again.
    enum class ReadBack {
        NotMade,  ///< its key is not known
        Failed,   ///< with the error of applyChanges(); the row was changed
        NotFound, ///< no row has its key
        Made,
    };

    /// Names without quotes; `schema` may be null or empty. `initialColumnValues` is the row to edit; nothing
    /// adds a new one.
    KNEditRowHelper(Settings details, const QString &schema, const QString &table,
                    std::optional<Values> initialColumnValues);
    virtual ~KNEditRowHelper();
    KNEditRowHelper(const KNEditRowHelper &) = delete;
    KNEditRowHelper &operator=(const KNEditRowHelper &) = delete;

    const VantorDBC &databaseConnectionDetails() const { return *m_details; }
    const QString &tableSchema() const { return m_tableSchema; }
    const QString &tableName() const { return m_tableName; }
    const std::optional<Values> &initialColumnValues() const { return m_initialColumnValues; }
    bool isNewRow() const { return !m_initialColumnValues; }

    const QList<KNEditRowColumn> &tableColumns() const { return m_tableColumns; }
    void setTableColumns(const QList<KNEditRowColumn> &columns) { m_tableColumns = columns; }
    /// Sets the value of a column, from 0, and marks it as modified.
    void setColumnValue(qsizetype column, const KNValue &value);
    bool hasModifications() const;
    /// Makes the current row the one to edit, with nothing modified.
    void editCurrentRow();
    /// Begins another new row.
    void beginNewRow();

    /// Reads the columns in the order of the table. After an error, which is logged, there are none.
    virtual void loadTableColumns() = 0;
    /// The statement for the current state, which changes the row or adds it.
    virtual KNStatementPair generateQuery() const = 0;
    /// Runs the statement, in its corrected form if asked to, and reads the row again. True without an error;
    /// otherwise the values stay as they are. `error` must not be null.
    virtual bool applyChanges(bool corrected, KNError *error) = 0;
    /// The result of reading the row again in the last applyChanges().
    ReadBack readBack() const { return m_readBack; }

protected:
    void setReadBack(ReadBack readBack) { m_readBack = readBack; }
    /// Sets the value that the server has; the column is not marked.
    void setStoredValue(qsizetype column, const KNValue &value);

private:
    const Settings m_details;
    const QString m_tableSchema;
    const QString m_tableName;
    std::optional<Values> m_initialColumnValues;
    QList<KNEditRowColumn> m_tableColumns;
    ReadBack m_readBack = ReadBack::NotMade;
};
