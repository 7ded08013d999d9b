#pragma once

#include "Foundation/KNError.h"
#include "KNSharedExport.h"

#include <QIODevice>

#include <memory>

/// Where the parts of a script are written: one file, or a file for each object. Used by one thread at a
/// time.
class KNSHARED_EXPORT KNScriptTarget
{
public:
    enum class Kind {
        File,
        GzipFile,
        Folder,  ///< a file for each object
        ZipFile, ///< of a file for each object
    };

    /// A null path is standard output, for one file only.
    static std::unique_ptr<KNScriptTarget> create(Kind kind, const QString &path);
    /// The kind that a path asks for: a folder by its slash or because it exists, files by their extension.
    static Kind kindFor(const QString &path);
    /// A file name for a part, such as "dbo.Orders.sql". Different names give different ones.
    static QString fileNameFor(const QString &name);
    /// The name with only such characters as every file system allows.
    static QString safeName(const QString &name);

    virtual ~KNScriptTarget();

    /// Whether each object has a file of its own.
    virtual bool isDivided() const = 0;
    /// The device for the file with this name, which the parts of an undivided target do not need. It stays
    /// valid until the next call. Null with an error.
    virtual QIODevice *deviceFor(const QString &fileName, KNError *error) = 0;
    /// Completes the files; without it those of File, GzipFile and ZipFile stay as they were.
    virtual KNError commit() = 0;
};
