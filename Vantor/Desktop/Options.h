#pragma once

#include <QStringList>

#include <optional>

/// What the command line of the desktop program says.
struct Options
{
    bool useSampleServer = false;
    bool writesTrace = false; ///< of the protocol
    QStringList files;

    /// Empty when the program is to end at once, with `exitStatus`: what was asked for is printed, or what is
    /// wrong.
    static std::optional<Options> parse(const QStringList &arguments, int *exitStatus);
};
