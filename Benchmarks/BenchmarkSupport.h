#pragma once

#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLClient.h"
#include "Support/SampleServerFixture.h"

#include <memory>

/// The sample server that is measured against: on the port VANTOR_BENCHMARK_PORT, or one of its own.
std::uint16_t benchmarkPort();
std::shared_ptr<MSSQLDatabaseConnectionDetails> settingsFor(std::uint16_t port);
std::unique_ptr<MSSQLClient> connectedClient();

/// Of this process, in bytes.
double residentBytes();
/// Of this process, all its threads, in seconds.
double processorSeconds();
/// Since an unknown moment.
double wallSeconds();

/// Sends the program's log to a folder for temporary files.
void keepLogsOutOfTheWay();
