#include "Export/KNGzipDevice.h"

#include <zlib.h>

#include <algorithm>
#include <array>

namespace {

constexpr int GzipWindow = MAX_WBITS + 16; // 16 asks for gzip's head and checksum
constexpr int MemoryLevel = 8;
constexpr qint64 LargestPiece = 1 << 20;

} // namespace

KNGzipDevice::KNGzipDevice(QIODevice &target)
    : m_target(target)
    , m_stream(std::make_unique<z_stream>())
{
    // The default level takes three times as long, and longer than a server needs to send the rows; it makes
    // files of rows a tenth smaller.
    m_isGood = deflateInit2(m_stream.get(), Z_BEST_SPEED, Z_DEFLATED, GzipWindow, MemoryLevel,
                            Z_DEFAULT_STRATEGY) == Z_OK;
    open(QIODevice::WriteOnly);
}

KNGzipDevice::~KNGzipDevice()
{
    deflateEnd(m_stream.get());
}

bool KNGzipDevice::finish()
{
    return compress(nullptr, 0, Z_FINISH);
}

qint64 KNGzipDevice::readData(char *, qint64)
{
    return -1;
}

qint64 KNGzipDevice::writeData(const char *data, qint64 size)
{
    for (qint64 done = 0; done < size; done += LargestPiece) {
        if (!compress(data + done, std::min(size - done, LargestPiece), Z_NO_FLUSH))
            return -1;
    }
    return size;
}

bool KNGzipDevice::compress(const char *data, qint64 size, int flush)
{
    std::array<Bytef, 1 << 16> packed;
    m_stream->next_in = reinterpret_cast<Bytef *>(const_cast<char *>(data)); // zlib does not write to it
    m_stream->avail_in = static_cast<uInt>(size);
    do {
        m_stream->next_out = packed.data();
        m_stream->avail_out = static_cast<uInt>(packed.size());
        m_isGood = m_isGood && deflate(m_stream.get(), flush) != Z_STREAM_ERROR;
        const auto count = static_cast<qint64>(packed.size() - m_stream->avail_out);
        m_isGood = m_isGood && m_target.write(reinterpret_cast<const char *>(packed.data()), count) == count;
    } while (m_isGood && m_stream->avail_out == 0);
    return m_isGood;
}
