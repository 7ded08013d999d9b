#pragma once

#include "Types/ResultSink.h"

#include <utility>
#include <vector>

namespace SampleServer {

/// Collects the rows of results for INSERT ... EXEC instead of sending them; everything else is sent to the
/// client.
class CollectingSink : public ResultSink
{
public:
    explicit CollectingSink(ResultSink &client)
        : m_client(client)
    {
    }

    struct Row
    {
        std::shared_ptr<const std::vector<ColumnInfo>> columns;
        std::vector<Value> values;
    };
    std::vector<Row> take() { return std::exchange(m_rows, {}); }

    void columns(const std::vector<ColumnInfo> &columns, const std::vector<std::uint16_t> &) override
    {
        m_columns = std::make_shared<const std::vector<ColumnInfo>>(columns);
    }
    void computeColumns(std::uint16_t, const std::vector<ComputeColumn> &,
                        const std::vector<std::uint16_t> &) override
    {
    }
    void row(std::span<const Value> values) override
    {
        m_rows.push_back({m_columns, {values.begin(), values.end()}});
    }
    void computeRow(std::uint16_t, std::span<const Value>) override {}
    void endStatement(const StatementEnd &end) override
    {
        if (end.error)
            m_client.endStatement(end);
    }
    void message(const ServerMessage &message) override { m_client.message(message); }
    void returnStatus(std::int32_t) override {}
    void returnValue(const std::string &, const SqlType &, const Value &) override {}
    void endProcedure(const StatementEnd &) override {}
    void databaseChanged(const std::string &oldName, const std::string &newName) override
    {
        m_client.databaseChanged(oldName, newName);
    }
    void transactionChanged(TransactionEvent event, std::uint64_t descriptor) override
    {
        m_client.transactionChanged(event, descriptor);
    }
    void flush() override { m_client.flush(); }
    bool attentionRequested() override { return m_client.attentionRequested(); }
    bool waitForAttention(std::int64_t milliseconds) override
    {
        return m_client.waitForAttention(milliseconds);
    }

private:
    ResultSink &m_client;
    std::shared_ptr<const std::vector<ColumnInfo>> m_columns;
    std::vector<Row> m_rows;
};

} // namespace SampleServer
