#pragma once

#include <QStyledItemDelegate>

/// Paints a line of a completion list: icon, name, and its type or parent on the right.
class KNCompletionDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &styleOption,
               const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
};
