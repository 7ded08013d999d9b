#pragma once

#include <QStringList>

#include <optional>

/// The command-line options of the desktop program.
struct Options
{
    bool useSampleServer = false;
    bool writesTrace = false; ///< of the protocol
    QStringList files;

    /// nullopt if the program must exit at once, with `exitStatus`: the requested output or the error is
    /// printed already.
    static std::optional<Options> parse(const QStringList &arguments, int *exitStatus);
};
