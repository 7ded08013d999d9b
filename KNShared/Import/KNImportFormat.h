#pragma once

#include "Import/KNImportReader.h"
#include "Import/KNImportTextSource.h"

/// A file to import and how to read it.
struct KNImportFile
{
    QString path;
    QString format = {}; ///< a name of KNImportFormat; null for the one of the file's extension
    KNImportTextSource::Encoding encoding = KNImportTextSource::Encoding::Detect;
    QChar separator = {};           ///< of values; null for the one that the first line suggests
    QChar quote = QLatin1Char('"'); ///< null for none
    bool hasHeader = true;          ///< whether the first row holds the names of the columns
    QString sheet = {};             ///< of a workbook; null for the first one
};

/// A format of files that can be imported. The wizard, `vantor-cli import` and its help use the one table in
/// the source file. Immutable; any thread.
struct KNSHARED_EXPORT KNImportFormat
{
    enum Use { HasSeparator = 1, HasEncoding = 2, HasHeader = 4, HasSheets = 8 };
    using CreateReader = std::unique_ptr<KNImportReader> (*)(const KNImportFile &file, KNError *error);

    const char *name;      ///< lower case, as used by `--format`
    const char *title;     ///< English
    const char *extension; ///< without the dot
    int uses;              ///< flags of Use: the options that apply
    CreateReader create;

    QString localizedTitle() const;
    /// Whether later rows may add columns, as records with further keys do.
    bool addsColumns() const { return !(uses & (HasHeader | HasSheets)); }

    static const QList<KNImportFormat> &all();
    static QStringList names();
    /// Returns the format of this name; null if there is none.
    static const KNImportFormat *named(const QString &name);
    /// Returns the format that the file names, or that of its extension; null if there is none.
    static const KNImportFormat *of(const KNImportFile &file);
    /// Opens a file; null, with an error, on failure. Blocks on the file.
    static std::unique_ptr<KNImportReader> open(const KNImportFile &file, KNError *error);
};
