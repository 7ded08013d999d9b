#include "Export/CsvWriter.h"
#include "Export/DatabaseExporter.h"
#include "Export/KNTargetFile.h"
#include "Export/ResultStream.h"
#include "Foundation/KNFormat.h"
#include "Scripts/MSSQLCorrectedStatements.h"
#include "UI/Alerts/KNAlerts.h"
#include "UI/Alerts/KNFilePanels.h"
#include "UI/DatabaseTree/MSSQLDatabaseExport.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeContextHelper.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryDatabase.h"
#include "UI/Dialogs/ExportToMSSQLWizard/ExportToMSSQLWizard.h"

namespace {

using Form = DatabaseExporter::Form;

/// The texts of the exports.
class MSSQLExportActions
{
    Q_DECLARE_TR_FUNCTIONS(MSSQLExportActions)
};

/// A file name that proposes itself for an object of the server.
QString fileNameFor(QString object, const char *extension)
{
    object.replace(QLatin1Char('/'), QLatin1Char('_'));
    return (object.isEmpty() ? QStringLiteral("untitled") : object) + QString::fromLatin1(extension);
}

/// A database that the user has chosen a file for.
struct ChosenExport
{
    QString database;
    KNWorkspace::Settings settings;
    QString path;
    Form form;

    KNError write(const MSSQLDatabaseExport::Control &control) const
    {
        KNError failure;
        DatabaseExporter exporter(path, *settings, form);
        exporter.setIsCancelled(control.isCancelled);
        exporter.exportWithProgressBlock(control.progress, [&](const KNError &error) { failure = error; });
        return failure;
    }

    void begin(KNWorkspace &workspace) const
    {
        MSSQLDatabaseExport::run(
            workspace, KNFormat(MSSQLExportActions::tr("Exporting database '%@'"), database), path,
            [chosen = *this](const MSSQLDatabaseExport::Control &control) { return chosen.write(control); });
    }
};

/// The exact form is no script for MySQL: says so, and lets the user choose.
void chooseForm(KNWorkspace &workspace, const std::function<void(Form form)> &use)
{
    if (MSSQLCorrectedStatements::areUsed())
        return use(Form::MySQL);
    const KNAlerts::Question question{
        MSSQLExportActions::tr("MySQL does not read the unchanged form of this export."),
        MSSQLExportActions::tr(
            "It creates the tables with statements of SQL Server. The corrected form translates "
            "them for MySQL."),
        {MSSQLExportActions::tr("Export for MySQL"), MSSQLExportActions::tr("Export Unchanged"),
         MSSQLExportActions::tr("Cancel")}};
    KNAlerts::shared().ask(workspace.sheetParent(), question, [use](int button) {
        if (button == 0)
            use(Form::MySQL);
        else if (button == 1)
            use(Form::Exact);
    });
}

void exportDatabaseAsMySQL(KNWorkspace &workspace,
                           const std::shared_ptr<MSSQLDatabaseTreeEntryDatabase> &entry)
{
    chooseForm(workspace, [entry, pointer = workspace.weakPointer()](Form form) {
        const auto existing = pointer.lock();
        if (!existing)
            return;
        const KNFilePanels::Request request{MSSQLExportActions::tr("Save query"),
                                            fileNameFor(entry->databaseName(), ".sql"),
                                            {MSSQLExportActions::tr("SQL scripts (*.sql)")}};
        const auto begin = [form, entry, pointer](const QString &path) {
            if (const auto window = pointer.lock())
                ChosenExport{entry->databaseName(), entry->databaseConnectionDetails(), path, form}.begin(
                    *window);
        };
        KNFilePanels::shared().chooseFileToSave(existing->sheetParent(), request, begin);
    });
}

KNError writeCsv(const QString &table, const VantorDBC &settings, const QString &path,
                 const KNRowStream::IsCancelled &isCancelled)
{
    KNTargetFile target(path);
    KNError error;
    if (!target.open(&error))
        return error;
    CsvWriter writer(target.device());
    error = ResultStream::write(settings, KNFormat("SELECT * FROM %@", table), writer, isCancelled);
    if (!error && !writer.isGood())
        error = target.writeError();
    if (!error && !isCancelled())
        target.commit(&error);
    return error;
}

void exportTableAsCSV(KNWorkspace &workspace, const KNMenuRepresentedObject &object)
{
    const auto *const table = std::get_if<QString>(&object);
    if (!table || table->isEmpty())
        return;
    const auto selected = workspace.selectedTreeEntry();
    const KNFilePanels::Request request{MSSQLExportActions::tr("Export Table"),
                                        fileNameFor(selected ? selected->displayName() : QString(), ".csv"),
                                        {MSSQLExportActions::tr("CSV files (*.csv)")}};
    KNFilePanels::shared().chooseFileToSave(
        workspace.sheetParent(), request,
        [name = *table, settings = workspace.selectedSettings(),
         pointer = workspace.weakPointer()](const QString &path) {
            const auto existing = pointer.lock();
            if (!existing)
                return;
            const auto work = [name, settings, path](const MSSQLDatabaseExport::Control &control) {
                return writeCsv(name, *settings, path, control.isCancelled);
            };
            MSSQLDatabaseExport::run(*existing, KNFormat(MSSQLExportActions::tr("Exporting table %@"), name),
                                     path, work);
        });
}

/// Says that the wizard has written no file, and offers the export that writes scripts.
void offerScripts(KNWorkspace &workspace, KNDatabaseTreeContextHelper &helper,
                  const std::shared_ptr<MSSQLDatabaseTreeEntryDatabase> &entry)
{
    const KNAlerts::Question question{
        MSSQLExportActions::tr("No file was written"),
        MSSQLExportActions::tr(
            "This export only looks for objects. To write a script of the database, choose "
            "\"Generate Scripts…\"."),
        {MSSQLExportActions::tr("Generate Scripts…"), MSSQLExportActions::tr("Close")}};
    KNAlerts::shared().ask(
        workspace.sheetParent(), question, [entry, &helper, pointer = workspace.weakPointer()](int button) {
            if (button == 0 && pointer.lock())
                helper.performAction(QStringLiteral("generateScripts:"), KNDatabaseTreeEntry::Ptr(entry));
        });
}

void exportDatabaseAsMSSQL(KNWorkspace &workspace, KNDatabaseTreeContextHelper &helper,
                           const std::shared_ptr<MSSQLDatabaseTreeEntryDatabase> &entry)
{
    auto *const wizard = new ExportToMSSQLWizard(entry->databaseConnectionDetails(), workspace.sheetParent());
    wizard->beginSheet([entry, &helper, pointer = workspace.weakPointer()](int code) {
        const auto existing = pointer.lock();
        if (existing && code == ExportToMSSQLWizard::Finished)
            offerScripts(*existing, helper, entry);
    });
}

} // namespace

void MSSQLDatabaseTreeContextHelper::addExportActions()
{
    addEntryAction<MSSQLDatabaseTreeEntryDatabase>(
        QStringLiteral("exportDatabaseAsMSSQL:"),
        [&helper = m_helper](KNWorkspace &workspace, const auto &entry) {
            exportDatabaseAsMSSQL(workspace, helper, entry);
        });
    addEntryAction<MSSQLDatabaseTreeEntryDatabase>(QStringLiteral("exportDatabaseAsMySQL:"),
                                                   exportDatabaseAsMySQL);
    addAction(QStringLiteral("exportTableAsCSV:"), exportTableAsCSV);
}
