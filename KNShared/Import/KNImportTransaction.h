#pragma once

#include "Database/VantorDatabaseClient.h"
#include "Import/KNImportFaults.h"
#include "Import/KNImportRowConverter.h"

#include <span>

/// A row of a file and its values for the table.
struct KNImportedRow
{
    KNImportRow row;
    QList<KNValue> values;
};

/// The statements of an import, in one transaction: whatever fails, and a connection that is lost, leave the
/// table as it was. Used by one thread.
class KNImportTransaction
{
    Q_DECLARE_TR_FUNCTIONS(KNImportTransaction)

public:
    /// All arguments outlive this object. Rows that the server refuses are added to the faults if the plan
    /// has a file for them; otherwise they are errors.
    KNImportTransaction(VantorDatabaseClient &client, const KNImportPlan &plan,
                        const KNDatabaseImportHelper &helper, const KNImportRowConverter &converter,
                        KNImportFaults &faults);
    KNImportTransaction(const KNImportTransaction &) = delete;
    KNImportTransaction &operator=(const KNImportTransaction &) = delete;

    /// Begins the transaction and prepares the table.
    bool begin(KNError *error);
    /// Inserts rows.
    bool insert(std::span<const KNImportedRow> rows, KNError *error);
    bool commit(KNError *error);
    /// Undoes everything. A connection on which that fails is closed, so that the server does it.
    void rollBack();

    quint64 insertedRows() const { return m_inserted; }

private:
    bool run(const QString &sql, KNError *error);
    bool send(std::span<const KNImportedRow> rows, KNError *error);
    bool sendWithSavepoint(std::span<const KNImportedRow> rows, KNError *error);
    void forbidIdentity();

    VantorDatabaseClient &m_client;
    const KNImportPlan &m_plan;
    const KNImportStatements m_statements;
    const KNImportRowConverter &m_converter;
    KNImportFaults &m_faults;
    quint64 m_inserted = 0;
};
