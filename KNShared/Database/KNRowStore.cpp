#include "Database/KNRowStore.h"

#include "Database/KNReadFixed.h"

#include <algorithm>
#include <cstdlib>
#include <new>

namespace {

constexpr std::size_t LargestBlockSize = 1024 * 1024;
constexpr std::size_t SlotSize = sizeof(quint32);

std::size_t writeVarint(unsigned char *place, std::size_t number)
{
    std::size_t written = 0;
    while (number >= 0x80) {
        place[written++] = static_cast<unsigned char>(number | 0x80);
        number >>= 7;
    }
    place[written++] = static_cast<unsigned char>(number);
    return written;
}

} // namespace

/// A memory block: cells of rows from the front, the offset of each row from the back.
struct KNRowStore::Block
{
    Block(qsizetype first, std::size_t size)
        : firstRow(first)
        , capacity(size)
        , bytes(static_cast<unsigned char *>(std::malloc(size)))
    {
        if (!bytes)
            throw std::bad_alloc();
    }
    ~Block() { std::free(bytes); }
    Block(const Block &) = delete;
    Block &operator=(const Block &) = delete;

    unsigned char *slot(qsizetype indexInBlock) const
    {
        return bytes + capacity - SlotSize * static_cast<std::size_t>(indexInBlock + 1);
    }
    const unsigned char *row(qsizetype row) const
    {
        return bytes + KNReadFixed<quint32>(slot(row - firstRow));
    }

    qsizetype firstRow;
    std::size_t capacity;
    unsigned char *bytes;
    qsizetype rows = 0; ///< finished rows in this block; writing thread only
};

KNRowStore::KNRowStore() = default;
KNRowStore::~KNRowStore() = default;

void KNRowStore::appendVariable(KNRowCell::Tag tag, const void *data, std::size_t length)
{
    // A tag, at most ten bytes of length, and the payload.
    unsigned char *place = reserve(11 + length);
    place[0] = tag;
    const std::size_t head = 1 + writeVarint(place + 1, length);
    if (length)
        std::memcpy(place + head, data, length);
    m_cursor = place + head + length;
}

void KNRowStore::appendGuid(const unsigned char *bytes)
{
    unsigned char *place = reserve(17);
    *place = KNRowCell::Guid;
    std::memcpy(place + 1, bytes, 16);
}

void KNRowStore::appendDate(const KNDateTime &value)
{
    const bool hasOffset = value.offsetMinutes != KNDateTime::NoOffset;
    unsigned char *place = reserve(hasOffset ? 12 : 10);
    place[0] = hasOffset ? KNRowCell::OffsetDate : KNRowCell::Date;
    place[1] = static_cast<unsigned char>(static_cast<int>(value.parts) << 4 | value.fractionDigits);
    std::memcpy(place + 2, &value.ticks, sizeof value.ticks);
    if (hasOffset)
        std::memcpy(place + 10, &value.offsetMinutes, sizeof value.offsetMinutes);
}

void KNRowStore::appendDecimal(const unsigned char *magnitude, std::size_t length, bool negative, int scale)
{
    while (length > 0 && *magnitude == 0) {
        ++magnitude;
        --length;
    }
    if (length > 16)
        return appendNull();
    unsigned char *place = reserve(3 + length);
    place[0] = negative ? KNRowCell::NegativeDecimal : KNRowCell::Decimal;
    place[1] = static_cast<unsigned char>(scale);
    place[2] = static_cast<unsigned char>(length);
    if (length)
        std::memcpy(place + 3, magnitude, length);
}

