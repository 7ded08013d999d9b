#pragma once

#include "Import/KNImportFaults.h"
#include "Import/KNImportPlan.h"

#include <vector>

/// Turns rows of a file into rows of the table, as a plan says. Pure after its construction; any thread.
class KNImportRowConverter
{
    Q_DECLARE_TR_FUNCTIONS(KNImportRowConverter)

public:
    KNImportRowConverter(const KNImportPlan &plan, const KNDatabaseImportHelper &helper);

    /// Why the plan cannot be carried out, such as a constant that its column does not hold.
    const KNError &error() const { return m_error; }
    const QStringList &columnNames() const { return m_names; }
    /// For VantorDatabaseClient::insertRows().
    const QStringList &columnTypes() const { return m_types; }

    /// Converts a row; false, with the first fault, if it cannot be imported.
    bool convert(const KNImportRow &row, QList<KNValue> *values, KNImportFault *fault) const;

private:
    struct Column
    {
        KNImportConverter converter;
        qsizetype source; ///< -1 for the constant
        KNValue constant;
    };

    std::vector<Column> m_columns;
    QStringList m_names;
    QStringList m_types;
    QStringList m_fileColumns;
    KNError m_error;
};
