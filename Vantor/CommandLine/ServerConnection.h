#pragma once

#include "CommandLine/ConnectionOptions.h"
#include "CommandLine/ExitStatus.h"
#include "Common/SampleServerProcess.h"
#include "Database/VantorDatabaseClient.h"

#include <functional>

class InterruptWatcher;

/// The server that a command works with, and its client.
class ServerConnection
{
public:
    /// Starts the sample server if the options name it, and completes the settings: prompts for a missing
    /// password. Returns ExitSuccess, or another status with an error.
    ExitStatus prepare(const ConnectionOptions &options, const VantorDBCPtr &settings, KNError *error);
    /// Connects with the settings. Returns ExitSuccess, or another status with an error.
    ExitStatus connect(KNError *error);

    /// The work of a command. Returns its exit status.
    using Work = std::function<int(VantorDatabaseClient &client, InterruptWatcher &interrupts)>;
    /// Connects and runs the work. Returns the exit status, after printing an error if there is no
    /// connection.
    static int run(const ConnectionOptions &options, const VantorDBCPtr &settings, const Work &work);

    VantorDatabaseClient &client() { return *m_client; }

private:
    SampleServerProcess m_sampleServer;
    VantorDBCPtr m_settings;
    std::unique_ptr<VantorDatabaseClient> m_client; ///< null until connected
};
