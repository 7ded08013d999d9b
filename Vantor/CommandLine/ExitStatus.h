#pragma once

/// The exit statuses of vantor-cli.
enum ExitStatus : int {
    ExitSuccess = 0,
    ExitSqlError = 1,
    ExitUsage = 2,
    ExitNoConnection = 3,
    ExitCancelled = 130,
};
