#pragma once

#include <QStyledItemDelegate>

/// Draws a remembered connection: its colour, its name with the date, and below it whose it is.
class RecentConnectionDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
};
