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

QString groupOf(const QModelIndex &index)
{
    return index.data(RecentConnectionsModel::GroupRole).toString();
}

/// The name of the group that begins with this row; empty for none.
QString headingOf(const QModelIndex &index)
{
    const QString group = groupOf(index);
    const bool isFirst = index.row() == 0 ||
                         groupOf(index.sibling(index.row() - 1, 0)).compare(group, Qt::CaseInsensitive) != 0;
    return isFirst ? group : QString();
}

int headingHeight(const QStyleOptionViewItem &option)
{
    return option.fontMetrics.height() + marginFor(option);
}

void paintHeading(QPainter *painter, const QStyleOptionViewItem &option, const QString &heading)
{
    const int margin = marginFor(option);
    const QRect area = option.rect.adjusted(margin, margin / 2, -margin, 0);
    painter->save();
    painter->setPen(option.palette.color(QPalette::PlaceholderText));
    painter->drawText(area, Qt::AlignLeft | Qt::AlignVCenter,
                      option.fontMetrics.elidedText(heading, Qt::ElideRight, area.width()));
    painter->restore();
}

/// Draws the word at the right end of `area`, and returns the rest.
QRect paintProduction(QPainter *painter, const QStyleOptionViewItem &option, const QRect &area)
{
    const QString text = RecentConnectionsModel::tr("PRODUCTION");
    const int margin = marginFor(option);
    QFont font = boldFont(option);
    font.setPointSizeF(font.pointSizeF() * 0.8);
    QRect mark = area;
    mark.setLeft(area.right() - QFontMetrics(font).horizontalAdvance(text) - margin);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setFont(font);
    painter->setPen(Qt::NoPen);
    painter->setBrush(QColor(0xc4, 0x2f, 0x34));
    painter->drawRoundedRect(mark, 3, 3);
    painter->setPen(Qt::white);
    painter->drawText(mark, Qt::AlignCenter, text);
    painter->restore();
    return area.adjusted(0, 0, -mark.width() - margin, 0);
}

} // namespace

void RecentConnectionDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                                     const QModelIndex &index) const
{
    QStyleOptionViewItem item = option;
    initStyleOption(&item, index);
    if (const QString heading = headingOf(index); !heading.isEmpty()) {
        QStyleOptionViewItem above = item;
        above.rect.setHeight(headingHeight(item));
        paintHeading(painter, above, heading);
        item.rect.setTop(item.rect.top() + headingHeight(item));
    }
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
    if (index.data(RecentConnectionsModel::ProductionRole).toBool())
        upper = paintProduction(painter, item, upper.adjusted(0, 1, 0, -1));
    painter->setPen(text);
    painter->setFont(boldFont(item));
    painter->drawText(upper, Qt::AlignLeft | Qt::AlignVCenter,
                      elided(boldFont(item), Qt::DisplayRole, upper.width()));
    painter->restore();
}

QSize RecentConnectionDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const int lines = option.fontMetrics.height() + QFontMetrics(boldFont(option)).height();
    return {option.fontMetrics.averageCharWidth() * 30,
            lines + marginFor(option) * 2 + (headingOf(index).isEmpty() ? 0 : headingHeight(option))};
}
