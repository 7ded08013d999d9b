#include "CommandLine/DesignOptions.h"

#include "CommandLine/OnErrorOption.h"
#include "Foundation/KNFormat.h"

#include <QCommandLineParser>

#include <algorithm>

namespace {

using Kind = KNColumnEdit::Kind;
using Property = KNColumnEdit::Property;

struct NamedProperty
{
    const char *name;
    Property property;
    bool isCheck;
};

constexpr NamedProperty Properties[] = {
    {"type", Property::Type, false},       {"nullable", Property::Nullable, true},
    {"default", Property::Default, false}, {"name", Property::Name, false},
    {"primary", Property::Primary, true},  {"identity", Property::Identity, true},
};

std::nullopt_t refuse(KNError *error, const QString &text)
{
    *error = KNError(QStringLiteral("com.quorvex.vantor.cli"), 0, text);
    return std::nullopt;
}

std::optional<bool> boolOf(const QString &text)
{
    if (QStringList{QStringLiteral("true"), QStringLiteral("yes"), QStringLiteral("1")}.contains(
            text, Qt::CaseInsensitive))
        return true;
    if (QStringList{QStringLiteral("false"), QStringLiteral("no"), QStringLiteral("0")}.contains(
            text, Qt::CaseInsensitive))
        return false;
    return std::nullopt;
}

/// Reads "property=value".
std::optional<std::pair<Property, QVariant>> valueOf(const QString &text, KNError *error)
{
    const QString name = text.section(QLatin1Char('='), 0, 0);
    const auto *const found =
        std::find_if(std::begin(Properties), std::end(Properties),
                     [&](const NamedProperty &known) { return name == QLatin1String(known.name); });
    if (found == std::end(Properties) || !text.contains(QLatin1Char('=')))
        return refuse(error, KNFormat("\"%@\" sets nothing. Set type=, nullable=, default=, name=, "
                                      "primary= or identity=.",
                                      text));
    const QString value = text.section(QLatin1Char('='), 1).trimmed();
    if (!found->isCheck)
        return std::pair(found->property, QVariant(value));
    const std::optional<bool> isSet = boolOf(value);
    if (!isSet)
        return refuse(error, KNFormat("%@ is true or false, not \"%@\".", name, value));
    return std::pair(found->property, QVariant(*isSet));
}

std::optional<KNColumnEdit> editFrom(const QCommandLineParser &parser, KNError *error)
{
    KNColumnEdit edit;
    edit.column = parser.value(QStringLiteral("column"));
    if (edit.column.isEmpty())
        return refuse(error, QStringLiteral("Name the column with --column."));
    const bool isAdded = parser.isSet(QStringLiteral("add"));
    const bool isDropped = parser.isSet(QStringLiteral("drop"));
    const QStringList texts = parser.values(QStringLiteral("set"));
    if (isDropped && (isAdded || !texts.isEmpty()))
        return refuse(error, QStringLiteral("--drop takes neither --add nor --set."));
    if (!isDropped && !isAdded && texts.isEmpty())
        return refuse(error, QStringLiteral("Give --set, --add or --drop."));
    edit.kind = isDropped ? Kind::Drop : isAdded ? Kind::Add : Kind::Change;
    for (const QString &text : texts) {
        const auto value = valueOf(text, error);
        if (!value)
            return std::nullopt;
        if (std::any_of(edit.values.begin(), edit.values.end(),
                        [&](const auto &other) { return other.first == value->first; }))
            return refuse(error, KNFormat("%@ is set twice.", text.section(QLatin1Char('='), 0, 0)));
        edit.values.append(*value);
    }
    return edit;
}

void addDesignOptions(QCommandLineParser &parser)
{
    const auto text = [](const char *utf8) { return QString::fromUtf8(utf8); };
    parser.setApplicationDescription(
        text("Prints the script with which the table designer changes a column, or runs it."));
    ConnectionOptions::addTo(parser);
    parser.addOptions({
        {text("column"), text("The column."), text("name")},
        {text("set"),
         text("What to change: type=TYPE, nullable=true|false, default=EXPRESSION (default= removes the "
              "default), name=NAME, primary=true|false or identity=true|false. Can be given several times; "
              "the changes are made in this order, each in a transaction of its own."),
         text("property=value")},
        {text("add"), text("Add the column, as int that takes NULL, before the changes of --set.")},
        {text("drop"), text("Drop the column.")},
        {text("apply"), text("Run the script instead of printing it.")},
        {text("corrected"), text("Use the corrected forms of statements that are kept in an exact one.")},
        {text("force"), text("With --apply, run also what would lose or refuse values, and exact statements "
                             "that do something else than what is meant.")},
        OnErrorOption::option(),
        {{text("h"), text("help")}, text("Show this help.")},
    });
    parser.addPositionalArgument(
        text("TABLE"),
        text("The table; without a schema in the login's default schema. A name with "
             "a dot is written in brackets."),
        text("[SCHEMA.]TABLE"));
}

} // namespace

std::optional<DesignOptions> DesignOptions::parse(const QStringList &arguments, KNError *error)
{
    QCommandLineParser parser;
    addDesignOptions(parser);
    if (!parser.parse(QStringList{QStringLiteral("vantor-cli design")} + arguments))
        return refuse(error, parser.errorText());
    DesignOptions options;
    options.showHelp = parser.isSet(QStringLiteral("help"));
    if (options.showHelp)
        return options;
    const QStringList tables = parser.positionalArguments();
    if (tables.size() != 1)
        return refuse(error, QStringLiteral("Give one table; quote it when it has spaces."));
    options.table = tables.first();
    const auto edit = editFrom(parser, error);
    const auto onError = edit ? OnErrorOption::from(parser, error) : std::nullopt;
    const auto connection = onError ? ConnectionOptions::from(parser, error) : std::nullopt;
    if (!connection)
        return std::nullopt;
    options.edit = *edit;
    options.onError = *onError;
    options.connection = *connection;
    options.isApplied = parser.isSet(QStringLiteral("apply"));
    options.isForced = parser.isSet(QStringLiteral("force"));
    options.prefersCorrected = parser.isSet(QStringLiteral("corrected"));
    if (!options.connection.namesServer())
        return refuse(error, QStringLiteral("Give either --server or --sample."));
    if (options.isForced && !options.isApplied)
        return refuse(error, QStringLiteral("--force needs --apply."));
    return options;
}

QString DesignOptions::helpText()
{
    QCommandLineParser parser;
    addDesignOptions(parser);
    return parser.helpText() + ConnectionOptions::helpText();
}
