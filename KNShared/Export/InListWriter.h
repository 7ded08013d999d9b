#pragma once

#include "Database/VantorDBC.h"
#include "Export/DeviceWriter.h"

#include <QSet>

/// Writes all distinct values as the list of an IN expression: (1, 2, 3). NULL is omitted, since nothing
/// equals it.
class KNSHARED_EXPORT InListWriter : public DeviceWriter
{
public:
    /// `details` must not be used by other code.
    InListWriter(QIODevice &device, VantorDBCPtr details)
        : DeviceWriter(device)
        , m_details(std::move(details))
    {
    }

    void beginResult(const QStringList &columnNames) override;
    void writeRow(Cells cells) override;
    void endResult() override;
    QStringList remarks() const override;

private:
    const VantorDBCPtr m_details;
    QSet<QString> m_written;
    bool m_hadNull = false;
};
