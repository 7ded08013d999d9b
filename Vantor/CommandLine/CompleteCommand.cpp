#include "CommandLine/CompleteCommand.h"

#include "Autocomplete/KNAutocompleteHelper.h"
#include "Autocomplete/KNCompletionList.h"
#include "CommandLine/CommandArguments.h"
#include "CommandLine/ServerConnection.h"
#include "CommandLine/Terminal.h"
#include "CommandLine/TextInput.h"
#include "Database/VantorDatabaseConnectionPool.h"
#include "Foundation/KNTerminalText.h"
#include "SQL/Scope/KNSQLTokens.h"
#include "SQL/Snippets/KNSnippetFile.h"

#include <QCommandLineParser>
#include <QJsonDocument>
#include <QJsonObject>

#include <optional>

namespace {

/// A position as a person counts it: both from 1.
struct Place
{
    int line;
    int column;
};

std::optional<Place> placeFrom(const QString &text)
{
    bool isLine = false;
    bool isColumn = false;
    const Place place{text.section(u',', 0, 0).toInt(&isLine), text.section(u',', 1).toInt(&isColumn)};
    return isLine && isColumn && place.line > 0 && place.column > 0 ? std::optional(place) : std::nullopt;
}

/// The number of UTF-16 units before a place; nullopt if the text has no such place.
std::optional<qsizetype> offsetOf(const Place &place, const QString &text)
{
    qsizetype begin = 0;
    for (int line = 1; line < place.line; ++line) {
        const qsizetype end = text.indexOf(u'\n', begin);
        if (end < 0)
            return std::nullopt;
        begin = end + 1;
    }
    const qsizetype end = text.indexOf(u'\n', begin);
    const qsizetype length = (end < 0 ? text.size() : end) - begin;
    return place.column - 1 <= length ? std::optional(begin + place.column - 1) : std::nullopt;
}

QByteArray lineOf(const KNCompletionItem &item)
{
    QStringList fields{item.text, KNCompletionItem::kindName(item.kind), item.parent, item.type};
    for (QString &field : fields)
        field = KNTerminalText::escapedInOneLine(field);
    return (fields.join(u'\t') + u'\n').toUtf8();
}

QByteArray jsonOf(const KNCompletionItem &item)
{
    const auto value = [](const QString &text) { return text.isEmpty() ? QJsonValue() : QJsonValue(text); };
    return QJsonDocument(QJsonObject{{QStringLiteral("name"), item.name},
                                     {QStringLiteral("text"), item.text},
                                     {QStringLiteral("kind"), KNCompletionItem::kindName(item.kind)},
                                     {QStringLiteral("parent"), value(item.parent)},
                                     {QStringLiteral("type"), value(item.type)}})
        .toJson(QJsonDocument::Compact);
}

void print(const QList<KNCompletionItem> &items, bool isJson)
{
    QByteArray output = isJson ? "[" : "";
    for (qsizetype index = 0; index < items.size(); ++index) {
        if (isJson)
            output += (index == 0 ? "\n" : ",\n") + jsonOf(items[index]);
        else
            output += lineOf(items[index]);
    }
    if (isJson)
        output += items.isEmpty() ? "]\n" : "\n]\n";
    Terminal::printText(output);
}

void addArguments(QCommandLineParser &parser)
{
    const auto text = [](const char *utf8) { return QString::fromUtf8(utf8); };
    parser.setApplicationDescription(text(
        "Prints what the editor would offer at a place of a script, best entry first: the text that is "
        "inserted, its kind, the source or schema that it belongs to, and its type, separated by tabs."));
    ConnectionOptions::addTo(parser);
    parser.addOptions({
        {text("at"), text("The place: line and column, both from 1; columns count UTF-16 units."),
         text("LINE,COLUMN")},
        {text("json"), text("Print JSON.")},
        {{text("h"), text("help")}, text("Show this help.")},
    });
    parser.addPositionalArgument(text("FILE"), text("The script; - is standard input."));
}

int complete(const QString &text, qsizetype caret, bool isJson, const VantorDBC &settings)
{
    KNAutocompleteHelper *const helper = settings.sharedAutocompleteHelper();
    if (!helper || !helper->dialect())
        return Terminal::fail(ExitUsage, QStringLiteral("This kind of server has no completion."));
    KNError error;
    if (!VantorDatabaseConnectionPool::sharedInstance()->executeQuery(
            [](VantorDatabaseClient &, KNError *) {}, settings, &error))
        return Terminal::fail(ExitNoConnection, error.descriptionWithSuggestion());
    const auto catalog = helper->loadCatalog(settings);
    if (!catalog)
        return Terminal::fail(ExitSqlError, QStringLiteral("The names of the database could not be loaded."));
    KNSQLTokens tokens(*helper->dialect());
    tokens.setText(text);
    const KNSQLScope scope = KNAnalyseSQLScope(tokens, caret);
    const auto quotedName = [&](const QString &name) { return settings.quotedName(name); };
    const QList<KNSnippet> snippets = KNSnippetFile::read(*helper->dialect(), &error);
    if (error)
        Terminal::printError(error.localizedDescription());
    print(KNCompletions({.tokens = tokens,
                         .scope = scope,
                         .catalog = catalog.get(),
                         .quotedName = quotedName,
                         .snippets = snippets}),
          isJson);
    return ExitSuccess;
}

} // namespace

int runCompleteCommand(const QStringList &arguments, const VantorDBCPtr &emptySettings)
{
    QCommandLineParser parser;
    addArguments(parser);
    CommandArguments command(parser, "complete");
    const auto options = command.parseForServer(arguments);
    if (!options)
        return command.exitStatus();
    if (parser.positionalArguments().size() != 1)
        return command.fail(QStringLiteral("Give one file."));
    KNError error;
    const auto place = placeFrom(parser.value(QStringLiteral("at")));
    if (!place)
        return command.fail(QStringLiteral("Give the place as --at LINE,COLUMN."));
    const auto text = readTextInput(parser.positionalArguments().constFirst(), &error);
    if (!text)
        return Terminal::fail(ExitUsage, error.localizedDescription());
    const auto caret = offsetOf(*place, *text);
    if (!caret)
        return Terminal::fail(ExitUsage, QStringLiteral("The file has no such line and column."));
    ServerConnection connection;
    if (const ExitStatus status = connection.prepare(*options, emptySettings, &error))
        return Terminal::fail(status, error.localizedDescription());
    return complete(*text, *caret, parser.isSet(QStringLiteral("json")), *emptySettings);
}
