#pragma once

#include <chrono>
#include <string>
#include <vector>

/// Runs a program as a child process with bounds. Any thread may call it.
struct BoundedProgram
{
    std::vector<std::string> command;
    /// NAME=VALUE, beside this process's own, which they replace.
    std::vector<std::string> environment;
    std::string errorFile; ///< the path of a file which takes its standard error

    struct Outcome
    {
        int status = -1; ///< the exit status; -1 when a signal ended the program
        int signal = 0;
        bool wasTooSlow = false; ///< and was therefore ended: its busiest thread by SIGXCPU
        long maximumKilobytes = 0;
    };

    /// Waits until the program ends, or ends it after the bound.
    Outcome run(std::chrono::seconds bound) const;
};
