#pragma once

#include "Export/DeviceWriter.h"

/// Writes one JSON array with an object per result: "columns", a list of names, and "rows", a list of lists.
/// Numbers keep all their digits; dates, binary values (0x...) and numbers not allowed in JSON (nan, inf,
/// -inf) are strings.
class KNSHARED_EXPORT JsonWriter : public DeviceWriter
{
public:
    explicit JsonWriter(QIODevice &device)
        : DeviceWriter(device)
    {
    }

    void beginRun() override;
    void endRun() override;
    void beginResult(const QStringList &columnNames) override;
    void writeRow(Cells cells) override;
    void endResult() override;

private:
    bool m_isFirstResult = true;
    bool m_isFirstRow = true;
};
