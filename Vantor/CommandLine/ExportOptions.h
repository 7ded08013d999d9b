#pragma once

#include "CommandLine/ConnectionOptions.h"
#include "Export/KNScriptExport.h"

#include <QStringList>

/// The options of "vantor-cli export".
struct ExportOptions
{
    bool showHelp = false;
    ConnectionOptions connection;
    QStringList tables; ///< as entered; empty for all objects
    KNScriptOptions scripts;
    QString target; ///< null for standard output

    /// Parses the arguments; nullopt, with an error, if they are invalid or contradictory.
    static std::optional<ExportOptions> parse(const QStringList &arguments, KNError *error);
    static QString helpText();

    /// The objects that the options name; empty with an error if a table is missing or ambiguous.
    QList<KNScriptObject> chosen(const QList<KNScriptObject> &objects, KNError *error) const;
};
