#include "CommandLine/ImportOptions.h"

#include "Foundation/KNFormat.h"

#include <QCommandLineParser>
#include <QFileInfo>

namespace {

using Encoding = KNImportTextSource::Encoding;

QString latin(const char *text)
{
    return QString::fromUtf8(text);
}

std::nullopt_t refused(KNError *error, const QString &text)
{
    *error = KNError(QStringLiteral("com.quorvex.vantor.cli"), 0, text);
    return std::nullopt;
}

void addImportOptions(QCommandLineParser &parser)
{
    parser.setApplicationDescription(
        latin("Imports a file (CSV, TSV, JSON, JSON Lines or Excel) into a table: all rows or none."));
    ConnectionOptions::addTo(parser);
    parser.addOptions({
        {latin("into"), latin("The table; a name with a dot is written in brackets."),
         latin("[schema.]table")},
        {latin("create"), latin("Create the table, with types that hold all values of the file.")},
        {latin("format"),
         KNFormat("The file's format: %@. By default that of its extension.",
                  KNImportFormat::names().join(latin(", "))),
         latin("format")},
        {latin("sheet"), latin("The sheet of a workbook; by default the first one."), latin("name")},
        {latin("encoding"),
         latin("auto (the default), utf-8, utf-16le, utf-16be or windows-1252, also named latin1."),
         latin("name")},
        {latin("separator"),
         latin("The character between values, or tab; by default the one of the first line."),
         latin("character")},
        {latin("quote"), latin("The character around values, or none; a double quote by default."),
         latin("character")},
        {latin("no-header"), latin("The first row holds values; columns are named Column1, Column2, ...")},
        {latin("by-position"), latin("Assign columns by position instead of by name.")},
        {latin("map"),
         latin("Fill a column of the table from a column of the file. Can be given several times."),
         latin("column=field")},
        {latin("constant"), latin("Fill a column of the table with a value. Can be given several times."),
         latin("column=value")},
        {latin("skip"), latin("Do not import a column of the file. Can be given several times."),
         latin("field")},
        {latin("empty"),
         latin("Empty values: as-written (the default: NULL, and \"\" is empty text), null or text."),
         latin("kind")},
        {latin("date-format"), latin("The format of dates, such as d.M.yyyy; by default ISO 8601."),
         latin("format")},
        {latin("decimal-comma"), latin("Numbers have a decimal comma.")},
        {latin("identity"), latin("Write the values of the table's identity column.")},
        {latin("truncate"), latin("Delete all rows of the table first, in the same transaction.")},
        {latin("batch"),
         KNFormat("Rows that are sent together, 1 to %ld; %ld by default.", KNImportPlan::MostBatchRows,
                  KNImportPlan::DefaultBatchRows),
         latin("rows")},
        {latin("analyse"), latin("With --create, analyse only the first rows."), latin("rows")},
        {latin("dry-run"), latin("Convert all values and report faults, but change nothing.")},
        {latin("skip-faulty"),
         latin("Write rows that cannot be imported into a new file, with reasons, and import "
               "the others."),
         latin("file")},
        {{latin("h"), latin("help")}, latin("Show this help.")},
    });
    parser.addPositionalArgument(latin("FILE"), latin("The file to import."));
}

/// Reads "column=text" options.
bool readAssignments(const QStringList &texts, QList<ImportOptions::Assignment> *assignments, KNError *error)
{
    for (const QString &text : texts) {
        const qsizetype position = text.indexOf(QLatin1Char('='));
        if (position < 1) {
            refused(error, KNFormat("\"%@\" is not COLUMN=TEXT.", text));
            return false;
        }
        assignments->append({text.left(position), text.mid(position + 1)});
    }
    return true;
}

bool readCount(const QCommandLineParser &parser, const char *option, quint64 most, quint64 *count,
               KNError *error)
{
    if (!parser.isSet(latin(option)))
        return true;
    bool isNumber = false;
    *count = parser.value(latin(option)).toULongLong(&isNumber);
    if (isNumber && *count >= 1 && *count <= most)
        return true;
    refused(error, KNFormat("--%@ is a number from 1 to %llu.", option, most));
    return false;
}

/// Reads an option with a fixed list of values; the first one is the default.
template <typename Value>
bool readChoice(const QCommandLineParser &parser, const char *option,
                std::initializer_list<std::pair<const char *, Value>> choices, Value *value, KNError *error)
{
    const QString text = parser.value(latin(option)).toLower();
    QStringList names;
    for (const auto &[name, choice] : choices) {
        names.append(latin(name));
        if (text == latin(name) || (text.isEmpty() && names.size() == 1)) {
            *value = choice;
            return true;
        }
    }
    refused(error, KNFormat("--%@ is one of %@.", option, names.join(latin(", "))));
    return false;
}

bool readCharacter(const QCommandLineParser &parser, const char *option, const char *word, QChar meaning,
                   QChar *character, KNError *error)
{
    if (!parser.isSet(latin(option)))
        return true;
    const QString text = parser.value(latin(option));
    if (text != latin(word) && text.size() != 1) {
        refused(error, KNFormat("--%@ is one character, or %@.", option, word));
        return false;
    }
    *character = text == latin(word) ? meaning : text.front();
    return true;
}

bool readFile(const QCommandLineParser &parser, ImportOptions *options, KNError *error)
{
    KNImportFile &file = options->file;
    file.path = parser.positionalArguments().value(0);
    if (parser.isSet(latin("format")))
        file.format = parser.value(latin("format"));
    if (parser.isSet(latin("sheet")))
        file.sheet = parser.value(latin("sheet"));
    file.hasHeader = !parser.isSet(latin("no-header"));
    if (!KNImportFormat::of(file)) {
        refused(error, KNFormat("The format of \"%@\" is not known. Choose one with --format: %@.", file.path,
                                KNImportFormat::names().join(latin(", "))));
        return false;
    }
    return readChoice<Encoding>(parser, "encoding",
                                {{"auto", Encoding::Detect},
                                 {"utf-8", Encoding::UTF8},
                                 {"utf-16le", Encoding::UTF16LittleEndian},
                                 {"utf-16be", Encoding::UTF16BigEndian},
                                 {"windows-1252", Encoding::Windows1252},
                                 {"latin1", Encoding::Windows1252}},
                                &file.encoding, error) &&
           readCharacter(parser, "separator", "tab", QLatin1Char('\t'), &file.separator, error) &&
           readCharacter(parser, "quote", "none", QChar(), &file.quote, error);
}

bool readValues(const QCommandLineParser &parser, ImportOptions *options, KNError *error)
{
    using Empty = KNImportValueFormat::Empty;
    if (parser.isSet(latin("date-format")))
        options->values.dateFormat = parser.value(latin("date-format"));
    if (parser.isSet(latin("decimal-comma")))
        options->values.decimalPoint = QLatin1Char(',');
    quint64 batchRows = KNImportPlan::DefaultBatchRows;
    const bool isRead =
        readChoice<Empty>(parser, "empty",
                          {{"as-written", Empty::AsWritten}, {"null", Empty::Null}, {"text", Empty::Text}},
                          &options->values.empty, error) &&
        readAssignments(parser.values(latin("map")), &options->mapped, error) &&
        readAssignments(parser.values(latin("constant")), &options->constants, error) &&
        readCount(parser, "analyse", KNImportFileAnalysis::AllRows, &options->analysedRows, error) &&
        readCount(parser, "batch", KNImportPlan::MostBatchRows, &batchRows, error);
    options->batchRows = static_cast<qsizetype>(batchRows);
    return isRead;
}

} // namespace

