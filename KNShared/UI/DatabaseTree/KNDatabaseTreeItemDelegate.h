#pragma once

#include <QStyledItemDelegate>

/// Paints a row of the object tree: icon, name and, dimmed, its details; those of a connection on a line of
/// their own. A row that is loading turns a ring instead of its icon.
class KNDatabaseTreeItemDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
};
