#pragma once

#include "Database/VantorDBC.h"
#include "Export/DeviceWriter.h"

/// Writes INSERT statements with names and values in the server's syntax, at most 1000 rows in each.
class KNSHARED_EXPORT InsertWriter : public DeviceWriter
{
public:
    /// `tableName` is written unchanged; `details` must not be used by other code.
    InsertWriter(QIODevice &device, VantorDBCPtr details, QString tableName)
        : DeviceWriter(device)
        , m_details(std::move(details))
        , m_tableName(std::move(tableName))
    {
    }

    void beginResult(const QStringList &columnNames) override;
    void writeRow(Cells cells) override;
    void endResult() override;

private:
    static constexpr int RowsPerStatement = 1000; // the server's limit

    const VantorDBCPtr m_details;
    const QString m_tableName;
    QByteArray m_head;
    int m_rowsInStatement = 0;
};