std::optional<ImportOptions> ImportOptions::parse(const QStringList &arguments, KNError *error)
{
    QCommandLineParser parser;
    addImportOptions(parser);
    if (!parser.parse(QStringList{QStringLiteral("vantor-cli import")} + arguments))
        return refused(error, parser.errorText());
    ImportOptions options;
    options.showHelp = parser.isSet(latin("help"));
    if (options.showHelp)
        return options;
    if (parser.positionalArguments().size() != 1)
        return refused(error, latin("Give one file."));
    options.table = parser.value(latin("into"));
    if (options.table.isEmpty())
        return refused(error, latin("Name the table with --into."));
    options.createsTable = parser.isSet(latin("create"));
    options.mapsByPosition = parser.isSet(latin("by-position"));
    options.skipped = parser.values(latin("skip"));
    options.writesIdentity = parser.isSet(latin("identity"));
    options.truncatesFirst = parser.isSet(latin("truncate"));
    options.isDryRun = parser.isSet(latin("dry-run"));
    if (parser.isSet(latin("skip-faulty")))
        options.faultFile = parser.value(latin("skip-faulty"));
    if (!readFile(parser, &options, error) || !readValues(parser, &options, error))
        return std::nullopt;
    if (options.createsTable && (options.truncatesFirst || options.writesIdentity))
        return refused(error, latin("--create takes neither --truncate nor --identity."));
    const auto connection = ConnectionOptions::from(parser, error);
    if (!connection)
        return std::nullopt;
    options.connection = *connection;
    if (!options.connection.namesServer())
        return refused(error, latin("Give either --server or --sample."));
    return options;
}

QString ImportOptions::helpText()
{
    QCommandLineParser parser;
    addImportOptions(parser);
    return parser.helpText() + ConnectionOptions::helpText();
}
