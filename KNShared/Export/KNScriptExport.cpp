#include "Export/KNScriptExport.h"

#include <QHash>

namespace {

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

/// Writes the list of the files in the order in which they run.
KNError writeList(KNScriptTarget &target, const QStringList &fileNames)
{
    KNError error;
    QIODevice *const device = target.deviceFor(QStringLiteral("_run_all.sql"), &error);
    for (const QString &name : fileNames) {
        if (device)
            device->write(":r \"" + name.toUtf8() + "\"\r\n");
    }
    return error;
}

} // namespace

KNError KNScriptExport::run(KNDatabaseScripter &scripter, const Progress &progress,
                            const KNRowStream::IsCancelled &isCancelled) const
{
    KNScriptControl control{isCancelled};
    if (progress) {
        control.readsObject = [&](const QString &title, qsizetype index, qsizetype count) {
            progress({title, false, index, count});
        };
    }
    KNError error;
    const QList<KNScriptPart> parts = scripter.parts(objects, options, control, &error);
    if (error || control.wasCancelled())
        return error;
    return write(parts, control, progress);
}

KNError KNScriptExport::write(const QList<KNScriptPart> &parts, KNScriptControl control,
                              const Progress &progress) const
{
    const auto target = KNScriptTarget::create(kind, path);
    const QList<KNScriptPart> ordered = target->isDivided() ? groupedByFile(parts) : parts;
    KNScriptProgress state;
    state.isWriting = true;
    state.count = ordered.size();
    const auto report = [&] {
        if (progress)
            progress(state);
    };
    control.wroteRows = [&](qint64 rows) {
        state.rows += rows;
        report();
    };
    KNError error;
    QStringList fileNames;
    if (!target->isDivided() && !target->deviceFor({}, &error))
        return error;
    for (const KNScriptPart &part : ordered) {
        if (control.wasCancelled())
            return {};
        state.title = part.title;
        report();
        const QString fileName =
            part.isData ? KNScriptTarget::safeName(part.name) : KNScriptTarget::fileNameFor(part.name);
        QIODevice *const device = target->deviceFor(fileName, &error);
        if (device)
            error = part.write(*device, control);
        if (error)
            return error;
        if (!part.isData && (fileNames.isEmpty() || fileNames.last() != fileName))
            fileNames.append(fileName);
        ++state.done;
    }
    if (control.wasCancelled())
        return {};
    if (target->isDivided())
        error = writeList(*target, fileNames);
    return error ? error : target->commit();
}