void KNRowStore::appendValue(const KNValue &value)
{
    switch (value.kind()) {
    case KNValue::Kind::Null:
        return appendNull();
    case KNValue::Kind::Bool:
        return appendBool(value.toBool());
    case KNValue::Kind::Int32:
        return appendInt32(static_cast<qint32>(value.toInt64()));
    case KNValue::Kind::Int64:
        return appendInt64(value.toInt64());
    case KNValue::Kind::Float:
        return appendFloat(static_cast<float>(value.toDouble()));
    case KNValue::Kind::Double:
        return appendDouble(value.toDouble());
    case KNValue::Kind::Date:
        return appendDate(value.dateTime());
    case KNValue::Kind::Text: {
        const QByteArray utf8 = value.text().toUtf8();
        return appendText(utf8.constData(), static_cast<std::size_t>(utf8.size()));
    }
    case KNValue::Kind::Bytes: {
        const QByteArray bytes = value.bytes();
        return appendBytes(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    }
    case KNValue::Kind::Decimal: {
        unsigned char magnitude[16];
        const KNDecimal decimal = value.decimal();
        decimal.toBigEndian(magnitude);
        return appendDecimal(magnitude, sizeof magnitude, decimal.isNegative(), decimal.scale());
    }
    }
}

void KNRowStore::appendCell(const KNRowCell &cell)
{
    if (cell.tag == KNRowCell::Text || cell.tag == KNRowCell::Bytes || cell.tag == KNRowCell::FlagBytes)
        return appendVariable(cell.tag, cell.data, cell.length);
    unsigned char *const place = reserve(1 + cell.length);
    *place = cell.tag;
    if (cell.length > 0)
        std::memcpy(place + 1, cell.data, cell.length);
}

void KNRowStore::endRow()
{
    if (m_rowLimit > 0 && m_endedRows >= m_rowLimit) {
        m_cursor = m_rowStart;
        ++m_endedBeyondLimit;
        return;
    }
    if (!m_writing || m_cursor > m_limit)
        moveToBlockFor(0);
    const auto offset = static_cast<quint32>(m_rowStart - m_writing->bytes);
    std::memcpy(m_writing->slot(m_writing->rows), &offset, SlotSize);
    ++m_writing->rows;
    ++m_endedRows;
    m_rowStart = m_cursor;
    // The slot of the next row reduces the memory for cells. If none is left, the limit lies before the
    // cursor and the next cell opens a block.
    m_limit -= SlotSize;
}

void KNRowStore::moveToBlockFor(std::size_t size)
{
    const auto begun = static_cast<std::size_t>(m_cursor - m_rowStart);
    const std::size_t capacity = std::max(m_nextBlockSize, 2 * begun + size + SlotSize);
    auto block = std::make_unique<Block>(m_endedRows, capacity);
    if (begun)
        std::memcpy(block->bytes, m_rowStart, begun);
    m_nextBlockSize = std::min(2 * m_nextBlockSize, LargestBlockSize);
    m_rowStart = block->bytes;
    m_cursor = block->bytes + begun;
    m_limit = block->slot(0);

    const std::lock_guard lock(m_mutex);
    if (m_writing && m_writing->rows == 0)
        m_blocks.pop_back();
    m_writing = block.get();
    m_blocks.push_back(std::move(block));
}

qsizetype KNRowStore::publish()
{
    const std::lock_guard lock(m_mutex);
    const qsizetype count = m_endedRows - m_published;
    m_published = m_endedRows;
    m_dropped = m_endedBeyondLimit;
    if (count > 0)
        m_changed.notify_all();
    return count;
}

qsizetype KNRowStore::rowCount() const
{
    const std::lock_guard lock(m_mutex);
    return m_published;
}

qsizetype KNRowStore::droppedRowCount() const
{
    const std::lock_guard lock(m_mutex);
    return m_dropped;
}

const KNRowStore::Block *KNRowStore::blockOf(qsizetype row, qsizetype *columnCount, qsizetype *endRow) const
{
    const std::lock_guard lock(m_mutex);
    *columnCount = m_columnCount;
    if (row < m_discarded || row >= m_published)
        return nullptr;
    const auto behind = std::upper_bound(m_blocks.begin(), m_blocks.end(), row,
                                         [](qsizetype r, const auto &block) { return r < block->firstRow; });
    if (endRow)
        *endRow = behind == m_blocks.end() ? m_published : std::min(m_published, (*behind)->firstRow);
    return std::prev(behind)->get();
}

const unsigned char *KNRowStore::rowIn(const Block &block, qsizetype row)
{
    return block.row(row);
}

qsizetype KNRowStore::firstRowOf(const Block &block)
{
    return block.firstRow;
}

KNValue KNRowStore::value(qsizetype row, qsizetype column) const
{
    qsizetype columnCount = 0;
    const Block *block = blockOf(row, &columnCount);
    if (!block || column < 0 || column >= columnCount)
        return KNValue();
    KNRowCell cell = KNRowCell::at(block->row(row));
    while (column-- > 0)
        cell = KNRowCell::at(cell.end());
    return cell.value();
}

KNRow KNRowStore::row(qsizetype row) const
{
    qsizetype columnCount = 0;
    const Block *block = blockOf(row, &columnCount);
    KNRow values;
    if (!block)
        return values;
    values.reserve(columnCount);
    const unsigned char *position = block->row(row);
    while (values.size() < columnCount) {
        const KNRowCell cell = KNRowCell::at(position);
        values.append(cell.value());
        position = cell.end();
    }
    return values;
}

void KNRowStore::setColumnCount(qsizetype count)
{
    const std::lock_guard lock(m_mutex);
    m_columnCount = count;
}

qsizetype KNRowStore::byteSize() const
{
    const std::lock_guard lock(m_mutex);
    std::size_t bytes = 0;
    for (const auto &block : m_blocks)
        bytes += sizeof(Block) + block->capacity;
    return static_cast<qsizetype>(bytes);
}

bool KNRowStore::waitForMoreThan(qsizetype count, std::chrono::milliseconds timeout) const
{
    std::unique_lock lock(m_mutex);
    m_changed.wait_for(lock, timeout, [&] { return m_published > count || m_closed; });
    return m_published > count;
}

void KNRowStore::close()
{
    const std::lock_guard lock(m_mutex);
    m_closed = true;
    m_changed.notify_all();
}

void KNRowStore::setReadAhead(qsizetype rows)
{
    const std::lock_guard lock(m_mutex);
    m_readAhead = rows;
    m_changed.notify_all();
}

void KNRowStore::discardBefore(qsizetype row)
{
    const std::lock_guard lock(m_mutex);
    m_discarded = std::clamp(row, m_discarded, m_published);
    const auto behind = std::upper_bound(m_blocks.begin(), m_blocks.end(), m_discarded,
                                         [](qsizetype r, const auto &block) { return r < block->firstRow; });
    if (behind - m_blocks.begin() > 1)
        m_blocks.erase(m_blocks.begin(), std::prev(behind));
    m_changed.notify_all();
}

bool KNRowStore::waitForRoom(std::chrono::milliseconds timeout) const
{
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(lock, timeout,
                              [&] { return m_readAhead == 0 || m_published - m_discarded < m_readAhead; });
}
