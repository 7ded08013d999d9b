#pragma once

#include <QStyledItemDelegate>

/// Paints a row of the object tree: icon, name and dimmed details; connections have their details on a
/// separate line. A loading row shows a rotating ring instead of its icon.
class KNDatabaseTreeItemDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
};
