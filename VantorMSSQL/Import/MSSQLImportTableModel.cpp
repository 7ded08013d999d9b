#include "Import/MSSQLImportTableModel.h"

QStringList MSSQLImportTableModel::tablePath() const
{
    return m_schema.isNull() ? QStringList{name()} : QStringList{m_schema, name()};
}

void MSSQLImportTableModel::setTablePath(const QStringList &path)
{
    if (path.size() == 2)
        m_schema = path.first();
    KNImportTableModel::setTablePath(path);
}
