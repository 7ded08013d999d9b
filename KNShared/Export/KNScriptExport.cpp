#include "Export/KNScriptExport.h"

#include "Export/KNTargetFile.h"
#include "Foundation/KNFormat.h"

#include <QDir>

#include <map>
#include <memory>
#include <vector>

namespace {

/// The open files of an export. All of them are completed at its end.
class ScriptFiles
{
public:
    explicit ScriptFiles(const KNScriptExport &scripts)
        : m_scripts(scripts)
    {
    }

    /// The file of a part; null with an error.
    KNTargetFile *fileFor(const QString &part, KNError *error)
    {
        const QString path = m_scripts.isFolder
                                 ? QDir(m_scripts.target).filePath(KNScriptExport::fileNameFor(part))
                                 : m_scripts.target;
        auto &file = m_files[path];
        if (!file) {
            if (m_scripts.isFolder && !QDir().mkpath(m_scripts.target)) {
                *error = KNError(
                    QStringLiteral("com.quorvex.vantor.export"), 0,
                    KNFormat(KNScriptExport::tr("The folder %@ could not be created."), m_scripts.target));
                return nullptr;
            }
            file = std::make_unique<KNTargetFile>(path);
            m_order.push_back(path);
            if (!file->open(error))
                return nullptr;
        }
        return file.get();
    }

    /// The list of the files in the order in which they run, for a folder.
    KNError writeList()
    {
        KNError error;
        QByteArray list;
        for (const QString &path : m_order)
            list += ":r \"" + QFileInfo(path).fileName().toUtf8() + "\"\r\n";
        if (KNTargetFile *const file = fileFor(QStringLiteral("_run_all"), &error))
            file->device().write(list);
        return error;
    }

    KNError commit()
    {
        KNError error;
        for (const QString &path : m_order) {
            if (!m_files[path]->commit(&error))
                return error;
        }
        return error;
    }

private:
    const KNScriptExport &m_scripts;
    std::map<QString, std::unique_ptr<KNTargetFile>> m_files;
    std::vector<QString> m_order;
};

} // namespace

KNError KNScriptExport::run(KNDatabaseScripter &scripter, const Progress &progress,
                            const KNRowStream::IsCancelled &isCancelled) const
{
    KNError error;
    const QList<KNScriptPart> parts = scripter.parts(objects, options, &error);
    if (error)
        return error;
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
