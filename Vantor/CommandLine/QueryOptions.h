#pragma once

#include "CommandLine/ConnectionOptions.h"

#include <QStringList>

/// What the arguments of "vantor-cli query" ask for.
struct QueryOptions
{
    bool showHelp = false;
    ConnectionOptions connection;
    QString format = QStringLiteral("table");
    QString file;               ///< null when not given
    std::optional<QString> sql; ///< the text itself, when it stands among the arguments

    /// Reads the arguments; empty, with an error that says what is wrong, when they do not fit together.
    static std::optional<QueryOptions> parse(const QStringList &arguments, KNError *error);
    static QString helpText();

    /// The text to run: the argument, the file or standard input. Empty with an error when it cannot be read.
    std::optional<QString> readText(KNError *error) const;
};
