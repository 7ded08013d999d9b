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

/// Rows of values in compact form, for results of millions of rows. Rows stand encoded one behind the other
/// in blocks of memory that never move: one allocation serves thousands of rows, and a reader needs no copy
/// of them.
///
/// One thread writes: beginRow(), one append per column, endRow(), and publish() to show the ended rows to
/// readers. Any number of threads read published rows meanwhile.
class KNSHARED_EXPORT KNRowStore
{
public:
    KNRowStore();
    ~KNRowStore();
    KNRowStore(const KNRowStore &) = delete;
    KNRowStore &operator=(const KNRowStore &) = delete;

    /// How many values each row has. To be set before the first row.
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
    /// Text in UTF-8. Text that does not decode reads as null.
    void appendText(const void *utf8, std::size_t length) { appendVariable(KNRowCell::Text, utf8, length); }
    void appendBytes(const void *bytes, std::size_t length)
    {
        appendVariable(KNRowCell::Bytes, bytes, length);
    }
    /// The sixteen bytes of a GUID as SQL Server stores it (the first three groups little-endian). Reads as
    /// its standard text form.
    void appendGuid(const unsigned char *bytes);
    /// With an offset, value() of the cell is text; see KNRowCell.
    void appendDate(const KNDateTime &value);
    /// An amount in ten-thousandths, which a connector's code reads as a float.
    void appendFloatMoney(qint32 amount) { appendFixed(KNRowCell::FloatMoney, amount); }
    /// Bytes whose type is not known, which a connector's code reads as a boolean.
    void appendFlagBytes(const void *bytes, std::size_t length)
    {
        appendVariable(KNRowCell::FlagBytes, bytes, length);
    }
    /// A decimal as its magnitude in big-endian bytes; see KNDecimal::fromBigEndian. Reads as null when it is
    /// none.
    void appendDecimal(const unsigned char *magnitude, std::size_t length, bool negative, int scale);
    void appendValue(const KNValue &value);
    void endRow();
    /// Rows beyond this number are not kept; 0, the default, keeps all. To be set before the first row.
    void setRowLimit(qsizetype rows) { m_rowLimit = rows; }
    /// Makes all ended rows visible. Returns how many that were.
    qsizetype publish();
    /// @}

    /// \name Reading, on any thread
    /// @{
    qsizetype rowCount() const;
    /// The value at a published row and a column of it, both from 0; null outside.
    KNValue value(qsizetype row, qsizetype column) const;
    /// Rows that were ended, published and not kept.
    qsizetype droppedRowCount() const;
    /// The whole row; empty outside.
    KNRow row(qsizetype row) const;
    /// Bytes of memory that the rows take.
    qsizetype byteSize() const;
    /// Waits until there are more than `count` rows, the store was closed or the time has passed. True when
    /// there are.
    bool waitForMoreThan(qsizetype count, std::chrono::milliseconds timeout) const;
    /// @}

    /// Tells waiting readers that no more rows will come.
    void close();

    /// \name Streaming: a reader that forgets rows as it goes
    /// @{
    /// The writer should not be more than `rows` ahead of discardBefore(); 0, the default, sets no limit.
    void setReadAhead(qsizetype rows);
    /// The reader is done with all rows before `row`; their memory may go. They read as null from now on.
    void discardBefore(qsizetype row);
    /// For the writer: waits until it may publish more, or the time has passed. True when it may.
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
    /// The block of a published row, and where it ends; null outside.
    const Block *blockOf(qsizetype row, qsizetype *columnCount, qsizetype *endRow = nullptr) const;
    static const unsigned char *rowIn(const Block &block, qsizetype row);
    static qsizetype firstRowOf(const Block &block);

    unsigned char *m_rowStart =
        nullptr; ///< where the row being written begins; writing thread only, as all four
    unsigned char *m_cursor = nullptr; ///< where the next cell goes
    unsigned char *m_limit = nullptr;  ///< end of the room for cells; this row's offset slot stands behind it
    qsizetype m_endedRows = 0;         ///< rows ended, published or not
    qsizetype m_rowLimit = 0;          ///< writing thread only, as the next
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
