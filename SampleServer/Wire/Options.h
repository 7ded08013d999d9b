#pragma once

#include "Engine/Edition.h"
#include "Wire/Prelogin.h"
#include "Wire/TdsVersion.h"
#include "Wire/TokenWriter.h"

#include <optional>
#include <span>
#include <stdexcept>
#include <string>

namespace SampleServer {

/// The program's command line.
struct Options
{
    std::string bindAddress = "127.0.0.1";
    std::uint16_t port = 0;                   ///< 0: any free one
    std::optional<std::uint16_t> browserPort; ///< empty: no Browser
    std::string instance = "SAMPLE";
    std::string user = "sa";
    std::string passwordVariable = "VANTOR_SAMPLE_PASSWORD";
    Edition edition = Edition::Sql2022;
    int tables = 0;                              ///< in the database `many`
    TdsVersion highestVersion = TdsVersion::V74; ///< unless given, the one of the edition
    std::string versionBanner;                   ///< empty: that of the edition
    TlsPolicy tls = TlsPolicy::Off;
    std::string certificateFile; ///< PEM, as the key; both set unless `tls` is Off
    std::string keyFile;
    bool help = false;
};

/// What is wrong with a command line, in words for its author.
class UsageError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Throws UsageError. `arguments` come without the program's name.
Options parseOptions(std::span<const char *const> arguments);
/// What --help prints.
std::string usageText();
/// The first word of a version banner that starts with "16.0.1000" or "16.0.1000.6"; the built-in version
/// when there is none.
ProgramVersion versionInBanner(const std::string &banner);

} // namespace SampleServer
