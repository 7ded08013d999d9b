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

/// The program's command-line options.
struct Options
{
    std::string bindAddress = "127.0.0.1";
    std::uint16_t port = 0;                   ///< 0: any free one
    std::optional<std::uint16_t> browserPort; ///< empty: no Browser
    std::string instance = "SAMPLE";
    std::string user = "sa";
    std::string passwordVariable = "VANTOR_SAMPLE_PASSWORD";
    Edition edition = Edition::Sql2022;
    int tables = 0;                              ///< number of tables in the database `many`
    TdsVersion highestVersion = TdsVersion::V74; ///< default: that of the edition
    std::string versionBanner;                   ///< empty: that of the edition
    TlsPolicy tls = TlsPolicy::Off;
    std::string certificateFile; ///< PEM, as the key; both set unless `tls` is Off
    std::string keyFile;
    bool help = false;
};

/// An invalid command line, with a description for the user.
class UsageError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Throws UsageError. `arguments` exclude the program's name.
Options parseOptions(std::span<const char *const> arguments);
/// The output of --help.
std::string usageText();
/// The version in a banner, from the first text of the form "16.0.1000" or "16.0.1000.6"; the built-in
/// version if there is none.
ProgramVersion versionInBanner(const std::string &banner);

} // namespace SampleServer
