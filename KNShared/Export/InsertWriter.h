#pragma once

#include "Database/VantorDBC.h"
#include "Export/DeviceWriter.h"

/// INSERT statements with names and values as the kind of server writes them, at most 1000 rows in each.
class KNSHARED_EXPORT InsertWriter : public DeviceWriter
{
public:
    /// `tableName` stands in the statements as it is; `details` is used by this writer alone.
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
    static constexpr int RowsPerStatement = 1000; // a server takes no more

    const VantorDBCPtr m_details;
    const QString m_tableName;
    QByteArray m_head;
    int m_rowsInStatement = 0;
};
