#include "TableDesign/MSSQLTriggerScript.h"

#include "Foundation/KNFormat.h"
#include "TableDesign/MSSQLStatementCaution.h"

KNStatementPair MSSQLTriggerScript::drop(const MSSQLDesignedTable &table, const QString &triggerName)
{
    MSSQLStatementCaution caution;
    caution.addWithoutSchema(table, triggerName);
    caution.addUnlessRead(triggerName, {triggerName});
    const MSSQLDesignedTable trigger{table.schema, triggerName};
    return {KNFormat("DROP TRIGGER %@", triggerName), KNFormat("DROP TRIGGER %@", trigger.quoted()),
            caution.text()};
}
KNStatementPair MSSQLTriggerScript::setEnabled(const MSSQLDesignedTable &table, const QString &triggerName,
                                               bool isEnabled)
{
    const QString statement =
        KNFormat("ALTER TABLE %@ %@ TRIGGER %@", table.quoted(), isEnabled ? "ENABLE" : "DISABLE",
                 MSSQLDesignedTable{{}, triggerName}.quoted());
    return {statement, statement, {}};
}
