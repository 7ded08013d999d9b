#include "UI/TableDesigner/MSSQLTableTriggerDesignerViewController.h"

#include "Foundation/KNFormat.h"
#include "Foundation/KNLogHelper.h"
#include "TableDesign/MSSQLTriggerScript.h"
#include "UI/Alerts/KNAlerts.h"

namespace {

constexpr const char *TriggerIdentifiers[] = {"Name", "Timing", "Event", "Enabled", "Statement"};
constexpr qsizetype LongestShownStatement = 500; // UTF-16 units

} // namespace

MSSQLTableTriggerDesignerViewController::MSSQLTableTriggerDesignerViewController(
    MSSQLTableDesignSession &session, QWidget *parent)
    : MSSQLDesignerListView(session, tr("Triggers"),
                            {tr("Name"), tr("Timing"), tr("Event"), tr("Enabled"), tr("Statement")}, parent)
{
    addButton(tr("&Open Definition"), true, [this] { openSelected(); });
    addButton(tr("&Enable or Disable"), true, [this] { toggleSelected(); });
    addButton(tr("&Drop Trigger…"), true, [this] { dropSelected(); });
    loadTriggers();
}

QString MSSQLTableTriggerDesignerViewController::cellText(const MSSQLTriggerEntry &trigger,
                                                          const QString &identifier)
{
    if (identifier == QLatin1String("Name"))
        return trigger.triggerName;
    if (identifier == QLatin1String("Timing"))
        return trigger.timing;
    if (identifier == QLatin1String("Event"))
        return trigger.event;
    if (identifier == QLatin1String("Enabled"))
        return trigger.enabled ? tr("yes") : tr("no");
    if (identifier == QLatin1String("Statement"))
        return trigger.statement.left(LongestShownStatement).replace(QLatin1Char('\n'), QLatin1Char(' '));
    KNLogHelper::sharedInstance()->logMessage("Unknown identifier: %@", identifier);
    return {};
}

void MSSQLTableTriggerDesignerViewController::loadTriggers()
{
    KNLogHelper::sharedInstance()->logMessage("Want to load triggers");
    loadRecords<MSSQLTriggerEntry>(
        {"mssql.tabledesigner.loadTriggers", {{QStringLiteral("tableName"), session().table().name}}},
        [this](const QList<MSSQLTriggerEntry> &triggers, const KNError &error) {
            m_triggers = triggers;
            QList<QStringList> rows;
            for (const MSSQLTriggerEntry &trigger : triggers) {
                QStringList cells;
                for (const char *identifier : TriggerIdentifiers)
                    cells.append(cellText(trigger, QString::fromLatin1(identifier)));
                rows.append(cells);
            }
            showRows(rows, error, tr("The table has no triggers."));
            KNLogHelper::sharedInstance()->logMessage("Loaded %ld triggers for table %@",
                                                      static_cast<long>(triggers.size()),
                                                      session().table().name);
        });
}

void MSSQLTableTriggerDesignerViewController::openSelected()
{
    const int row = currentRow();
    if (row < 0 || row >= m_triggers.size())
        return;
    const MSSQLTriggerEntry &trigger = m_triggers[row];
    if (trigger.statement.isEmpty())
        return KNAlerts::shared().showMessage(
            session().window(),
            KNFormat(tr("The definition of the trigger '%@' cannot be read."), trigger.triggerName),
            tr("It is encrypted, or you have no right to see it."));
    Q_EMIT definitionRequested(trigger.statement);
}

void MSSQLTableTriggerDesignerViewController::dropSelected()
{
    const int row = currentRow();
    if (row < 0 || row >= m_triggers.size())
        return;
    const QString name = m_triggers[row].triggerName;
    const KNAlerts::Question question{KNFormat(tr("Do you really want to drop the trigger '%@'?"), name),
                                      tr("Once a trigger has been removed, it cannot be recovered."),
                                      {tr("Cancel"), tr("Drop")}};
    KNAlerts::shared().ask(session().window(), question, [self = QPointer(this), name](int button) {
        if (self && button == 1)
            self->session().run(
                {[name](const MSSQLDesignedTable &table) { return MSSQLTriggerScript::drop(table, name); },
                 KNFormat(tr("Dropping trigger '%@'"), name),
                 QStringLiteral("mssql.tabledesigner.dropTrigger"),
                 {},
                 false,
                 QStringLiteral("Error is: %@"),
                 true});
    });
}

void MSSQLTableTriggerDesignerViewController::toggleSelected()
{
    const int row = currentRow();
    if (row < 0 || row >= m_triggers.size())
        return;
    const MSSQLTriggerEntry trigger = m_triggers[row];
    session().run({[trigger](const MSSQLDesignedTable &table) {
                       return MSSQLTriggerScript::setEnabled(table, trigger.triggerName, !trigger.enabled);
                   },
                   trigger.enabled ? tr("Disabling trigger") : tr("Enabling trigger"),
                   QStringLiteral("mssql.tabledesigner.toggleTrigger")});
}
