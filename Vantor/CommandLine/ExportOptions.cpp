#include "CommandLine/ExportOptions.h"

#include "Foundation/KNFormat.h"

#include <QCommandLineParser>

#include <algorithm>

namespace {

QString exportText(const char *text)
{
    return QString::fromUtf8(text);
}

KNError exportProblem(const QString &text)
{
    return KNError(QStringLiteral("com.quorvex.vantor.cli"), 0, text);
}

void addExportOptions(QCommandLineParser &parser)
{
    parser.setApplicationDescription(
        exportText("Writes the script of a database, in an order in which it can run."));
    ConnectionOptions::addTo(parser);
    parser.addOptions({
        {exportText("tables"), exportText("Only these tables, separated by commas."),
         exportText("[schema.]table,...")},
        {exportText("data"), exportText("Write the rows of the tables, too.")},
        {exportText("data-only"), exportText("Write only the rows of the tables.")},
        {exportText("drop"), exportText("Drop existing objects first.")},
        {exportText("if-not-exists"), exportText("Create only what does not exist.")},
        {exportText("no-indexes"), exportText("Leave out the indexes.")},
        {exportText("no-constraints"), exportText("Leave out foreign keys and checks.")},
        {exportText("no-triggers"), exportText("Leave out the triggers.")},
        {exportText("no-extended-properties"), exportText("Leave out the extended properties.")},
        {exportText("permissions"), exportText("Write the permissions of the objects, too.")},
        {exportText("csv"), exportText("Write the rows as CSV files with scripts that load them.")},
        {exportText("mysql"), exportText("Write the tables for MySQL.")},
        {exportText("to"),
         exportText(
             "The file, compressed with gzip if its name ends in .gz; or a folder, with a slash at its "
             "end, or a .zip file for one file for each object. By default standard output."),
         exportText("path")},
        {{exportText("h"), exportText("help")}, exportText("Show this help.")},
    });
    parser.addPositionalArgument(exportText("DATABASE"),
                                 exportText("The database; by default that of --database."),
                                 exportText("[DATABASE]"));
}

/// A switch of the scripts and the option that sets it to another value than the default.
struct ExportSwitch
{
    const char *name;
    KNScriptOptions::Switch option;
};

constexpr ExportSwitch ExportSwitches[] = {
    {"drop", &KNScriptOptions::drops},
    {"if-not-exists", &KNScriptOptions::ifNotExists},
    {"no-indexes", &KNScriptOptions::indexes},
    {"no-constraints", &KNScriptOptions::constraints},
    {"no-triggers", &KNScriptOptions::triggers},
    {"no-extended-properties", &KNScriptOptions::extendedProperties},
    {"permissions", &KNScriptOptions::permissions},
    {"csv", &KNScriptOptions::csvRows},
};

KNScriptOptions scriptOptionsFrom(const QCommandLineParser &parser, KNError *error)
{
    KNScriptOptions options;
    options.data = parser.isSet(exportText("data")) || parser.isSet(exportText("data-only"));
    options.schema = !parser.isSet(exportText("data-only"));
    if (parser.isSet(exportText("mysql")))
        options.language = KNScriptOptions::Language::MySQL;
    for (const ExportSwitch &each : ExportSwitches) {
        if (parser.isSet(exportText(each.name)))
            options.*each.option = !(KNScriptOptions().*each.option);
    }
    for (const ExportSwitch &each : ExportSwitches) {
        const QString reason = options.reasonAgainst(each.option);
        if (!*error && !reason.isNull() && parser.isSet(exportText(each.name)))
            *error = exportProblem(
                KNFormat("--%@ has no effect here. %@", QString::fromLatin1(each.name), reason));
    }
    return options;
}

bool matches(const KNScriptObject &table, const QString &entered)
{
    return entered.compare(table.displayName(), Qt::CaseInsensitive) == 0 ||
           entered.compare(table.name, Qt::CaseInsensitive) == 0;
}

} // namespace

std::optional<ExportOptions> ExportOptions::parse(const QStringList &arguments, KNError *error)
{
    QCommandLineParser parser;
    addExportOptions(parser);
    *error = KNError();
    ExportOptions options;
    if (!parser.parse(QStringList{exportText("vantor-cli export")} + arguments))
        *error = exportProblem(parser.errorText());
    options.showHelp = !*error && parser.isSet(exportText("help"));
    if (*error || options.showHelp)
        return *error ? std::nullopt : std::optional(options);
    const auto connection = ConnectionOptions::from(parser, error);
    if (!connection)
        return std::nullopt;
    options.connection = *connection;
    const QStringList positional = parser.positionalArguments();
    if (positional.size() == 1)
        options.connection.database = positional.first();
    options.tables = parser.value(exportText("tables")).split(QLatin1Char(','), Qt::SkipEmptyParts);
    options.scripts = scriptOptionsFrom(parser, error);
    if (parser.isSet(exportText("to")))
        options.target = parser.value(exportText("to"));
    if (*error)
        return std::nullopt;
    const auto kind = KNScriptTarget::kindFor(options.target);
    const bool isDivided = kind == KNScriptTarget::Kind::Folder || kind == KNScriptTarget::Kind::ZipFile;
    if (options.scripts.csvRows && !isDivided)
        *error = exportProblem(exportText("--csv needs a folder or a .zip file; name it with --to."));
    else if (positional.size() > 1)
        *error = exportProblem(exportText("Only one database can be exported."));
    else if (!options.connection.namesServer())
        *error = exportProblem(exportText("--server or --sample is missing."));
    else if (options.connection.database.isEmpty())
        *error = exportProblem(exportText("The database is missing."));
    return *error ? std::nullopt : std::optional(options);
}

QString ExportOptions::helpText()
{
    QCommandLineParser parser;
    addExportOptions(parser);
    return parser.helpText() + ConnectionOptions::helpText();
}

QList<KNScriptObject> ExportOptions::chosen(const QList<KNScriptObject> &objects, KNError *error) const
{
    *error = KNError();
    if (tables.isEmpty())
        return objects;
    QList<KNScriptObject> chosen;
    for (const QString &entered : tables) {
        QList<KNScriptObject> found;
        std::copy_if(objects.begin(), objects.end(), std::back_inserter(found),
                     [&](const KNScriptObject &object) {
                         return object.hasRows && matches(object, entered.trimmed());
                     });
        if (found.size() != 1) {
            *error = exportProblem(found.isEmpty() ? KNFormat("There is no table \"%@\".", entered)
                                                   : KNFormat("%ld tables are named \"%@\": name the schema.",
                                                              found.size(), entered));
            return {};
        }
        if (!chosen.contains(found.first()))
            chosen.append(found.first());
    }
    return chosen;
}
