#pragma once

#include "CommandLine/ConnectionOptions.h"
#include "Database/KNScriptRun.h"
#include "Database/KNTableDesign.h"

#include <QStringList>

/// The options of "vantor-cli design".
struct DesignOptions
{
    bool showHelp = false;
    ConnectionOptions connection;
    QString table; ///< its path as entered
    KNColumnEdit edit;
    bool isApplied = false;
    bool isForced = false;
    bool prefersCorrected = false;
    KNOnError onError = KNOnError::Stop;

    /// Parses the arguments; nullopt, with an error, if they are invalid or contradictory.
    static std::optional<DesignOptions> parse(const QStringList &arguments, KNError *error);
    static QString helpText();
};
