#include "CommandLine/FormatCommand.h"

#include "CommandLine/ExitStatus.h"
#include "CommandLine/Terminal.h"
#include "CommandLine/TextInput.h"
#include "SQL/Format/KNSQLFormatter.h"

#include <QCommandLineParser>

#include <cstdio>

namespace {

QString formatText(const char *text)
{
    return QString::fromLatin1(text);
}

void addFormatArguments(QCommandLineParser &parser)
{
    parser.setApplicationDescription(formatText(
        "Prints a script with clauses on lines, indented blocks and keywords in one case. Its tokens, "
        "comments and GO lines stay as they are. No server is needed."));
    parser.addOptions({
        {formatText("keywords"), formatText("Case of keywords: upper (the default), lower or typed."),
         formatText("CASE")},
        {formatText("leading-commas"), formatText("Put commas at the beginning of lines.")},
        {formatText("indent"), formatText("Blanks for each level, 1 to 16; 4 by default."),
         formatText("COUNT")},
        {formatText("width"), formatText("Length of a line, 40 to 400; 100 by default."),
         formatText("COUNT")},
        {{formatText("h"), formatText("help")}, formatText("Show this help.")},
    });
    parser.addPositionalArgument(formatText("FILE"), formatText("The script; - is standard input."));
}

/// Reads a number in a range; false if there is something else.
bool readNumber(const QCommandLineParser &parser, const char *option, int least, int greatest, int *number)
{
    if (!parser.isSet(formatText(option)))
        return true;
    bool isNumber = false;
    *number = parser.value(formatText(option)).toInt(&isNumber);
    return isNumber && *number >= least && *number <= greatest;
}

bool readStyle(const QCommandLineParser &parser, KNSQLFormatStyle *style)
{
    using Case = KNSQLFormatStyle::KeywordCase;
    const QHash<QString, Case> cases = {{formatText("upper"), Case::Upper},
                                        {formatText("lower"), Case::Lower},
                                        {formatText("typed"), Case::AsTyped}};
    if (parser.isSet(formatText("keywords"))) {
        if (!cases.contains(parser.value(formatText("keywords"))))
            return false;
        style->keywordCase = cases.value(parser.value(formatText("keywords")));
    }
    style->hasLeadingCommas = parser.isSet(formatText("leading-commas"));
    return readNumber(parser, "indent", 1, KNSQLFormatStyle::GreatestIndent, &style->indent) &&
           readNumber(parser, "width", KNSQLFormatStyle::LeastWidth, KNSQLFormatStyle::GreatestWidth,
                      &style->width);
}

} // namespace

int runFormatCommand(const QStringList &arguments, const VantorDBCPtr &emptySettings)
{
    QCommandLineParser parser;
    addFormatArguments(parser);
    const QString hint = formatText("\nSee vantor-cli format --help.");
    if (!parser.parse(QStringList{formatText("vantor-cli format")} + arguments))
        return Terminal::fail(ExitUsage, parser.errorText() + hint);
    if (parser.isSet(formatText("help"))) {
        fputs(parser.helpText().toLocal8Bit().constData(), stdout);
        return ExitSuccess;
    }
    KNSQLFormatStyle style;
    if (!readStyle(parser, &style))
        return Terminal::fail(ExitUsage, formatText("A value of an option is not valid.") + hint);
    if (parser.positionalArguments().size() != 1)
        return Terminal::fail(ExitUsage, formatText("Give one file.") + hint);
    if (!KNSQLFormatter::isSupported(*emptySettings))
        return Terminal::fail(ExitUsage,
                              formatText("The language of this kind of server cannot be formatted."));
    KNError error;
    const auto text = readTextInput(parser.positionalArguments().constFirst(), &error);
    if (!text)
        return Terminal::fail(ExitUsage, error.localizedDescription());
    Terminal::printText(KNSQLFormatter::formatted(*text, {0, text->size()}, *emptySettings, style).toUtf8());
    return ExitSuccess;
}
