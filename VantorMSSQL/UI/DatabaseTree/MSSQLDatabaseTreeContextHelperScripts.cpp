#include "Export/KNScriptExport.h"
#include "Foundation/KNFormat.h"
#include "UI/Alerts/KNAlerts.h"
#include "UI/Alerts/KNFilePanels.h"
#include "UI/DatabaseTree/MSSQLDatabaseExport.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeContextHelper.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryDatabase.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryDatabaseTable.h"

#include <algorithm>

namespace {

/// The texts of the action.
class MSSQLGenerateScripts
{
    Q_DECLARE_TR_FUNCTIONS(MSSQLGenerateScripts)
};

/// The objects of a database, or one table of it, that go into a script.
struct ScriptedObjects
{
    KNWorkspace::Settings settings;
    QString title; ///< for display and as the name of the file
    QString schema = {};
    QString table = {}; ///< null for all objects

    KNError write(const KNScriptOptions &options, const QString &path,
                  const MSSQLDatabaseExport::Control &control) const
    {
        const auto scripter = settings->createDatabaseScripter();
        KNError error;
        KNScriptExport scripts;
        scripts.objects = scripter->objects(&error);
        scripts.options = options;
        scripts.target = path;
        if (error)
            return error;
        if (!table.isNull()) {
            const auto isOther = [this](const KNScriptObject &object) {
                return !object.hasRows || object.schema != schema || object.name != table;
            };
            scripts.objects.removeIf(isOther);
        }
        return scripts.run(*scripter, control.progress, control.isCancelled);
    }
};

void chooseScriptFile(KNWorkspace &workspace, const ScriptedObjects &objects, const KNScriptOptions &options)
{
    QString name = objects.title;
    const KNFilePanels::Request request{MSSQLGenerateScripts::tr("Generate Scripts"),
                                        name.replace(QLatin1Char('/'), QLatin1Char('_')) +
                                            QLatin1String(".sql"),
                                        {MSSQLGenerateScripts::tr("SQL scripts (*.sql)")}};
    const auto begin = [objects, options, pointer = workspace.weakPointer()](const QString &path) {
        const auto existing = pointer.lock();
        if (!existing)
            return;
        MSSQLDatabaseExport::run(
            *existing, KNFormat(MSSQLGenerateScripts::tr("Writing the script of '%@'"), objects.title), path,
            [objects, options, path](const MSSQLDatabaseExport::Control &control) {
                return objects.write(options, path, control);
            });
    };
    KNFilePanels::shared().chooseFileToSave(workspace.sheetParent(), request, begin);
}

/// Asks for the content first.
void generateScripts(KNWorkspace &workspace, const ScriptedObjects &objects)
{
    constexpr int WithRows = 1;
    constexpr int Structure = 0;
    const KNAlerts::Question question{
        KNFormat(MSSQLGenerateScripts::tr("Generate a script of '%@'?"), objects.title),
        MSSQLGenerateScripts::tr(
            "It creates the objects in an order in which they can run, and foreign keys and "
            "triggers behind the rows."),
        {MSSQLGenerateScripts::tr("Structure Only"), MSSQLGenerateScripts::tr("Structure and Rows"),
         MSSQLGenerateScripts::tr("Cancel")}};
    KNAlerts::shared().ask(workspace.sheetParent(), question,
                           [objects, pointer = workspace.weakPointer()](int button) {
                               const auto existing = pointer.lock();
                               if (!existing || (button != WithRows && button != Structure))
                                   return;
                               KNScriptOptions options;
                               options.data = button == WithRows;
                               chooseScriptFile(*existing, objects, options);
                           });
}

} // namespace

void MSSQLDatabaseTreeContextHelper::addScriptActions()
{
    addAction(QStringLiteral("generateScripts:"), [](KNWorkspace &workspace,
                                                     const KNMenuRepresentedObject &object) {
        const auto *const represented = std::get_if<KNDatabaseTreeEntry::Ptr>(&object);
        const KNDatabaseTreeEntry::Ptr entry =
            represented && *represented ? *represented : workspace.selectedTreeEntry();
        if (const auto database = std::dynamic_pointer_cast<MSSQLDatabaseTreeEntryDatabase>(entry))
            generateScripts(workspace, {database->databaseConnectionDetails(), database->databaseName()});
        const auto table = std::dynamic_pointer_cast<MSSQLDatabaseTreeEntryDatabaseTable>(entry);
        if (table && !table->isView())
            generateScripts(workspace, {table->databaseConnectionDetails(), table->displayName(),
                                        table->schema(), table->tableName()});
    });
}
