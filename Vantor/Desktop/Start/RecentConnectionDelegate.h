#pragma once

#include <QStyledItemDelegate>

/// Draws a remembered connection: its colour, its name with the date, and below them account, server and
/// database.
class RecentConnectionDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
};
