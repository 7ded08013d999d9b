#pragma once

#include "Export/DeviceWriter.h"

/// Comma-separated values according to RFC 4180, with a header line and LF line ends. NULL is an empty field,
/// empty text is "". In a result of one column, where an empty field would be an empty line, NULL is written
/// as NULL and the text NULL is quoted. An empty line separates results.
class KNSHARED_EXPORT CsvWriter : public DeviceWriter
{
public:
    explicit CsvWriter(QIODevice &device)
        : DeviceWriter(device)
    {
    }

    void beginResult(const QStringList &columnNames) override;
    void writeRow(Cells cells) override;
    void endResult() override;

private:
    void writeField(const KNRowCell &cell, bool isOnly);

    bool m_isFirst = true;
};
