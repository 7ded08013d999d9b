#pragma once

#include "Foundation/KNValue.h"
#include "QueryLoader/KNQueryLoader.h"

#include <QList>
#include <QStringList>

/// Statements that delete rows of a table. Each deletes one row that has all of the given values, also if
/// several rows are equal. Delivers on the caller's thread.
class MSSQLScriptDeleteDataFromTableQueryLoader : public KNQueryLoader
{
public:
    /// `tablePath` is the name, or schema and name. Each row of `data` has one value for each column; at
    /// least one column is required.
    MSSQLScriptDeleteDataFromTableQueryLoader(const QStringList &tablePath, const QStringList &usingColumns,
                                              const QList<QList<KNValue>> &data)
        : m_tablePath(tablePath)
        , m_columns(usingColumns)
        , m_data(data)
    {
    }

    const QStringList &tablePath() const { return m_tablePath; }
    const QStringList &columns() const { return m_columns; }
    const QList<QList<KNValue>> &data() const { return m_data; }

    void beginLoadingQuery(const VantorDBC &details) override;

private:
    QStringList m_tablePath;
    QStringList m_columns;
    QList<QList<KNValue>> m_data;
};
