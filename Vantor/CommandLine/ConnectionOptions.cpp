#include "CommandLine/ConnectionOptions.h"

#include "Foundation/KNFormat.h"

#include <QCommandLineParser>

std::nullopt_t usageError(KNError *error, const QString &text)
{
    *error = KNError(QStringLiteral("com.quorvex.vantor.cli"), 0, text);
    return std::nullopt;
}

namespace {

/// The encryption arguments as session parameters; nullopt if they are contradictory.
std::optional<QVariantMap> encryptionFrom(const QCommandLineParser &parser, KNError *error)
{
    const auto isSet = [&](const char *option) { return parser.isSet(QString::fromLatin1(option)); };
    const bool saysWhomToTrust =
        isSet("trust") || isSet("no-host-check") || isSet("trust-server-certificate");
    QVariantMap parameters;
    if (isSet("encrypt") || saysWhomToTrust) {
        const QString mode =
            isSet("encrypt") ? parser.value(QStringLiteral("encrypt")) : QStringLiteral("require");
        if (mode != QLatin1String("off") && mode != QLatin1String("request") &&
            mode != QLatin1String("require"))
            return usageError(
                error, KNFormat("\"%@\" is no kind of encryption. Use off, request or require.", mode));
        if (mode == QLatin1String("off") && saysWhomToTrust)
            return usageError(error, QStringLiteral("Without encryption there is no certificate to trust."));
        // A certificate is verified only if the server cannot avoid encryption.
        parameters.insert(QStringLiteral("encryption"), isSet("trust") ? QStringLiteral("require") : mode);
    }
    if (isSet("trust") && isSet("trust-server-certificate"))
        return usageError(error, QStringLiteral("Give either --trust or --trust-server-certificate."));
    if (isSet("trust"))
        parameters.insert(QStringLiteral("trustedCertificateFile"), parser.value(QStringLiteral("trust")));
    if (isSet("no-host-check"))
        parameters.insert(QStringLiteral("checkHostName"), false);
    if (isSet("trust-server-certificate"))
        parameters.insert(QStringLiteral("trustServerCertificate"), true);
    return parameters;
}

} // namespace

void ConnectionOptions::addTo(QCommandLineParser &parser)
{
    const auto text = [](const char *utf8) { return QString::fromUtf8(utf8); };
    parser.addOptions({
        {text("server"), text("The server: HOST[,PORT] or HOST\\INSTANCE."), text("server")},
        {text("sample"), text("Start a private sample server and run there.")},
        {text("user"), text("The login name; DOMAIN\\user for a Windows login."), text("name")},
        {text("database"), text("The database to begin in."), text("name")},
        {text("login-timeout"), text("How long connecting may take; 15 when not given."), text("seconds")},
        {text("trace"), text("Write a trace of the protocol, and print the path of its file.")},
        {text("encrypt"),
         text("Encryption: off; request (the default: the login, when the server can); or require "
              "(everything, with a certificate that is verified; the default with one of the next three)."),
         text("mode")},
        {text("trust"),
         text("Trust the certificates of this PEM file, and no others, to vouch for the server. Always means "
              "--encrypt require."),
         text("file")},
        {text("no-host-check"), text("Take a certificate that is for another host.")},
        {text("trust-server-certificate"), text("Take any certificate, whoever shows it.")},
    });
}

std::optional<ConnectionOptions> ConnectionOptions::from(const QCommandLineParser &parser, KNError *error)
{
    const auto value = [&](const char *name) {
        const QString option = QString::fromLatin1(name);
        return parser.isSet(option) ? parser.value(option) : QString();
    };
    ConnectionOptions options;
    options.useSampleServer = parser.isSet(QStringLiteral("sample"));
    options.writesTrace = parser.isSet(QStringLiteral("trace"));
    options.server = value("server");
    options.user = value("user");
    options.database = value("database");
    if (parser.isSet(QStringLiteral("login-timeout"))) {
        options.loginTimeout = value("login-timeout").toInt();
        if (options.loginTimeout <= 0)
            return usageError(error, QStringLiteral("--login-timeout takes a number of seconds from 1 on."));
    }
    const auto encryption = encryptionFrom(parser, error);
    if (!encryption)
        return std::nullopt;
    options.encryption = *encryption;
    if (options.useSampleServer && !options.server.isEmpty())
        return usageError(error, QStringLiteral("Give either --server or --sample."));
    if (!options.server.isEmpty() && options.user.isEmpty())
        return usageError(error, QStringLiteral("--server needs --user."));
    return options;
}

QString ConnectionOptions::helpText()
{
    return QStringLiteral(
        "\nThe password is taken from the environment variable VANTOR_PASSWORD, or asked for on the "
        "terminal.\nExit status: 0 success, 1 SQL error, 2 usage or output that could not be written, 3 no "
        "connection, 130 cancelled (Ctrl-C).\n");
}
