#pragma once

#include "Types/ResultSink.h"

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace SampleServer {

/// A value as the tests write it: text in quotes, binary as 0x.., dates in their default style, NULL.
std::string shown(const Value &value, const SqlType &type);

/// A client of the engine that writes down what it is told, one line per event. attention() and rowCount()
/// may be called from another thread; everything else belongs to the thread that runs the batch.
class RecordingSink : public ResultSink
{
public:
    struct Result
    {
        std::vector<ColumnInfo> columns;
        std::vector<std::uint16_t> orderBy;
        std::vector<std::vector<Value>> rows;
    };

    /// Rows are counted but not kept: for tests with many of them.
    void keepNoRows() { m_keepRows = false; }
    void clear();

    /// Everything that happened, one line each: "columns a int", "row 1 'x'", "end 1", "message 208 16 1 line
    /// 1: ...".
    std::string log() const;
    const std::vector<Result> &results() const { return m_results; }
    const std::vector<ServerMessage> &messages() const { return m_messages; }
    const std::vector<StatementEnd> &ends() const { return m_ends; }
    /// The first value of the first row, as shown() writes it; "no row" when there is none.
    std::string scalar() const;
    /// Numbers of the messages above severity 10.
    std::vector<std::int32_t> errors() const;
    std::uint64_t rowCount() const { return m_rowCount; }

    /// Asks the batch to stop.
    void attention();
    /// Forgets that the batch was asked to stop.
    void clearAttention();
    /// Called for every row, before it is recorded.
    std::function<void()> onRow;

    void columns(const std::vector<ColumnInfo> &columns, const std::vector<std::uint16_t> &orderBy) override;
    void computeColumns(std::uint16_t id, const std::vector<ComputeColumn> &columns,
                        const std::vector<std::uint16_t> &byColumns) override;
    void row(std::span<const Value> values) override;
    void computeRow(std::uint16_t id, std::span<const Value> values) override;
    void endStatement(const StatementEnd &end) override;
    void message(const ServerMessage &message) override;
    void returnStatus(std::int32_t status) override;
    void returnValue(const std::string &name, const SqlType &type, const Value &value) override;
    void endProcedure(const StatementEnd &end) override;
    void databaseChanged(const std::string &oldName, const std::string &newName) override;
    void transactionChanged(TransactionEvent event, std::uint64_t descriptor) override;
    void flush() override;
    bool attentionRequested() override;
    bool waitForAttention(std::int64_t milliseconds) override;

private:
    void note(std::string line) { m_log.push_back(std::move(line)); }

    bool m_keepRows = true;
    std::vector<std::string> m_log;
    std::vector<Result> m_results;
    std::vector<std::vector<ComputeColumn>> m_compute;
    std::vector<ServerMessage> m_messages;
    std::vector<StatementEnd> m_ends;
    std::atomic<std::uint64_t> m_rowCount{0};

    std::mutex m_mutex;
    std::condition_variable m_asked;
    std::atomic<bool> m_attention{false}; ///< set under m_mutex, so that a waiter does not miss it
};

} // namespace SampleServer
