#pragma once

#include "KNSharedExport.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <memory>

/// A column of a table that an import can fill. A value type of any thread.
struct KNImportTableColumnModel
{
    QString name;
    QString dataTypeDisplay; ///< the type as the catalog shows it, such as nvarchar(50)
    bool allowsNulls = true;
    int codePage = 0;        ///< of text that is not Unicode; 0 for other columns, and if it is not known
    bool hasDefault = false; ///< whether the server has a value for rows without one, such as an identity
    /// The system type on which a user's type is based, with its size; null if it is not known.
    QString baseType = {};

    /// The type that decides which values the column holds.
    const QString &storedType() const { return baseType.isNull() ? dataTypeDisplay : baseType; }
};

/// A table that an import can fill. Connectors subclass it for the parts of their paths. Used by one thread
/// at a time.
class KNSHARED_EXPORT KNImportTableModel
{
public:
    virtual ~KNImportTableModel();

    /// Without quotes.
    const QString &name() const { return m_name; }
    void setName(const QString &name) { m_name = name; }

    /// The names that lead to the table, without quotes; the last one is the table's.
    virtual QStringList tablePath() const;
    virtual void setTablePath(const QStringList &path);

    /// In the order of the catalog.
    const QList<KNImportTableColumnModel> &columns() const { return m_columns; }
    void addColumn(const KNImportTableColumnModel &column) { m_columns.append(column); }

private:
    QString m_name;
    QList<KNImportTableColumnModel> m_columns;
};

using KNImportTableModelPtr = std::shared_ptr<KNImportTableModel>;
