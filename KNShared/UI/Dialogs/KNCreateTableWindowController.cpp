#include "UI/Dialogs/KNCreateTableWindowController.h"

void KNCreateTableWindowController::endWithTable(const QString &schema, const QString &name)
{
    m_createdTableSchemaName = schema;
    m_createdTableName = name;
    endSheetWithReturnCode(1);
}
