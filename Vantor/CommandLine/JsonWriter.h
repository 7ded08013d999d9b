#pragma once

#include "CommandLine/ResultWriter.h"

/// One JSON array with an object for each result: "columns", a list of names, and "rows", a list of lists.
/// Numbers keep all their digits, dates and binary values (0x...) are strings.
class JsonWriter : public ResultWriter
{
public:
    explicit JsonWriter(QIODevice &device)
        : ResultWriter(device)
    {
    }

    void beginRun() override;
    void endRun() override;
    void beginResult(const QStringList &columnNames) override;
    void writeRow(const KNRow &row) override;
    void endResult() override;

private:
    bool m_isFirstResult = true;
    bool m_isFirstRow = true;
};
