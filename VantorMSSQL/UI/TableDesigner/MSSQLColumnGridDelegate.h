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
    /// The functions that a default may call, likewise.
    static QStringList builtInDefaults(bool isSQL2000);
    /// Sets what the editors offer.
    void setOffers(const QStringList &types, const QStringList &defaults)
    {
        m_types = types;
        m_defaults = defaults;
    }

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override;
    void setEditorData(QWidget *editor, const QModelIndex &index) const override;
    void setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const override;

private:
    QStringList m_types = builtInTypes(false);
    QStringList m_defaults = builtInDefaults(false);
};
