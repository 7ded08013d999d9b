#include "Export/KNScriptTarget.h"

#include "Export/KNGzipDevice.h"
#include "Export/KNTargetFile.h"
#include "Export/KNZipDevice.h"
#include "Foundation/KNFormat.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace {

/// Remembers whether a device took everything: a full disk may take a part of the bytes without an error.
class CheckedDevice : public QIODevice
{
public:
    explicit CheckedDevice(QIODevice &target)
        : m_target(target)
    {
        open(QIODevice::WriteOnly);
    }

    bool isSequential() const override { return true; }
    bool isGood() const { return m_isGood; }

protected:
    qint64 readData(char *, qint64) override { return -1; }
    qint64 writeData(const char *data, qint64 size) override
    {
        m_isGood = m_isGood && m_target.write(data, size) == size;
        return m_isGood ? size : -1;
    }

private:
    QIODevice &m_target;
    bool m_isGood = true;
};

/// One file, perhaps compressed.
class OneScriptFile : public KNScriptTarget
{
public:
    OneScriptFile(const QString &path, bool isCompressed)
        : m_file(path)
        , m_isCompressed(isCompressed)
    {
    }

    bool isDivided() const override { return false; }
    QIODevice *deviceFor(const QString &, KNError *error) override
    {
        *error = KNError();
        if (!m_isOpen && !m_file.open(error))
            return nullptr;
        if (!m_isOpen) {
            m_checked = std::make_unique<CheckedDevice>(m_file.device());
            if (m_isCompressed)
                m_gzip = std::make_unique<KNGzipDevice>(*m_checked);
        }
        m_isOpen = true;
        if (!m_checked->isGood())
            *error = m_file.writeError();
        return *error ? nullptr : m_gzip ? static_cast<QIODevice *>(m_gzip.get()) : m_checked.get();
    }
    KNError commit() override
    {
        KNError error;
        if ((m_gzip && !m_gzip->finish()) || (m_checked && !m_checked->isGood()))
            return m_file.writeError();
        m_file.commit(&error);
        return error;
    }

private:
    KNTargetFile m_file;
    const bool m_isCompressed;
    bool m_isOpen = false;
    std::unique_ptr<CheckedDevice> m_checked; ///< null before it is open
    std::unique_ptr<KNGzipDevice> m_gzip;     ///< null if it is not compressed
};

/// A folder, of whose files one at a time is open.
class ScriptFolder : public KNScriptTarget
{
public:
    explicit ScriptFolder(const QString &path)
        : m_folder(path)
    {
    }

    bool isDivided() const override { return true; }
    QIODevice *deviceFor(const QString &fileName, KNError *error) override
    {
        *error = KNError();
        if (m_file && fileName == m_name && m_checked->isGood())
            return m_checked.get();
        *error = commit();
        if (*error || !createFolder(error))
            return nullptr;
        m_name = fileName;
        m_file = std::make_unique<KNTargetFile>(m_folder.filePath(fileName));
        if (!m_file->open(error))
            return nullptr;
        m_checked = std::make_unique<CheckedDevice>(m_file->device());
        return m_checked.get();
    }
    KNError commit() override
    {
        KNError error;
        if (m_file && m_checked && !m_checked->isGood())
            error = m_file->writeError();
        else if (m_file)
            m_file->commit(&error);
        m_checked.reset();
        m_file.reset();
        return error;
    }

private:
    bool createFolder(KNError *error) const
    {
        if (m_folder.mkpath(QStringLiteral(".")))
            return true;
        *error = KNError(
            QStringLiteral("com.quorvex.vantor.export"), 0,
            KNFormat(QCoreApplication::translate("KNScriptTarget", "The folder %@ could not be created."),
                     m_folder.path()));
        return false;
    }

    const QDir m_folder;
    QString m_name; ///< of the open file
    std::unique_ptr<KNTargetFile> m_file;
    std::unique_ptr<CheckedDevice> m_checked; ///< of the open file
};

/// A zip file of scripts.
class ZippedScripts : public KNScriptTarget
{
public:
    explicit ZippedScripts(const QString &path)
        : m_file(path)
    {
    }

    bool isDivided() const override { return true; }
    QIODevice *deviceFor(const QString &fileName, KNError *error) override
    {
        *error = KNError();
        if (m_zip && fileName == m_name)
            return m_zip.get();
        if (!m_zip && !m_file.open(error))
            return nullptr;
        if (!m_zip)
            m_zip = std::make_unique<KNZipDevice>(m_file.device());
        m_name = fileName;
        if (m_zip->beginPart(fileName))
            return m_zip.get();
        *error = m_file.writeError();
        return nullptr;
    }
    KNError commit() override
    {
        KNError error;
        if (m_zip && !m_zip->finish())
            return m_file.writeError();
        m_file.commit(&error);
        return error;
    }

private:
    KNTargetFile m_file; // outlives the archive
    QString m_name;      ///< of the part that is written
    std::unique_ptr<KNZipDevice> m_zip;
};

} // namespace

KNScriptTarget::~KNScriptTarget() = default;

std::unique_ptr<KNScriptTarget> KNScriptTarget::create(Kind kind, const QString &path)
{
    if (kind == Kind::Folder)
        return std::make_unique<ScriptFolder>(path);
    if (kind == Kind::ZipFile)
        return std::make_unique<ZippedScripts>(path);
    return std::make_unique<OneScriptFile>(path, kind == Kind::GzipFile);
}

KNScriptTarget::Kind KNScriptTarget::kindFor(const QString &path)
{
    if (path.endsWith(QLatin1Char('/')) || QFileInfo(path).isDir())
        return Kind::Folder;
    if (path.endsWith(QLatin1String(".zip"), Qt::CaseInsensitive))
        return Kind::ZipFile;
    return path.endsWith(QLatin1String(".gz"), Qt::CaseInsensitive) ? Kind::GzipFile : Kind::File;
}

QString KNScriptTarget::safeName(const QString &name)
{
    QString safe;
    for (const QChar character : name) {
        const bool isPlain = character.isLetterOrNumber() || QStringView(u"._- ").contains(character);
        safe += isPlain ? QString(character) : KNFormat("%%%04x", character.unicode());
    }
    return safe;
}

QString KNScriptTarget::fileNameFor(const QString &name)
{
    return safeName(name) + QLatin1String(".sql");
}
