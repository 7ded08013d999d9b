#include "Export/KNZipDevice.h"

#include <QDateTime>

#include <algorithm>
#include <minizip/zip.h>

namespace {

QIODevice &zipTarget(void *stream)
{
    return *static_cast<QIODevice *>(stream);
}

/// The functions by which the library reaches a QIODevice that is open.
zlib_filefunc64_def accessTo(QIODevice &target)
{
    zlib_filefunc64_def access = {};
    access.opaque = &target;
    access.zopen64_file = [](voidpf device, const void *, int) { return device; };
    access.zread_file = [](voidpf, voidpf, void *, uLong) -> uLong { return 0; };
    access.zwrite_file = [](voidpf, voidpf stream, const void *data, uLong size) {
        const qint64 written = zipTarget(stream).write(static_cast<const char *>(data), qint64(size));
        return written < 0 ? uLong(0) : static_cast<uLong>(written);
    };
    access.ztell64_file = [](voidpf, voidpf stream) {
        return static_cast<ZPOS64_T>(zipTarget(stream).pos());
    };
    access.zseek64_file = [](voidpf, voidpf stream, ZPOS64_T offset, int origin) -> long {
        QIODevice &device = zipTarget(stream);
        const qint64 base = origin == SEEK_CUR ? device.pos() : origin == SEEK_END ? device.size() : 0;
        return device.seek(base + static_cast<qint64>(offset)) ? 0 : -1;
    };
    access.zclose_file = [](voidpf, voidpf) { return 0; };
    access.zerror_file = [](voidpf, voidpf) { return 0; };
    return access;
}

tm_zip now()
{
    const QDateTime time = QDateTime::currentDateTime();
    tm_zip parts = {};
    parts.tm_year = static_cast<uInt>(time.date().year());
    parts.tm_mon = static_cast<uInt>(time.date().month() - 1);
    parts.tm_mday = static_cast<uInt>(time.date().day());
    parts.tm_hour = static_cast<uInt>(time.time().hour());
    parts.tm_min = static_cast<uInt>(time.time().minute());
    parts.tm_sec = static_cast<uInt>(time.time().second());
    return parts;
}

constexpr qint64 LargestZipPiece = 1 << 20;

} // namespace

KNZipDevice::KNZipDevice(QIODevice &target)
{
    zlib_filefunc64_def access = accessTo(target);
    m_zip = zipOpen2_64("", APPEND_STATUS_CREATE, nullptr, &access);
    m_isGood = m_zip != nullptr;
    open(QIODevice::WriteOnly);
}

KNZipDevice::~KNZipDevice()
{
    if (m_zip)
        zipClose(m_zip, nullptr);
}

bool KNZipDevice::beginPart(const QString &name)
{
    constexpr uLong NameIsUtf8 = 1 << 11;
    constexpr int MayBeLarge = 1;
    zip_fileinfo information = {};
    information.tmz_date = now();
    if (!endPart())
        return false;
    m_isInPart = zipOpenNewFileInZip4_64(m_zip, name.toUtf8().constData(), &information, nullptr, 0, nullptr,
                                         0, nullptr, Z_DEFLATED, Z_BEST_SPEED, 0, -MAX_WBITS, DEF_MEM_LEVEL,
                                         Z_DEFAULT_STRATEGY, nullptr, 0, 0, NameIsUtf8, MayBeLarge) == ZIP_OK;
    m_isGood = m_isInPart;
    return m_isGood;
}

bool KNZipDevice::endPart()
{
    if (m_isInPart)
        m_isGood = zipCloseFileInZip(m_zip) == ZIP_OK && m_isGood;
    m_isInPart = false;
    return m_isGood;
}

bool KNZipDevice::finish()
{
    endPart();
    if (m_zip)
        m_isGood = zipClose(m_zip, nullptr) == ZIP_OK && m_isGood;
    m_zip = nullptr;
    return m_isGood;
}

qint64 KNZipDevice::readData(char *, qint64)
{
    return -1;
}

qint64 KNZipDevice::writeData(const char *data, qint64 size)
{
    for (qint64 done = 0; done < size && m_isGood; done += LargestZipPiece) {
        const auto piece = static_cast<unsigned>(std::min(size - done, LargestZipPiece));
        m_isGood = m_isInPart && zipWriteInFileInZip(m_zip, data + done, piece) == ZIP_OK;
    }
    return m_isGood ? size : -1;
}
