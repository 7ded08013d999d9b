#pragma once

#include "Import/KNImportPlan.h"
#include "UI/KNSharedUIExport.h"

#include <QAbstractTableModel>

/// Which column of the file each column of the table gets. A source that can be edited is a name of a file's
/// column, noSource() or constantSource(). On the UI thread.
class KNSHAREDUI_EXPORT KNImportMappingModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { Name, Type, Source, Value, ColumnCount };

    using QAbstractTableModel::QAbstractTableModel;

    static QString noSource();
    static QString constantSource();

    /// Maps the columns by their names.
    void setColumns(const QStringList &fileColumns, const QList<KNImportTableColumnModel> &columns);
    void setSources(const KNImportMapping::Sources &sources);
    const QStringList &fileColumns() const { return m_fileColumns; }
    const QList<KNImportTableColumnModel> &tableColumns() const { return m_columns; }
    /// The columns that get values.
    QList<KNImportColumnPlan> plans() const;
    /// The columns of the file that are not imported.
    QStringList unusedColumns() const { return KNImportMapping::unusedColumns(m_fileColumns, m_sources); }

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;

private:
    QString sourceText(qsizetype row) const;

    QStringList m_fileColumns;
    QList<KNImportTableColumnModel> m_columns;
    KNImportMapping::Sources m_sources; ///< by column of the table
    QList<bool> m_isConstant;
    QStringList m_constants; ///< null for NULL
};
