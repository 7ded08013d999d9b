#include "Export/KNScriptExport.h"

#include "Export/KNTargetFile.h"
#include "Foundation/KNFormat.h"

#include <QDir>
#include <QHash>

#include <memory>

namespace {

/// The files of an export, of which one at a time is open.
class ScriptFiles
{
public:
    explicit ScriptFiles(const KNScriptExport &scripts)
        : m_scripts(scripts)
    {
    }

    /// Opens the file of a part, if it is another one than that of the part before, which is then complete.
    /// Null with an error.
    KNTargetFile *fileFor(const QString &part, KNError *error)
    {
        const QString path = m_scripts.isFolder
                                 ? QDir(m_scripts.target).filePath(KNScriptExport::fileNameFor(part))
                                 : m_scripts.target;
        if (m_file && path == m_path)
            return m_file.get();
        *error = commit();
        if (*error || !createFolder(error))
            return nullptr;
        m_path = path;
        m_file = std::make_unique<KNTargetFile>(path);
        m_order.append(path);
        return m_file->open(error) ? m_file.get() : nullptr;
    }

    /// The list of the files in the order in which they run, for a folder.
    KNError writeList()
    {
        QByteArray list;
        for (const QString &path : std::as_const(m_order))
            list += ":r \"" + QFileInfo(path).fileName().toUtf8() + "\"\r\n";
        KNError error;
        if (KNTargetFile *const file = fileFor(QStringLiteral("_run_all"), &error))
            file->device().write(list);
        return error;
    }

    /// Completes the open file.
    KNError commit()
    {
        KNError error;
        if (m_file)
            m_file->commit(&error);
        m_file.reset();
        return error;
    }

private:
    bool createFolder(KNError *error) const
    {
        if (!m_scripts.isFolder || QDir().mkpath(m_scripts.target))
            return true;
        *error =
            KNError(QStringLiteral("com.quorvex.vantor.export"), 0,
                    KNFormat(KNScriptExport::tr("The folder %@ could not be created."), m_scripts.target));
        return false;
    }

    const KNScriptExport &m_scripts;
    std::unique_ptr<KNTargetFile> m_file;
    QString m_path; ///< of the open file
    QStringList m_order;
};

/// Moves the parts of one file together, to where the first of them is.
QList<KNScriptPart> groupedByFile(const QList<KNScriptPart> &parts)
{
    QHash<QString, QList<KNScriptPart>> files;
    for (const KNScriptPart &part : parts)
        files[part.name].append(part);
    QList<KNScriptPart> grouped;
    for (const KNScriptPart &part : parts)
        grouped += files.take(part.name);
    return grouped;
}

} // namespace

KNError KNScriptExport::run(KNDatabaseScripter &scripter, const Progress &progress,
                            const KNRowStream::IsCancelled &isCancelled) const
{
    KNError error;
    QList<KNScriptPart> parts = scripter.parts(objects, options, &error);
    if (error)
        return error;
    if (isFolder)
        parts = groupedByFile(parts);
    ScriptFiles files(*this);
    if (!isFolder && !files.fileFor({}, &error))
        return error;
    for (qsizetype i = 0; i < parts.size(); ++i) {
        if (isCancelled && isCancelled())
            return {};
        if (progress)
            progress(parts[i].title, static_cast<double>(i) / static_cast<double>(parts.size()));
        KNTargetFile *const file = files.fileFor(parts[i].name, &error);
        if (file)
            error = parts[i].write(file->device(), isCancelled);
        if (error)
            return error;
    }
    if (isCancelled && isCancelled())
        return {};
    if (isFolder)
        error = files.writeList();
    return error ? error : files.commit();
}

QString KNScriptExport::fileNameFor(const QString &name)
{
    QString safe;
    for (const QChar character : name) {
        const bool isPlain = character.isLetterOrNumber() || QStringView(u"._- ").contains(character);
        safe += isPlain ? QString(character) : KNFormat("%%%04x", character.unicode());
    }
    return safe + QLatin1String(".sql");
}
