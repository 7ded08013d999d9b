#include "CommandLine/SplitCommand.h"

#include "CommandLine/ExitStatus.h"
#include "CommandLine/Terminal.h"
#include "CommandLine/TextInput.h"
#include "SQL/KNQuerySplitter.h"

#include <QCommandLineParser>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>

namespace {

QByteArray toJson(const KNQueryDetails &query)
{
    return QJsonDocument(QJsonObject{{QStringLiteral("targetQuery"), query.targetQuery},
                                     {QStringLiteral("location"), query.queryRange.location},
                                     {QStringLiteral("length"), query.queryRange.length},
                                     {QStringLiteral("count"), qint64(query.repeatCount)},
                                     {QStringLiteral("lineNumberOffset"), qint64(query.lineNumberOffset)}})
        .toJson(QJsonDocument::Compact);
}

void printBatches(const QList<KNQueryDetails> &queries)
{
    QByteArray json = "[";
    for (const KNQueryDetails &query : queries)
        json += (&query == &queries.front() ? "\n" : ",\n") + toJson(query);
    Terminal::printText(json + (queries.isEmpty() ? "]\n" : "\n]\n"));
}

} // namespace

int runSplitCommand(const QStringList &arguments, const VantorDBCPtr &emptySettings)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Prints the batches of a script, cut at its GO lines, as a JSON array. Locations and "
                       "lengths count UTF-16 units; count is how often a batch runs."));
    const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")},
                                  QStringLiteral("Show this help."));
    parser.addOption(help);
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The script; - is standard input."));
    if (!parser.parse(QStringList{QStringLiteral("vantor-cli split")} + arguments))
        return Terminal::fail(ExitUsage, parser.errorText());
    if (parser.isSet(help)) {
        fputs(parser.helpText().toLocal8Bit().constData(), stdout);
        return ExitSuccess;
    }
    if (parser.positionalArguments().size() != 1)
        return Terminal::fail(ExitUsage, QStringLiteral("Give one file.\nSee vantor-cli split --help."));

    KNError error;
    const auto text = readTextInput(parser.positionalArguments().constFirst(), &error);
    if (!text)
        return Terminal::fail(ExitUsage, error.localizedDescription());
    const auto splitter = emptySettings->createQuerySplitter();
    splitter->setRequiresFullSplit(true);
    printBatches(splitter->doSplitQuery(*text));
    return ExitSuccess;
}
