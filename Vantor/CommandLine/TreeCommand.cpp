#include "CommandLine/TreeCommand.h"

#include "CommandLine/CommandArguments.h"
#include "CommandLine/InterruptWatcher.h"
#include "CommandLine/MenuScripts.h"
#include "CommandLine/MenuWriter.h"
#include "CommandLine/ServerConnection.h"
#include "CommandLine/StandardOutput.h"
#include "CommandLine/Terminal.h"
#include "CommandLine/TreePath.h"
#include "CommandLine/TreeWriter.h"
#include "DatabaseTree/KNDatabaseTreeErrorEntry.h"
#include "Foundation/KNFormat.h"
#include "Foundation/KNLogHelper.h"

#include <QCommandLineParser>

#include <functional>

namespace {

QString text(const char *utf8)
{
    return QString::fromUtf8(utf8);
}

void addArguments(QCommandLineParser &parser, const char *description)
{
    parser.setApplicationDescription(text(description));
    ConnectionOptions::addTo(parser);
    parser.addOption({{text("h"), text("help")}, text("Show this help.")});
    parser.addPositionalArgument(
        text("PATH"),
        text("The names from the server down, with slashes between them; inside of a name, \\/ stands "
             "for a slash and \\\\ for a backslash."),
        text("[PATH]"));
}

/// The work of a command on a tree, whose root is loaded, with the names of its path.
using Work = std::function<int(TreeLoader &loader, const QStringList &names)>;

constexpr qsizetype OnlyAPath = 1; ///< number of arguments that a command accepts
constexpr qsizetype PathAndTitle = 2;

int onTree(const ConnectionOptions &options, const VantorDBCPtr &settings, const QStringList &names,
           const Work &work)
{
    KNError error;
    ServerConnection connection;
    if (const ExitStatus status = connection.prepare(options, settings, &error))
        return Terminal::fail(status, error.localizedDescription());
    const InterruptWatcher interrupts(ExitCancelled);
    TreeLoader loader(*settings);
    const auto children = loader.children(loader.root());
    const auto *failed = children.size() == 1
                             ? dynamic_cast<const KNDatabaseTreeErrorEntry *>(children.front().get())
                             : nullptr;
    return failed ? Terminal::fail(ExitNoConnection, failed->displayName()) : work(loader, names);
}

/// Parses the arguments and runs the work. `name` is the command's.
int runOnTree(QCommandLineParser &parser, const char *name, qsizetype argumentCount,
              const QStringList &arguments, const VantorDBCPtr &settings, const Work &work)
{
    CommandArguments command(parser, name);
    const auto options = command.parseForServer(arguments);
    if (!options)
        return command.exitStatus();
    if (parser.positionalArguments().size() > argumentCount)
        return command.fail(text("Give one path; quote it when it has spaces."));
    KNError error;
    const auto names = TreePath::names(parser.positionalArguments().value(0), &error);
    if (!names)
        return Terminal::fail(ExitUsage, error.localizedDescription());
    return onTree(*options, settings, *names, work);
}

/// A missing entry is a usage error; an entry that could not be loaded is a server error.
int failToFind(const KNError &error)
{
    const bool isUsage = error.domain() == text("com.quorvex.vantor.cli");
    return Terminal::fail(isUsage ? ExitUsage : ExitSqlError, error.localizedDescription());
}

/// Writes the script with this title from the entry's menu, or the list of titles if none is given.
int writeScript(KNDatabaseTreeEntry &entry, const QString &title)
{
    const KNMenu menu = entry.contextMenu();
    const QString titles = MenuScripts::titles(menu).join(QLatin1Char('\n'));
    if (title.isNull()) {
        Terminal::printText((titles + QLatin1String(titles.isEmpty() ? "" : "\n")).toUtf8());
        return ExitSuccess;
    }
    const KNQueryLoaderPtr script = MenuScripts::find(menu, title);
    if (!script)
        return Terminal::fail(ExitUsage,
                              titles.isEmpty()
                                  ? text("This entry has no scripts.")
                                  : KNFormat("There is no script \"%@\". There are:\n%@", title, titles));
    const VantorDBC &settings = *entry.databaseConnectionDetails();
    KNQueryReport report;
    StandardOutput output;
    if (script->writeQuery(settings, output, &report)) {
        const bool isWritten = output.write("\n") == 1;
        if (report.failure)
            return Terminal::fail(ExitSqlError, report.failure.localizedDescription());
        return isWritten
                   ? ExitSuccess
                   : Terminal::fail(ExitUsage, text("The script could not be written to standard output."));
    }
    const QString made = MenuScripts::textOf(script, settings);
    report = script->report();
    if (const QString sql = report.guardedText(made); !sql.isNull())
        Terminal::printText((sql.endsWith(QLatin1Char('\n')) ? sql : sql + QLatin1Char('\n')).toUtf8());
    if (report.failure)
        return Terminal::fail(ExitSqlError, report.failure.localizedDescription());
    if (made.isNull())
        return Terminal::fail(ExitSqlError, KNFormat("The script could not be made. See the log: %@",
                                                     KNLogHelper::sharedInstance()->filePath()));
    return ExitSuccess;
}

} // namespace

