#include "Desktop/Start/RecentConnectionDelegate.h"

#include "Desktop/Start/RecentConnectionsModel.h"

#include <QApplication>
#include <QPainter>

namespace {

int marginFor(const QStyleOptionViewItem &option)
{
    return option.fontMetrics.height() / 2;
}

QFont boldFont(const QStyleOptionViewItem &option)
{
    QFont font = option.font;
    font.setBold(true);
    return font;
}

/// Mixes two colours; a greater `share` is nearer to the first.
QColor mixed(const QColor &first, const QColor &second, double share)
{
    const auto channel = [&](int a, int b) { return static_cast<int>(a * share + b * (1 - share)); };
    return {channel(first.red(), second.red()), channel(first.green(), second.green()),
            channel(first.blue(), second.blue())};
}

} // namespace

void RecentConnectionDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                                     const QModelIndex &index) const
{
    QStyleOptionViewItem item = option;
    initStyleOption(&item, index);
    item.text.clear();
    const QStyle *const style = item.widget ? item.widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &item, painter, item.widget);

    painter->save();
    const bool isSelected = item.state.testFlag(QStyle::State_Selected);
    const QColor text = item.palette.color(isSelected ? QPalette::HighlightedText : QPalette::Text);
    const QColor ground = item.palette.color(isSelected ? QPalette::Highlight : QPalette::Base);
    const int margin = marginFor(item);
    QRect area = item.rect.adjusted(margin, margin / 2, -margin, -margin / 2);

    const QRect bar(area.left(), area.top(), std::max(3, margin / 2), area.height());
    if (const auto colour = index.data(RecentConnectionsModel::ColourRole).value<QColor>(); colour.isValid())
        painter->fillRect(bar, colour);
    area.setLeft(bar.right() + margin);

    QRect upper = area;
    upper.setHeight(area.height() / 2);
    const QRect lower = area.adjusted(0, upper.height(), 0, 0);
    painter->setPen(mixed(text, ground, 0.7));
    const QString date = index.data(RecentConnectionsModel::DateRole).toString();
    painter->drawText(upper, Qt::AlignRight | Qt::AlignVCenter, date);
    const auto elided = [&](const QFont &font, int role, int width) {
        return QFontMetrics(font).elidedText(index.data(role).toString(), Qt::ElideRight, width);
    };
    painter->drawText(lower, Qt::AlignLeft | Qt::AlignVCenter,
                      elided(item.font, RecentConnectionsModel::DetailRole, lower.width()));
    upper.setRight(upper.right() - item.fontMetrics.horizontalAdvance(date) - margin);
    painter->setPen(text);
    painter->setFont(boldFont(item));
    painter->drawText(upper, Qt::AlignLeft | Qt::AlignVCenter,
                      elided(boldFont(item), Qt::DisplayRole, upper.width()));
    painter->restore();
}

QSize RecentConnectionDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &) const
{
    const int lines = option.fontMetrics.height() + QFontMetrics(boldFont(option)).height();
    return {option.fontMetrics.averageCharWidth() * 30, lines + marginFor(option) * 2};
}
