#include "CommandLine/QueryOptions.h"

#include "CommandLine/TextInput.h"
#include "Foundation/KNFormat.h"
#include "KNSharedExport.h"

#include <QCommandLineParser>

namespace {

const QString Domain = QStringLiteral("com.quorvex.vantor.cli");

std::nullopt_t usageError(KNError *error, const QString &text)
{
    *error = KNError(Domain, 0, text);
    return std::nullopt;
}

void addOptions(QCommandLineParser &parser)
{
    const auto text = [](const char *utf8) { return QString::fromUtf8(utf8); };
    parser.setApplicationDescription(text("Runs SQL on a server and writes the results to standard output."));
    parser.addOptions({
        {text("server"), text("The server: HOST[,PORT] or HOST\\INSTANCE."), text("server")},
        {text("sample"), text("Start a private sample server and run there.")},
        {text("user"), text("The login name; DOMAIN\\user for a Windows login."), text("name")},
        {text("database"), text("The database to begin in."), text("name")},
        {text("format"), text("table (the default), csv or json."), text("format")},
        {text("file"), text("Read the SQL from a file; - is standard input."), text("file")},
        {text("login-timeout"), text("How long connecting may take; 15 when not given."), text("seconds")},
        {text("encrypt"),
         text("Encryption: off; request (the default: the login, when the server can); or require "
              "(everything, "
              "with a certificate that is verified; the default with one of the next three)."),
         text("mode")},
        {text("trust"),
         text("Trust the certificates of this PEM file, and no others, to vouch for the server."),
         text("file")},
        {text("no-host-check"), text("Take a certificate that is for another host.")},
        {text("trust-server-certificate"), text("Take any certificate, whoever shows it.")},
        {{text("h"), text("help")}, text("Show this help.")},
    });
    parser.addPositionalArgument(
        text("SQL"), text("The SQL to run; without it and --file, standard input is read."), text("[SQL]"));
}

/// What the arguments say about encryption, as session parameters; empty when they do not fit together.
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
        parameters.insert(QStringLiteral("encryption"), mode);
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

std::optional<QueryOptions> QueryOptions::parse(const QStringList &arguments, KNError *error)
{
    QCommandLineParser parser;
    addOptions(parser);
    if (!parser.parse(QStringList{QStringLiteral("vantor-cli query")} + arguments))
        return usageError(error, parser.errorText());

    const auto value = [&](const char *name) {
        const QString option = QString::fromLatin1(name);
        return parser.isSet(option) ? parser.value(option) : QString();
    };
    QueryOptions options;
    options.showHelp = parser.isSet(QStringLiteral("help"));
    options.useSampleServer = parser.isSet(QStringLiteral("sample"));
    options.server = value("server");
    options.user = value("user");
    options.database = value("database");
    options.file = value("file");
    if (options.showHelp)
        return options;
    if (parser.isSet(QStringLiteral("format")))
        options.format = value("format");
    if (options.format != QLatin1String("table") && options.format != QLatin1String("csv") &&
        options.format != QLatin1String("json"))
        return usageError(error, KNFormat("\"%@\" is no format. Use table, csv or json.", options.format));
    if (parser.isSet(QStringLiteral("login-timeout"))) {
        options.loginTimeout = value("login-timeout").toInt();
        if (options.loginTimeout <= 0)
            return usageError(error, QStringLiteral("--login-timeout takes a number of seconds from 1 on."));
    }
    const auto encryption = encryptionFrom(parser, error);
    if (!encryption)
        return std::nullopt;
    options.encryption = *encryption;
    if (options.useSampleServer == !options.server.isEmpty())
        return usageError(error, QStringLiteral("Give either --server or --sample."));
    if (!options.useSampleServer && options.user.isEmpty())
        return usageError(error, QStringLiteral("--server needs --user."));
    const QStringList positional = parser.positionalArguments();
    if (positional.size() > 1)
        return usageError(error,
                          QStringLiteral("More than one SQL text was given. Put the text into quotes."));
    if (!positional.isEmpty() && !options.file.isNull())
        return usageError(error, QStringLiteral("Give either a SQL text or --file."));
    if (!positional.isEmpty())
        options.sql = positional.first();
    return options;
}

QString QueryOptions::helpText()
{
    QCommandLineParser parser;
    addOptions(parser);
    return parser.helpText() +
           QStringLiteral(
               "\nThe password is taken from the environment variable VANTOR_PASSWORD, or asked for on the "
               "terminal.\nExit status: 0 success, 1 SQL error, 2 usage, 3 no connection, 130 "
               "cancelled (Ctrl-C).\n");
}

std::optional<QString> QueryOptions::readText(KNError *error) const
{
    return sql ? sql : readTextInput(file, error);
}
