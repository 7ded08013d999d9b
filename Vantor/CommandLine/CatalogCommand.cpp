#include "CommandLine/CatalogCommand.h"

#include "CommandLine/CatalogTrials.h"
#include "CommandLine/CommandArguments.h"
#include "CommandLine/FormatOption.h"
#include "CommandLine/ServerConnection.h"
#include "CommandLine/Terminal.h"
#include "CommandLine/TextRunner.h"
#include "Foundation/KNFormat.h"
#include "QueryLoader/KNQueryTemplate.h"
#include "QueryLoader/KNSystemDatabaseQueryHelper.h"

#include <QCommandLineParser>

#include <functional>

namespace {

void print(const QString &line)
{
    fputs((line + QLatin1Char('\n')).toLocal8Bit().constData(), stdout);
}

int listTitles(const KNSystemDatabaseQueryHelper &queries)
{
    const QStringList titles = queries.titles();
    for (const QString &title : titles) {
        const QStringList names = KNQueryTemplate::placeholders(queries.plainQueryByTitle(title));
        print(names.isEmpty() ? title
                              : title + QStringLiteral("  ") + names.join(QStringLiteral("=... ")) +
                                    QStringLiteral("=..."));
    }
    return ExitSuccess;
}

/// The text with its placeholders replaced by "NAME=VALUE" arguments; nullopt, with an error, if one is
/// missing or unknown.
std::optional<QString> filled(const QString &text, const QStringList &arguments, KNError *error)
{
    const auto usageError = [&](const QString &problem) {
        *error = KNError(QStringLiteral("com.quorvex.vantor.cli"), 0, problem);
        return std::nullopt;
    };
    QStringList missing = KNQueryTemplate::placeholders(text);
    QMap<QString, QString> values;
    for (const QString &argument : arguments) {
        const QString name = argument.section(QLatin1Char('='), 0, 0);
        if (!argument.contains(QLatin1Char('=')) || !missing.removeOne(name))
            return usageError(KNFormat("\"%@\" fills no placeholder.", argument));
        values.insert(name, argument.section(QLatin1Char('='), 1));
    }
    if (!missing.isEmpty())
        return usageError(KNFormat("Not filled: %@. Give NAME=VALUE.", missing.join(QStringLiteral(", "))));
    return KNQueryTemplate::filled(text, values);
}

void addArguments(QCommandLineParser &parser)
{
    const auto text = [](const char *utf8) { return QString::fromUtf8(utf8); };
    parser.setApplicationDescription(text(
        "Runs one of the connector's catalog queries. Without a title, lists them with their placeholders."));
    ConnectionOptions::addTo(parser);
    parser.addOptions({
        FormatOption::option(),
        {text("all"),
         text("Try every query that only reads, on the first object that suits it: a line each.")},
        {text("show"), text("Print the query's text as it stands instead of running it.")},
        {{text("h"), text("help")}, text("Show this help.")},
    });
    parser.addPositionalArgument(text("TITLE"), text("The query."), text("[TITLE]"));
    parser.addPositionalArgument(text("NAME=VALUE"), text("What a placeholder stands for."),
                                 text("[NAME=VALUE...]"));
}

int runTitle(const QString &title, const QStringList &values, const ConnectionOptions &options,
             const QString &format, const VantorDBCPtr &settings)
{
    return ServerConnection::run(
        options, settings, [&](VantorDatabaseClient &client, InterruptWatcher &interrupts) {
            KNError error;
            const auto text = filled(settings->queryLoader()->queryByTitle(title), values, &error);
            return text ? runText(client, *text, format, KNOnError::Stop, interrupts)
                        : Terminal::fail(ExitUsage, error.localizedDescription());
        });
}

int runAll(const ConnectionOptions &options, const VantorDBCPtr &settings)
{
    return ServerConnection::run(options, settings,
                                 [&](VantorDatabaseClient &client, InterruptWatcher &interrupts) {
                                     return runCatalogTrials(client, *settings->queryLoader(), interrupts);
                                 });
}

} // namespace

int runCatalogCommand(const QStringList &arguments, const VantorDBCPtr &emptySettings)
{
    QCommandLineParser parser;
    addArguments(parser);
    CommandArguments command(parser, "catalog");
    const auto options = command.parse(arguments);
    if (!options)
        return command.exitStatus();

    const auto queries = emptySettings->queryLoader();
    const QString title = parser.positionalArguments().value(0);
    const bool tryAll = parser.isSet(QStringLiteral("all"));
    if (tryAll && (!title.isEmpty() || parser.isSet(QStringLiteral("show"))))
        return command.fail(QStringLiteral("--all takes no title and shows no text."));
    if (title.isEmpty() && !tryAll)
        return listTitles(*queries);
    if (!tryAll && !queries->titles().contains(title))
        return command.fail(KNFormat("There is no catalog query \"%@\".", title));
    if (parser.isSet(QStringLiteral("show"))) {
        print(queries->plainQueryByTitle(title));
        return ExitSuccess;
    }
    KNError formatError;
    const QString format = FormatOption::from(parser, &formatError);
    if (formatError)
        return Terminal::fail(ExitUsage, formatError.localizedDescription());
    if (!options->namesServer())
        return command.failWithoutServer();
    if (tryAll)
        return runAll(*options, emptySettings);
    return runTitle(title, parser.positionalArguments().mid(1), *options, format, emptySettings);
}
