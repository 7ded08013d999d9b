#pragma once

#include "Database/VantorDBC.h"
#include "Export/CsvOptions.h"
#include "Export/ResultWriter.h"

#include <QIODevice>
#include <QList>

#include <functional>
#include <memory>

/// A format for results. The copy menu, file export, `vantor-cli --format` and its help use the one table in
/// the source file. Immutable; any thread.
struct KNSHARED_EXPORT ResultFormat
{
    /// Where a format is available.
    enum Use { CopyAs = 1, File = 2, Terminal = 4 };

    /// The output of a writer and its options.
    struct Target
    {
        QIODevice &device;           ///< open; outlives the writer
        QString path = {};           ///< of the device; null if it is not a file
        bool hasManyResults = false; ///< whether all results of a run are written there, or one
        VantorDBCPtr details = {};   ///< quotes names and values; may be null for uses without this format
        QString nullText = {};       ///< replaces NULL in plain text
        CsvOptions csv = {};
    };
    using CreateWriter = std::function<std::unique_ptr<ResultWriter>(const Target &target)>;

    QString name;      ///< lower case, as used by `--format`
    const char *title; ///< English, with the mnemonic of its menu item
    QString extension; ///< file extension without the dot; empty if not available for files
    int uses;          ///< flags of Use; 0 for a format with a separate menu item
    CreateWriter createWriter;

    /// The translated title, including the mnemonic.
    QString localizedTitle() const;

    static const QList<ResultFormat> &all();
    static QList<ResultFormat> offeredFor(Use use);
    static QStringList namesFor(Use use);
    /// Returns the format of this name; null if there is none.
    static const ResultFormat *named(const QString &name);
};
