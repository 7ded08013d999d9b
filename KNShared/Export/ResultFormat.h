#pragma once

#include "Database/VantorDBC.h"
#include "Export/ResultWriter.h"

#include <QIODevice>
#include <QList>

#include <functional>
#include <memory>

/// A format in which results leave the programs. The copy menu, the export of files, `vantor-cli --format`
/// and its help read the one table in the source file. Immutable; any thread.
struct KNSHARED_EXPORT ResultFormat
{
    /// Where a format is offered.
    enum Use { CopyAs = 1, File = 2, Terminal = 4 };

    /// What a writer writes to, and what it may need for that.
    struct Target
    {
        QIODevice &device;           ///< open; outlives the writer
        QString path = {};           ///< of the device; null when it is no file
        bool hasManyResults = false; ///< whether all results of a run go there, or one
        VantorDBCPtr details =
            {}; ///< quotes names and values; may be null where the format is not offered for it
        QString nullText = {}; ///< stands for NULL in plain text
    };
    using CreateWriter = std::function<std::unique_ptr<ResultWriter>(const Target &target)>;

    QString name;      ///< in lower case, as `--format` takes it
    const char *title; ///< English, with the mnemonic of its menu item
    QString extension; ///< of files, without the dot; empty when it is offered for none
    int uses;          ///< of Use; 0 for one with a place of its own in a menu
    CreateWriter createWriter;

    /// The title in the user's language, with its mnemonic.
    QString localizedTitle() const;

    static const QList<ResultFormat> &all();
    static QList<ResultFormat> offeredFor(Use use);
    static QStringList namesFor(Use use);
    /// Null for a name that no format has.
    static const ResultFormat *named(const QString &name);
};
