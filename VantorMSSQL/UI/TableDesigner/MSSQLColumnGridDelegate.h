#pragma once

#include "Database/VantorDBC.h"

#include <QStringList>
#include <QStyledItemDelegate>

/// Editors of the column grid: a list of types that also takes text, and completion of functions for
/// defaults.
class MSSQLColumnGridDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    /// Loads the types of the server and of the database, and the server's functions for defaults, in the
    /// background.
    MSSQLColumnGridDelegate(const std::shared_ptr<const VantorDBC> &settings, QObject *parent);

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override;
    void setEditorData(QWidget *editor, const QModelIndex &index) const override;
    void setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const override;

private:
    QStringList m_types;
    QStringList m_defaults;
};
