#pragma once

#include "CommandLine/ConnectionOptions.h"

#include "Database/KNScriptRun.h"

#include <QStringList>

/// The options of "vantor-cli query".
struct QueryOptions
{
    bool showHelp = false;
    ConnectionOptions connection;
    QString format = QStringLiteral("table");
    KNOnError onError = KNOnError::Stop;
    QString file;               ///< null when not given
    std::optional<QString> sql; ///< the text, if it is an argument

    /// Parses the arguments; nullopt, with an error, if they are invalid or contradictory.
    static std::optional<QueryOptions> parse(const QStringList &arguments, KNError *error);
    static QString helpText();

    /// Returns the text to run: the argument, the file or standard input. nullopt, with an error, if it
    /// cannot be read.
    std::optional<QString> readText(KNError *error) const;
};
