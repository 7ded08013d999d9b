#pragma once

#include "Export/KNDatabaseScripter.h"

#include <QCoreApplication>

/// Writes the scripts of a database into one file, or into a folder with a file for each object.
class KNSHARED_EXPORT KNScriptExport
{
    Q_DECLARE_TR_FUNCTIONS(KNScriptExport)

public:
    /// Receives what is being written and the fraction of the parts that are done, from 0 to 1.
    using Progress = std::function<void(const QString &title, double fraction)>;

    QList<KNScriptObject> objects; ///< nothing else is exported
    KNScriptOptions options;
    QString target; ///< a file; or a folder, which is created if it is missing
    bool isFolder = false;

    /// Replaces each file as a whole: after an error or a cancellation a file is as it was, and in a folder
    /// those before it are complete. Both functions may be empty; they are called on this thread. Blocks on
    /// the server: any thread except the UI thread.
    KNError run(KNDatabaseScripter &scripter, const Progress &progress,
                const KNRowStream::IsCancelled &isCancelled) const;

    /// A file name for a part in a folder, such as "dbo.Orders.sql". Different names give different ones.
    static QString fileNameFor(const QString &name);
};
