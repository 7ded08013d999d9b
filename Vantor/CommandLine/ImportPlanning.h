#pragma once

#include "CommandLine/ImportOptions.h"

/// Plans an import as the options of "vantor-cli import" say. Pure; any thread.
namespace ImportPlanning {

/// Assigns the file's columns to those of the table. Every column of the file must be assigned or skipped:
/// nothing is left out unnoticed. Empty, with an error, otherwise.
std::optional<KNImportPlan> plan(const ImportOptions &options, const QStringList &fileColumns,
                                 const QStringList &tablePath,
                                 const QList<KNImportTableColumnModel> &tableColumns, KNError *error);

} // namespace ImportPlanning
