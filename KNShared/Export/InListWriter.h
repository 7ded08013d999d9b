#pragma once

#include "Database/VantorDBC.h"
#include "Export/DeviceWriter.h"

#include <QSet>

/// All values, each once, as the list behind an IN: (1, 2, 3). NULL is left out, for nothing is equal to it.
class KNSHARED_EXPORT InListWriter : public DeviceWriter
{
public:
    /// `details` is used by this writer alone.
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
