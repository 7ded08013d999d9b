#include "Desktop/Options.h"

#include <cstdio>

namespace {

const char HelpText[] =
    "Usage: vantor [OPTIONS] [FILE.sql ...]\n"
    "\n"
    "Opens the window of remembered connections to SQL Servers. The files are opened in the\n"
    "window of the connection that is chosen there.\n"
    "\n"
    "Options:\n"
    "  --sample   start a private sample server and open its window\n"
    "  --trace    write a trace of the protocol into the folder of the logs\n"
    "  --version  print the version\n"
    "  --help     print this\n"
    "\n"
    "vantor-cli does the same in a terminal.\n";

} // namespace

std::optional<Options> Options::parse(const QStringList &arguments, int *exitStatus)
{
    Options options;
    bool areOptionsOver = false;
    for (const QString &argument : arguments.mid(1)) {
        if (areOptionsOver || !argument.startsWith(QLatin1Char('-'))) {
            options.files.append(argument);
        } else if (argument == QLatin1String("--")) {
            areOptionsOver = true;
        } else if (argument == QLatin1String("--sample")) {
            options.useSampleServer = true;
        } else if (argument == QLatin1String("--trace")) {
            options.writesTrace = true;
        } else if (argument == QLatin1String("--help") || argument == QLatin1String("-h")) {
            std::fputs(HelpText, stdout);
            *exitStatus = 0;
            return {};
        } else if (argument == QLatin1String("--version")) {
            std::printf("vantor %s\n", VANTOR_VERSION);
            *exitStatus = 0;
            return {};
        } else {
            std::fprintf(stderr, "There is no option %s.\n\n%s", argument.toLocal8Bit().constData(),
                         HelpText);
            *exitStatus = 2;
            return {};
        }
    }
    return options;
}
