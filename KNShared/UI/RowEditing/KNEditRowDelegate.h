#pragma once

#include "UI/KNSharedUIExport.h"

#include <QStyledItemDelegate>

/// Edits a value of a row: text in several lines, booleans in a list, everything else in a line, to which
/// dates add a calendar.
class KNSHAREDUI_EXPORT KNEditRowDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    /// The roles in which a model reports what it edits.
    enum Role {
        InputRole = Qt::UserRole + 100, ///< a KNTypedValue::Input as a number
        NameRole,                       ///< the name of the value's column
    };

    using QStyledItemDelegate::QStyledItemDelegate;

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override;
    void setEditorData(QWidget *editor, const QModelIndex &index) const override;
    void setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const override;
    void updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                              const QModelIndex &index) const override;
};
