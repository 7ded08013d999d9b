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
                                     {QStringLiteral("lineNumberOffset"), qint64(query.lineNumberOffset)}})
        .toJson(QJsonDocument::Compact);
}

/// One object per run of a batch, so that a batch that is repeated stands there as often.
bool printBatches(const QList<KNQueryDetails> &queries)
{
    const char *separator = "[\n";
    for (const KNQueryDetails &query : queries) {
        const QByteArray json = toJson(query);
        for (quint32 run = 0; run < query.repeatCount && !ferror(stdout); ++run) {
            fputs(separator, stdout);
            fwrite(json.constData(), 1, static_cast<std::size_t>(json.size()), stdout);
            separator = ",\n";
        }
    }
    fputs(queries.isEmpty() ? "[]\n" : "\n]\n", stdout);
    return fflush(stdout) == 0 && !ferror(stdout);
}

} // namespace

int runSplitCommand(const QStringList &arguments, const VantorDBCPtr &emptySettings)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Prints the batches of a script, cut at its GO lines, as a JSON array. Locations and "
                       "lengths count UTF-16 units."));
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
    if (!printBatches(splitter->doSplitQuery(*text)))
        return Terminal::fail(ExitUsage,
                              QStringLiteral("The batches could not be written to standard output."));
    return ExitSuccess;
}
