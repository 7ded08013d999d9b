#include "Import/KNImportTableModel.h"

KNImportTableModel::~KNImportTableModel() = default;

QStringList KNImportTableModel::tablePath() const
{
    return {m_name};
}

void KNImportTableModel::setTablePath(const QStringList &path)
{
    if (!path.isEmpty())
        m_name = path.last();
}