int runTreeCommand(const QStringList &arguments, const VantorDBCPtr &emptySettings)
{
    QCommandLineParser parser;
    addArguments(parser, "Prints the objects of a server as a tree.");
    parser.addOptions({
        {text("depth"), text("How many levels below the path; 1 when not given, 2 for a search."),
         text("levels")},
        {text("details"), text("Show what is known of each object beside its name.")},
        {text("search"), text("Show only tables, views, procedures and functions with this in their names."),
         text("text")},
        {text("json"), text("Write JSON.")},
    });
    return runOnTree(parser, "tree", OnlyAPath, arguments, emptySettings,
                     [&](TreeLoader &loader, const QStringList &names) {
                         const bool isSearch = parser.isSet(text("search"));
                         TreeWriter::Options options{isSearch ? 2 : 1, parser.isSet(text("details")),
                                                     parser.isSet(text("json"))};
                         if (parser.isSet(text("depth"))) {
                             bool isNumber = false;
                             options.depth = parser.value(text("depth")).toInt(&isNumber);
                             if (!isNumber || options.depth < 0)
                                 return Terminal::fail(ExitUsage,
                                                       text("--depth takes a number of levels from 0 on."));
                         }
                         KNError error;
                         KNError searchError;
                         TreeLoader::Entry entry = loader.root();
                         if (isSearch)
                             entry = loader.search(parser.value(text("search")), &searchError);
                         if (!entry && searchError)
                             return Terminal::fail(ExitSqlError, searchError.localizedDescription());
                         if (!entry)
                             return Terminal::fail(ExitSuccess, text("Nothing was found."));
                         entry = loader.find(entry, names, &error);
                         if (!entry)
                             return failToFind(error);
                         TreeWriter writer(loader, options);
                         writer.write(entry);
                         if (searchError)
                             return Terminal::fail(ExitSqlError, searchError.localizedDescription());
                         return static_cast<int>(writer.hadErrors() ? ExitSqlError : ExitSuccess);
                     });
}

int runMenuCommand(const QStringList &arguments, const VantorDBCPtr &emptySettings)
{
    QCommandLineParser parser;
    addArguments(parser, "Prints the menu of an entry of the tree, with the names of its actions.");
    return runOnTree(parser, "menu", OnlyAPath, arguments, emptySettings,
                     [](TreeLoader &loader, const QStringList &names) {
                         KNError error;
                         const TreeLoader::Entry entry = loader.find(loader.root(), names, &error);
                         if (!entry)
                             return failToFind(error);
                         const KNMenu menu = entry->contextMenu();
                         if (menu.items.empty())
                             return Terminal::fail(ExitSuccess, text("This entry has no menu."));
                         writeMenu(menu);
                         return static_cast<int>(ExitSuccess);
                     });
}

int runScriptCommand(const QStringList &arguments, const VantorDBCPtr &emptySettings)
{
    QCommandLineParser parser;
    addArguments(parser, "Prints a script that the menu of an entry of the tree offers.");
    parser.addPositionalArgument(text("TITLE"),
                                 text("The item of the menu, such as \"CREATE to\"; without it, "
                                      "the titles are listed."),
                                 text("[TITLE]"));
    return runOnTree(parser, "script", PathAndTitle, arguments, emptySettings,
                     [&](TreeLoader &loader, const QStringList &names) {
                         KNError error;
                         const TreeLoader::Entry entry = loader.find(loader.root(), names, &error);
                         return entry ? writeScript(*entry, parser.positionalArguments().value(1))
                                      : failToFind(error);
                     });
}
