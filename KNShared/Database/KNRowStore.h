#pragma once

#include "Database/KNRowCell.h"
#include "KNSharedExport.h"

#include <QList>

#include <chrono>
#include <condition_variable>
#include <cstring>
#include <memory>
#include <mutex>
#include <vector>

/// One row of values, in column order.
using KNRow = QList<KNValue>;

/// A compact store for results of millions of rows. Rows are encoded one after the other in memory blocks
/// that never move: one allocation holds thousands of rows, and readers need no copy.
///
/// One thread writes: beginRow(), one append per column, endRow(), and publish() to show finished rows to
/// readers. Meanwhile any number of threads may read published rows.
class KNSHARED_EXPORT KNRowStore
{
public:
    KNRowStore();
    ~KNRowStore();
    KNRowStore(const KNRowStore &) = delete;
    KNRowStore &operator=(const KNRowStore &) = delete;

    /// Sets the number of values per row. Call before the first row.
    void setColumnCount(qsizetype count);

    /// \name Writing, on the one writing thread
    /// @{
    void beginRow() { m_rowStart = m_cursor; }
    void appendNull() { *reserve(1) = KNRowCell::Null; }
    void appendBool(bool value) { *reserve(1) = value ? KNRowCell::True : KNRowCell::False; }
    void appendInt32(qint32 value) { appendFixed(KNRowCell::Int32, value); }
    void appendInt64(qint64 value) { appendFixed(KNRowCell::Int64, value); }
    void appendFloat(float value) { appendFixed(KNRowCell::Float, value); }
    void appendDouble(double value) { appendFixed(KNRowCell::Double, value); }
    /// Appends UTF-8 text. Text that cannot be decoded reads as null.
    void appendText(const void *utf8, std::size_t length) { appendVariable(KNRowCell::Text, utf8, length); }
    void appendBytes(const void *bytes, std::size_t length)
    {
        appendVariable(KNRowCell::Bytes, bytes, length);
    }
    /// Appends the sixteen bytes of a GUID in SQL Server's format (the first three groups little-endian).
    /// Reads as its standard text form.
    void appendGuid(const unsigned char *bytes);
    /// Appends a date. With an offset, value() of the cell is text; see KNRowCell.
    void appendDate(const KNDateTime &value);
    /// Appends an amount in ten-thousandths, which the connector's code reads as a float.
    void appendFloatMoney(qint32 amount) { appendFixed(KNRowCell::FloatMoney, amount); }
    /// Appends bytes of an unknown type, which the connector's code reads as a boolean.
    void appendFlagBytes(const void *bytes, std::size_t length)
    {
        appendVariable(KNRowCell::FlagBytes, bytes, length);
    }
    /// Appends a decimal given as a big-endian magnitude; see KNDecimal::fromBigEndian. Invalid input reads
    /// as null.
    void appendDecimal(const unsigned char *magnitude, std::size_t length, bool negative, int scale);
    void appendValue(const KNValue &value);
    /// Appends a copy of a cell of another store.
    void appendCell(const KNRowCell &cell);
    void endRow();
    /// Limits the number of rows kept; 0, the default, keeps all. Call before the first row.
    void setRowLimit(qsizetype rows) { m_rowLimit = rows; }
    /// Makes all finished rows visible to readers. Returns the number of newly visible rows.
    qsizetype publish();
    /// @}

    /// \name Reading, on any thread
    /// @{
    qsizetype rowCount() const;
    /// Returns the value at a published row and column, both from 0; null outside.
    KNValue value(qsizetype row, qsizetype column) const;
    /// The number of rows that were finished and published, but not kept.
    qsizetype droppedRowCount() const;
    /// Returns the whole row; empty outside.
    KNRow row(qsizetype row) const;
    /// Memory used by the rows, in bytes.
    qsizetype byteSize() const;
    /// Waits until there are more than `count` rows, the store is closed or the timeout expires. True if
    /// there are.
    bool waitForMoreThan(qsizetype count, std::chrono::milliseconds timeout) const;
    /// @}

    /// Marks the store as complete and wakes waiting readers.
    void close();

    /// \name Streaming: a reader that discards rows
    /// @{
    /// The writer should not be more than `rows` ahead of discardBefore(); 0, the default, sets no limit.
    void setReadAhead(qsizetype rows);
    /// Discards all rows before `row` and may free their memory. They read as null from then on.
    void discardBefore(qsizetype row);
    /// Waits until the writer may publish more rows or the timeout expires. True if it may. Called by the
    /// writer.
    bool waitForRoom(std::chrono::milliseconds timeout) const;
    /// @}

private:
    friend class KNRowReader;
    struct Block;

    unsigned char *reserve(std::size_t size)
    {
        if (m_limit - m_cursor < static_cast<std::ptrdiff_t>(size))
            moveToBlockFor(size);
        unsigned char *place = m_cursor;
        m_cursor += size;
        return place;
    }
    template <typename Fixed>
    void appendFixed(KNRowCell::Tag tag, Fixed value)
    {
        unsigned char *place = reserve(1 + sizeof value);
        *place = tag;
        std::memcpy(place + 1, &value, sizeof value);
    }
    void appendVariable(KNRowCell::Tag tag, const void *data, std::size_t length);
    void moveToBlockFor(std::size_t size);
    /// Returns the block of a published row, its column count and the end of its rows; null outside.
    const Block *blockOf(qsizetype row, qsizetype *columnCount, qsizetype *endRow = nullptr) const;
    static const unsigned char *rowIn(const Block &block, qsizetype row);
    static qsizetype firstRowOf(const Block &block);

    unsigned char *m_rowStart = nullptr; ///< of the row being written; writing thread only, as the next three
    unsigned char *m_cursor = nullptr;   ///< where the next cell is written
    unsigned char *m_limit = nullptr;    ///< end of the cell memory; the offset slot of this row follows it
    qsizetype m_endedRows = 0;           ///< finished rows, published or not
    qsizetype m_rowLimit = 0;            ///< writing thread only, as the next member
    qsizetype m_endedBeyondLimit = 0;

    mutable std::mutex m_mutex;
    mutable std::condition_variable m_changed;
    std::vector<std::unique_ptr<Block>> m_blocks; ///< guarded by m_mutex; ordered by their first row
    qsizetype m_columnCount = 0;                  ///< guarded by m_mutex
    qsizetype m_published = 0;                    ///< guarded by m_mutex
    qsizetype m_discarded = 0;                    ///< guarded by m_mutex
    qsizetype m_dropped = 0;                      ///< guarded by m_mutex
    qsizetype m_readAhead = 0;                    ///< guarded by m_mutex
    bool m_closed = false;                        ///< guarded by m_mutex
    Block *m_writing = nullptr;                   ///< the last block; writing thread only
    std::size_t m_nextBlockSize = 1024;           ///< writing thread only
};
