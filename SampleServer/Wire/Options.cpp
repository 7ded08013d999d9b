#include "Wire/Options.h"

#include <charconv>
#include <cstdio>
#include <functional>
#include <map>
#include <string_view>

namespace SampleServer {

namespace {

std::uint16_t portFrom(const std::string &text)
{
    std::uint16_t port = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
    if (error != std::errc() || end != text.data() + text.size())
        throw UsageError("'" + text + "' is no port.");
    return port;
}

int countFrom(const std::string &text)
{
    constexpr int most = 1'000'000;
    int count = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), count);
    if (error != std::errc() || end != text.data() + text.size() || count < 0 || count > most)
        throw UsageError("'" + text + "' is no number from 0 to " + std::to_string(most) + '.');
    return count;
}

TdsVersion versionFrom(const std::string &text)
{
    const auto version = tdsVersionFromText(text);
    if (!version)
        throw UsageError("'" + text + "' is none of 7.1, 7.2, 7.3 and 7.4.");
    return *version;
}

Edition editionFrom(const std::string &text)
{
    static const std::map<std::string_view, Edition> editions = {{"2000", Edition::Sql2000},
                                                                 {"2008", Edition::Sql2008},
                                                                 {"2022", Edition::Sql2022},
                                                                 {"azure", Edition::Azure}};
    const auto found = editions.find(text);
    if (found == editions.end())
        throw UsageError("'" + text + "' is none of 2000, 2008, 2022 and azure.");
    return found->second;
}

TdsVersion versionOf(Edition edition)
{
    return edition == Edition::Sql2000   ? TdsVersion::V71
           : edition == Edition::Sql2008 ? TdsVersion::V73B
                                         : TdsVersion::V74;
}

TlsPolicy tlsPolicyFrom(const std::string &text)
{
    if (text == "off")
        return TlsPolicy::Off;
    if (text == "request")
        return TlsPolicy::Request;
    if (text == "require")
        return TlsPolicy::Require;
    throw UsageError("'" + text + "' is none of off, request and require.");
}

void requireTlsFiles(const Options &options)
{
    const bool hasBoth = !options.certificateFile.empty() && !options.keyFile.empty();
    const bool hasOne = !options.certificateFile.empty() || !options.keyFile.empty();
    if (options.tls == TlsPolicy::Off && hasOne)
        throw UsageError("Options '--cert' and '--key' need '--tls request' or '--tls require'.");
    if (options.tls != TlsPolicy::Off && !hasBoth)
        throw UsageError("Option '--tls' needs a certificate and its key: --cert FILE --key FILE.");
}

} // namespace

Options parseOptions(std::span<const char *const> arguments)
{
    Options options;
    std::optional<TdsVersion> version;
    const std::map<std::string_view, std::function<void(const std::string &)>> setters = {
        {"--bind", [&](const std::string &value) { options.bindAddress = value; }},
        {"--port", [&](const std::string &value) { options.port = portFrom(value); }},
        {"--browser-port", [&](const std::string &value) { options.browserPort = portFrom(value); }},
        {"--instance", [&](const std::string &value) { options.instance = value; }},
        {"--user", [&](const std::string &value) { options.user = value; }},
        {"--password-env", [&](const std::string &value) { options.passwordVariable = value; }},
        {"--tds", [&](const std::string &value) { version = versionFrom(value); }},
        {"--tls", [&](const std::string &value) { options.tls = tlsPolicyFrom(value); }},
        {"--cert", [&](const std::string &value) { options.certificateFile = value; }},
        {"--key", [&](const std::string &value) { options.keyFile = value; }},
        {"--edition", [&](const std::string &value) { options.edition = editionFrom(value); }},
        {"--tables", [&](const std::string &value) { options.tables = countFrom(value); }},
        {"--version-banner", [&](const std::string &value) { options.versionBanner = value; }},
    };
    for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
        const std::string_view name = *argument;
        if (name == "--help") {
            options.help = true;
            continue;
        }
        const auto setter = setters.find(name);
        if (setter == setters.end())
            throw UsageError("Unknown option '" + std::string(name) + "'.");
        if (++argument == arguments.end())
            throw UsageError("Option '" + std::string(name) + "' needs a value.");
        setter->second(*argument);
    }
    options.highestVersion = version.value_or(versionOf(options.edition));
    if (!options.help)
        requireTlsFiles(options);
    return options;
}

std::string usageText()
{
    return R"(Usage: vantor-sample-server [options]

A stand-in for SQL Server to try and test clients with: it speaks TDS 7.1 to 7.4 and runs a subset of
T-SQL over databases in memory.

  --port N               TCP port; 0, the default, picks a free one, which is printed
  --bind ADDRESS         address to listen on (127.0.0.1)
  --browser-port N       also answer Browser requests on this UDP port; 0 picks a free one
  --instance NAME        instance name that the Browser lists (SAMPLE)
  --user NAME            the one account, as a login and as the user of any domain (sa)
  --password-env VAR     environment variable with its password (VANTOR_SAMPLE_PASSWORD);
                         the password is "Sample-1" when the variable is not set
  --edition EDITION      the server that it answers as: 2000, 2008, 2022 or azure (2022)
  --tds VERSION          highest protocol version offered: 7.1, 7.2, 7.3 or 7.4 (7.1 as 2000, 7.3 as 2008,
                         else 7.4); the connection of a client that asks for more is closed
  --tls MODE             off: no encryption (the default); request: what the client wants, which is the
                         login alone when it does not care; require: everything, and who cannot is refused
  --cert FILE            the server's certificate, PEM, which its chain may follow
  --key FILE             the certificate's private key, PEM
  --tables N             also a database "many" with N empty tables, to try how clients cope
  --version-banner TEXT  what @@VERSION answers; the version number in it is the server's
  --help                 print this
)";
}

ProgramVersion versionInBanner(const std::string &banner)
{
    for (std::size_t at = 0; at < banner.size(); at = banner.find(' ', at) + 1) {
        unsigned major = 0, minor = 0, build = 0, revision = 0;
        if (std::sscanf(banner.c_str() + at, "%2u.%2u.%4u.%4u", &major, &minor, &build, &revision) >= 3)
            return {static_cast<std::uint8_t>(major), static_cast<std::uint8_t>(minor),
                    static_cast<std::uint16_t>(build), static_cast<std::uint16_t>(revision)};
        if (banner.find(' ', at) == std::string::npos)
            break;
    }
    return {};
}

} // namespace SampleServer
