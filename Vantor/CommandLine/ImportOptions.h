#pragma once

#include "CommandLine/ConnectionOptions.h"
#include "Import/KNImportFileAnalysis.h"
#include "Import/KNImportPlan.h"

#include <QList>
#include <QStringList>

/// The options of "vantor-cli import".
struct ImportOptions
{
    /// A column of the table and the column of the file, or the value, that it gets.
    using Assignment = std::pair<QString, QString>;

    bool showHelp = false;
    ConnectionOptions connection;
    KNImportFile file;
    QString table; ///< its path as entered
    bool createsTable = false;
    bool mapsByPosition = false;
    QList<Assignment> mapped;
    QList<Assignment> constants;
    QStringList skipped; ///< columns of the file
    KNImportValueFormat values;
    bool writesIdentity = false;
    bool truncatesFirst = false;
    bool isDryRun = false;
    quint64 analysedRows = KNImportFileAnalysis::AllRows; ///< for the types of a new table
    qsizetype batchRows = KNImportPlan::DefaultBatchRows;
    QString faultFile; ///< null without one

    /// Parses the arguments; nullopt, with an error, if they are invalid or contradictory.
    static std::optional<ImportOptions> parse(const QStringList &arguments, KNError *error);
    static QString helpText();
};
