#include "UI/TableDesigner/MSSQLTableListForeignKeysViewController.h"

#include "Foundation/KNFormat.h"
#include "Foundation/KNLogHelper.h"
#include "TableDesign/MSSQLForeignKeyScript.h"
#include "UI/Alerts/KNAlerts.h"
#include "UI/TableDesigner/MSSQLEditForeignKeyWindowController.h"

namespace {

constexpr const char *KeyIdentifiers[] = {"Name",         "TargetTable", "LocalFields",
                                          "TargetFields", "OnUpdate",    "OnDelete"};

} // namespace

MSSQLTableListForeignKeysViewController::MSSQLTableListForeignKeysViewController(
    MSSQLTableDesignSession &session, QWidget *parent)
    : MSSQLDesignerListView(session, tr("Foreign keys"),
                            {tr("Name"), tr("Referenced Table"), tr("Fields"), tr("Referenced Fields"),
                             tr("On Update"), tr("On Delete")},
                            parent)
{
    addButton(tr("&New Foreign Key…"), false, [this] { addNewKey(); });
    addButton(tr("&Edit Foreign Key…"), true, [this] { editSelected(); });
    connect(list(), &QTreeWidget::itemActivated, this,
            &MSSQLTableListForeignKeysViewController::editSelected);
    addButton(tr("&Drop Foreign Key…"), true, [this] { dropSelected(); });
    loadForeignKeys();
}

QString MSSQLTableListForeignKeysViewController::cellText(const MSSQLForeignKeyEntry &key,
                                                          const QString &identifier)
{
    if (identifier == QLatin1String("Name"))
        return key.keyName;
    if (identifier == QLatin1String("TargetTable"))
        return key.targetTable.isNull() ? tr("(no right to see it)")
                                        : KNFormat("%@.%@", key.targetTableSchema, key.targetTable);
    if (identifier == QLatin1String("LocalFields"))
        return key.localColumns.join(QStringLiteral(", "));
    if (identifier == QLatin1String("TargetFields"))
        return key.targetColumns.join(QStringLiteral(", "));
    if (identifier == QLatin1String("OnUpdate"))
        return key.updateRuleDisplay();
    if (identifier == QLatin1String("OnDelete"))
        return key.deleteRuleDisplay();
    KNLogHelper::sharedInstance()->logMessage("Unknown identifier: %@", identifier);
    return {};
}

void MSSQLTableListForeignKeysViewController::loadForeignKeys()
{
    KNLogHelper::sharedInstance()->logMessage("Want to load foreign keys");
    loadRecords<MSSQLForeignKeyEntry>(
        {"mssql.tabledesigner.loadForeignKeys",
         {{QStringLiteral("tableName"), session().table().name},
          {QStringLiteral("schemaName"), session().table().schema}}},
        [this](const QList<MSSQLForeignKeyEntry> &keys, const KNError &error) {
            m_keys = keys;
            QList<QStringList> rows;
            for (const MSSQLForeignKeyEntry &key : keys) {
                QStringList cells;
                for (const char *identifier : KeyIdentifiers)
                    cells.append(cellText(key, QString::fromLatin1(identifier)));
                rows.append(cells);
            }
            showRows(rows, error, tr("The table has no foreign keys."));
            KNLogHelper::sharedInstance()->logMessage("Loaded %ld foreign keys for table %@.%@",
                                                      static_cast<long>(keys.size()),
                                                      session().table().schema, session().table().name);
        });
}

void MSSQLTableListForeignKeysViewController::dropSelected()
{
    const int row = currentRow();
    if (row < 0 || row >= m_keys.size())
        return;
    const QString name = m_keys[row].keyName;
    const KNAlerts::Question question{KNFormat(tr("Do you really want to drop the foreign key '%@'?"), name),
                                      tr("Once a foreign key has been removed, it cannot be recovered."),
                                      {tr("Cancel"), tr("Drop")}};
    KNAlerts::shared().ask(session().window(), question, [self = QPointer(this), name](int button) {
        if (self && button == 1)
            self->session().run(
                {[name](const MSSQLDesignedTable &table) { return MSSQLForeignKeyScript::drop(table, name); },
                 KNFormat(tr("Dropping foreign key '%@'"), name),
                 QStringLiteral("mssql.tabledesigner.dropForeignKey"),
                 {},
                 false,
                 QStringLiteral("Error is: %@"),
                 true});
    });
}

void MSSQLTableListForeignKeysViewController::addNewKey()
{
    (new MSSQLEditForeignKeyWindowController(session(), {}))->beginSheet({});
}

void MSSQLTableListForeignKeysViewController::editSelected()
{
    const int row = currentRow();
    if (row >= 0 && row < m_keys.size())
        (new MSSQLEditForeignKeyWindowController(session(), m_keys[row]))->beginSheet({});
}
