#pragma once

#include <QStringList>
#include <QStyledItemDelegate>

/// Editors of the column grid: a list of types that also takes text, and completion of functions for
/// defaults.
class MSSQLColumnGridDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    /// The types of SQL Server 2005 and later, or of SQL Server 2000.
    static QStringList builtInTypes(bool isSQL2000);
    void setTypes(const QStringList &types) { m_types = types; }

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override;
    void setEditorData(QWidget *editor, const QModelIndex &index) const override;
    void setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const override;

private:
    QStringList m_types = builtInTypes(false);
};
