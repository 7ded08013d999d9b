#pragma once

#include "CommandLine/ConnectionOptions.h"

#include <QStringList>

/// The arguments of a command that works with a server: prints the help and the errors of usage. Main thread.
class CommandArguments
{
public:
    /// `command` is the command's name. The parser has the command's options and those of a connection.
    CommandArguments(QCommandLineParser &parser, const char *command);

    /// Parses the arguments behind the command's name. Nullopt if the command ends here with exitStatus():
    /// they are invalid, or the help was asked for and printed.
    std::optional<ConnectionOptions> parse(const QStringList &arguments);
    /// The same for a command that cannot do without a server.
    std::optional<ConnectionOptions> parseForServer(const QStringList &arguments);
    int exitStatus() const { return m_exitStatus; }

    /// Prints an error with a hint to the help. Returns the exit status.
    int fail(const QString &text) const;
    int failWithoutServer() const;

private:
    QCommandLineParser &m_parser;
    const QString m_command;
    int m_exitStatus = 0;
};
