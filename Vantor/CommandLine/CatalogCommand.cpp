#include "CommandLine/CatalogCommand.h"

#include "CommandLine/ServerConnection.h"
#include "CommandLine/Terminal.h"
#include "CommandLine/TextRunner.h"
#include "Foundation/KNFormat.h"
#include "QueryLoader/KNSystemDatabaseQueryHelper.h"

#include <QCommandLineParser>
#include <QRegularExpression>

namespace {

int fail(ExitStatus status, const QString &text)
{
    Terminal::printError(text, Terminal::Colour::Red);
    return status;
}

void print(const QString &line)
{
    fputs((line + QLatin1Char('\n')).toLocal8Bit().constData(), stdout);
}

/// The names that stand in braces, each once, in their order.
QStringList placeholdersIn(const QString &text)
{
    static const QRegularExpression pattern(QStringLiteral("\\{([A-Z_]+)\\}"));
    QStringList names;
    for (auto match = pattern.globalMatch(text); match.hasNext();)
        names.append(match.next().captured(1));
    names.removeDuplicates();
    return names;
}

int listTitles(const KNSystemDatabaseQueryHelper &queries)
{
    const QStringList titles = queries.titles();
    for (const QString &title : titles) {
        const QStringList names = placeholdersIn(queries.plainQueryByTitle(title));
        print(names.isEmpty() ? title
                              : title + QStringLiteral("  ") + names.join(QStringLiteral("=... ")) +
                                    QStringLiteral("=..."));
    }
    return ExitSuccess;
}

/// The text with its placeholders replaced by "NAME=VALUE" arguments; empty, with an error, when one is
/// missing or too much. Apostrophes are doubled where a placeholder is the content of a literal.
std::optional<QString> filled(QString text, const QStringList &arguments, KNError *error)
{
    const auto usageError = [&](const QString &problem) {
        *error = KNError(QStringLiteral("com.quorvex.vantor.cli"), 0, problem);
        return std::nullopt;
    };
    QStringList missing = placeholdersIn(text);
    for (const QString &argument : arguments) {
        const QString name = argument.section(QLatin1Char('='), 0, 0);
        if (!argument.contains(QLatin1Char('=')) || !missing.removeOne(name))
            return usageError(KNFormat("\"%@\" fills no placeholder.", argument));
        QString value = argument.section(QLatin1Char('='), 1);
        const QString placeholder = KNFormat("{%@}", name);
        if (text.contains(KNFormat("'%@'", placeholder)))
            value.replace(QLatin1Char('\''), QLatin1String("''"));
        text.replace(placeholder, value);
    }
    if (!missing.isEmpty())
        return usageError(KNFormat("Not filled: %@. Give NAME=VALUE.", missing.join(QStringLiteral(", "))));
    return text;
}

void addArguments(QCommandLineParser &parser)
{
    const auto text = [](const char *utf8) { return QString::fromUtf8(utf8); };
    parser.setApplicationDescription(text(
        "Runs one of the connector's catalog queries. Without a title, lists them with their placeholders."));
    ConnectionOptions::addTo(parser);
    parser.addOptions({
        {text("format"), text("table (the default), csv or json."), text("format"), text("table")},
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
    KNError error;
    ServerConnection connection;
    if (const ExitStatus status = connection.prepare(options, settings, &error))
        return fail(status, error.localizedDescription());
    InterruptWatcher interrupts(ExitCancelled);
    if (const ExitStatus status = connection.connect(&error))
        return fail(status, error.localizedDescription());
    const auto text = filled(settings->queryLoader()->queryByTitle(title), values, &error);
    if (!text)
        return fail(ExitUsage, error.localizedDescription());
    return runText(connection.client(), *text, format, interrupts);
}

} // namespace

int runCatalogCommand(const QStringList &arguments, const VantorDBCPtr &emptySettings)
{
    QCommandLineParser parser;
    addArguments(parser);
    const QString hint = QStringLiteral("\nSee vantor-cli catalog --help.");
    if (!parser.parse(QStringList{QStringLiteral("vantor-cli catalog")} + arguments))
        return fail(ExitUsage, parser.errorText() + hint);
    if (parser.isSet(QStringLiteral("help"))) {
        fputs((parser.helpText() + ConnectionOptions::helpText()).toLocal8Bit().constData(), stdout);
        return ExitSuccess;
    }
    KNError error;
    const auto options = ConnectionOptions::from(parser, &error);
    if (!options)
        return fail(ExitUsage, error.localizedDescription() + hint);

    const auto queries = emptySettings->queryLoader();
    const QString title = parser.positionalArguments().value(0);
    const QString format = parser.value(QStringLiteral("format"));
    if (title.isEmpty())
        return listTitles(*queries);
    if (!queries->titles().contains(title))
        return fail(ExitUsage, KNFormat("There is no catalog query \"%@\".%@", title, hint));
    if (parser.isSet(QStringLiteral("show"))) {
        print(queries->plainQueryByTitle(title));
        return ExitSuccess;
    }
    if (format != QLatin1String("table") && format != QLatin1String("csv") && format != QLatin1String("json"))
        return fail(ExitUsage, KNFormat("\"%@\" is no format. Use table, csv or json.", format));
    if (!options->namesServer())
        return fail(ExitUsage, QStringLiteral("Give either --server or --sample.") + hint);
    return runTitle(title, parser.positionalArguments().mid(1), *options, format, emptySettings);
}
