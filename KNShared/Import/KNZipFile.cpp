#include "Import/KNZipFile.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <zip.h>

#include <algorithm>

KNZipPart::KNZipPart(zip_file *part, qint64 size, qint64 most)
    : m_part(part)
    , m_size(size)
    , m_most(most)
    , m_limit(most)
{
    open(QIODevice::ReadOnly);
}

KNZipPart::~KNZipPart()
{
    zip_fclose(m_part);
}

qint64 KNZipPart::readData(char *data, qint64 size)
{
    const qint64 room = std::min(m_limit, m_most) - m_read;
    const qint64 wanted = std::min(size, std::max<qint64>(room, 1));
    const qint64 count = zip_fread(m_part, data, static_cast<zip_uint64_t>(wanted));
    m_hasFailed = m_hasFailed || count < 0 || (room <= 0 && count > 0);
    if (m_hasFailed)
        return -1;
    m_read += count;
    return count == 0 ? -1 : count;
}

KNZipFile::KNZipFile(zip *archive)
    : m_archive(archive)
{
}

KNZipFile::~KNZipFile()
{
    zip_discard(m_archive);
}

std::unique_ptr<KNZipFile> KNZipFile::open(const QString &path, KNError *error)
{
    error->clear();
    const auto say = [](const char *text) { return QCoreApplication::translate("KNZipFile", text); };
    int code = 0;
    zip *const archive =
        QFileInfo(path).isFile() ? zip_open(QFile::encodeName(path).constData(), ZIP_RDONLY, &code) : nullptr;
    if (archive)
        return std::unique_ptr<KNZipFile>(new KNZipFile(archive));
    *error = KNError(
        QStringLiteral("com.quorvex.vantor.import"), 0,
        code == ZIP_ER_NOZIP
            ? say(QT_TRANSLATE_NOOP("KNZipFile", "\"%1\" is not an Excel workbook (.xlsx).")).arg(path)
            : say(QT_TRANSLATE_NOOP("KNZipFile", "\"%1\" cannot be read.")).arg(path));
    return nullptr;
}

std::unique_ptr<KNZipPart> KNZipFile::part(const QString &name, qint64 most) const
{
    const QByteArray utf8 = name.toUtf8();
    zip_stat_t status;
    if (zip_stat(m_archive, utf8.constData(), ZIP_FL_ENC_GUESS, &status) != 0)
        return nullptr;
    zip_file *const part = zip_fopen(m_archive, utf8.constData(), ZIP_FL_ENC_GUESS);
    if (!part)
        return nullptr;
    return std::make_unique<KNZipPart>(part, static_cast<qint64>(status.size), most);
}
