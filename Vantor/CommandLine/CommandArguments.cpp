#include "CommandLine/CommandArguments.h"

#include "CommandLine/Terminal.h"
#include "Foundation/KNFormat.h"

#include <QCommandLineParser>

CommandArguments::CommandArguments(QCommandLineParser &parser, const char *command)
    : m_parser(parser)
    , m_command(KNFormat("vantor-cli %@", command))
{
}

std::optional<ConnectionOptions> CommandArguments::parse(const QStringList &arguments)
{
    if (!m_parser.parse(QStringList{m_command} + arguments)) {
        m_exitStatus = fail(m_parser.errorText());
        return std::nullopt;
    }
    if (m_parser.isSet(QStringLiteral("help"))) {
        fputs((m_parser.helpText() + ConnectionOptions::helpText()).toLocal8Bit().constData(), stdout);
        m_exitStatus = ExitSuccess;
        return std::nullopt;
    }
    KNError error;
    const auto options = ConnectionOptions::from(m_parser, &error);
    if (!options)
        m_exitStatus = fail(error.localizedDescription());
    return options;
}

std::optional<ConnectionOptions> CommandArguments::parseForServer(const QStringList &arguments)
{
    const auto options = parse(arguments);
    if (!options || options->namesServer())
        return options;
    m_exitStatus = failWithoutServer();
    return std::nullopt;
}

int CommandArguments::fail(const QString &text) const
{
    return Terminal::fail(ExitUsage, KNFormat("%@\nSee %@ --help.", text, m_command));
}

int CommandArguments::failWithoutServer() const
{
    return fail(QStringLiteral("Give either --server or --sample."));
}
