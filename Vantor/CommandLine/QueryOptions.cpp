#include "CommandLine/QueryOptions.h"

#include "CommandLine/FormatOption.h"
#include "CommandLine/OnErrorOption.h"
#include "CommandLine/TextInput.h"

#include <QCommandLineParser>

namespace {

void addOptions(QCommandLineParser &parser)
{
    const auto text = [](const char *utf8) { return QString::fromUtf8(utf8); };
    parser.setApplicationDescription(text("Runs SQL on a server and writes the results to standard output."));
    ConnectionOptions::addTo(parser);
    parser.addOptions({
        FormatOption::option(),
        OnErrorOption::option(),
        {text("file"), text("Read the SQL from a file; - is standard input."), text("file")},
        {{text("h"), text("help")}, text("Show this help.")},
    });
    parser.addPositionalArgument(
        text("SQL"), text("The SQL to run; without it and --file, standard input is read."), text("[SQL]"));
}

} // namespace

std::optional<QueryOptions> QueryOptions::parse(const QStringList &arguments, KNError *error)
{
    QCommandLineParser parser;
    addOptions(parser);
    if (!parser.parse(QStringList{QStringLiteral("vantor-cli query")} + arguments))
        return usageError(error, parser.errorText());

    QueryOptions options;
    options.showHelp = parser.isSet(QStringLiteral("help"));
    if (options.showHelp)
        return options;
    if (parser.isSet(QStringLiteral("file")))
        options.file = parser.value(QStringLiteral("file"));
    options.format = FormatOption::from(parser, error);
    if (options.format.isNull())
        return std::nullopt;
    const auto onError = OnErrorOption::from(parser, error);
    if (!onError)
        return std::nullopt;
    options.onError = *onError;
    const auto connection = ConnectionOptions::from(parser, error);
    if (!connection)
        return std::nullopt;
    options.connection = *connection;
    if (!options.connection.namesServer())
        return usageError(error, QStringLiteral("Give either --server or --sample."));
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
    return parser.helpText() + ConnectionOptions::helpText();
}

std::optional<QString> QueryOptions::readText(KNError *error) const
{
    return sql ? sql : readTextInput(file, error);
}
