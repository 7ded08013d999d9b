#include "UI/MSSQLUserInterface.h"

#include "Implementations/MSSQLRecentConnection.h"
#include "Scripts/MSSQLCorrectedStatements.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeContextHelper.h"
#include "UI/DatabaseTree/MSSQLTreePreferences.h"
#include "UI/Dialogs/MSSQLConnectionWindowController/MSSQLConnectionWindowController.h"
#include "UI/MSSQLEditorMenu.h"
#include "UI/TableDesigner/MSSQLCreateTableWindowController.h"

ConnectionWindowController *MSSQLUserInterface::createConnectionWindowController(QWidget *parent) const
{
    return new MSSQLConnectionWindowController(parent);
}

SQLRecentConnectionList &MSSQLUserInterface::recentConnections() const
{
    return MSSQLRecentConnection::list();
}

void MSSQLUserInterface::addTreeActions(KNDatabaseTreeContextHelper &helper, KNWorkspace &workspace) const
{
    MSSQLDatabaseTreeContextHelper(helper, workspace).addActions();
}

KNCreateTableWindowController *
MSSQLUserInterface::createTableWindowController(const QList<KNImportColumnAnalysis> &columns,
                                                const std::shared_ptr<const VantorDBC> &settings,
                                                QWidget *parent) const
{
    return new MSSQLCreateTableWindowController(settings, columns, parent);
}

KNMenu MSSQLUserInterface::editorMenu(const QString &text, qsizetype position, const VantorDBC &details,
                                      const std::shared_ptr<KNDatabaseTreeContextHelper> &target) const
{
    return MSSQLEditorMenu::at(text, position, details, target);
}

KNConnectorPreferences MSSQLUserInterface::preferences() const
{
    return {
        tr("SQL Server"),
        {{MSSQLCorrectedStatements::Key, tr("&Use corrected statements"),
          tr("Some statements are kept in a form that a server refuses or that reaches another object "
             "than the "
             "one shown. If this is checked, their corrected form is used without asking."),
          false},
         {QString::fromLatin1(MSSQLTreePreferences::ShowSystemDatabases), tr("Show s&ystem databases"),
          tr("Shows master, model, msdb and tempdb in the object explorer after the next refresh."), false},
         {QString::fromLatin1(MSSQLTreePreferences::ShowSecurity), tr("Show &logins, users and roles"),
          tr("Adds a Security branch to the object explorer after the next refresh."), false},
         {QString::fromLatin1(MSSQLTreePreferences::ShowRowCounts), tr("Show row counts &of tables"),
          tr("Shows the number of rows beside each table, as the server's catalog knows it, after the next "
             "refresh."),
          false}}};
}
