#pragma once

#include "Export/DeviceWriter.h"

/// Comma-separated values after RFC 4180, with a header line and LF line ends. NULL is an empty field and
/// empty text is
/// "", so that both survive. An empty line stands between results.
class KNSHARED_EXPORT CsvWriter : public DeviceWriter
{
public:
    explicit CsvWriter(QIODevice &device)
        : DeviceWriter(device)
    {
    }

    void beginResult(const QStringList &columnNames) override;
    void writeRow(const KNRow &row) override;
    void endResult() override;

private:
    bool m_isFirst = true;
};
