#pragma once

#include "Import/KNImportTableModel.h"

/// A table of SQL Server that an import can fill.
class MSSQLImportTableModel : public KNImportTableModel
{
public:
    /// Null if it is not known.
    const QString &schema() const { return m_schema; }
    void setSchema(const QString &schema) { m_schema = schema; }

    /// Schema and name, or the name alone.
    QStringList tablePath() const override;
    /// A path of one name leaves the schema as it is.
    void setTablePath(const QStringList &path) override;

private:
    QString m_schema;
};
