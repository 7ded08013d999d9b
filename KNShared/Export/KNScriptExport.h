#pragma once

#include "Export/KNDatabaseScripter.h"
#include "Export/KNScriptTarget.h"

/// How far an export has come. A value type of any thread.
struct KNScriptProgress
{
    QString title;          ///< of the object that is read or written
    bool isWriting = false; ///< otherwise objects are read
    qsizetype done = 0;     ///< objects read, or parts written
    qsizetype count = 0;
    qint64 rows = 0; ///< written
};

/// Writes the scripts of a database into one file, or into a file for each object.
class KNSHARED_EXPORT KNScriptExport
{
public:
    using Progress = std::function<void(const KNScriptProgress &progress)>;

    QList<KNScriptObject> objects; ///< nothing else is exported
    KNScriptOptions options;
    QString path; ///< of the target; a missing folder is created
    KNScriptTarget::Kind kind = KNScriptTarget::Kind::File;

    /// Replaces each file as a whole: after an error or a cancellation a file is as it was, and in a folder
    /// those before it are complete. Both functions may be empty; they are called on this thread. Blocks on
    /// the server: any thread except the UI thread.
    KNError run(KNDatabaseScripter &scripter, const Progress &progress,
                const KNRowStream::IsCancelled &isCancelled) const;

private:
    KNError write(const QList<KNScriptPart> &parts, KNScriptControl control, const Progress &progress) const;
};
