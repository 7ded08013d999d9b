#include "UI/DatabaseTree/KNDatabaseTreeItemDelegate.h"

#include "UI/DatabaseTree/KNDatabaseTreeModel.h"

#include <QApplication>
#include <QPainter>
#include <QTime>

#include <algorithm>

namespace {

constexpr int Gap = 6;

/// Whether the details are below the name.
bool isHead(const QModelIndex &index)
{
    return index.data(KNDatabaseTreeModel::IsHeadRole).toBool();
}

QFont nameFont(const QStyleOptionViewItem &option, const QModelIndex &index)
{
    QFont font = option.font;
    font.setBold(isHead(index));
    return font;
}

void paintRing(QPainter *painter, const QRect &rect, const QColor &colour)
{
    constexpr int TurnMilliseconds = 1000;
    const int angle =
        -(QTime::currentTime().msecsSinceStartOfDay() % TurnMilliseconds) * 360 / TurnMilliseconds;
    const QRect ring = rect.adjusted(2, 2, -2, -2);
    QPen pen(colour, 2);
    pen.setCapStyle(Qt::RoundCap);
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(pen);
    painter->drawArc(ring, angle * 16, 270 * 16);
}

} // namespace

void KNDatabaseTreeItemDelegate::paint(QPainter *painter, const QStyleOptionViewItem &styleOption,
                                       const QModelIndex &index) const
{
    QStyleOptionViewItem option = styleOption;
    initStyleOption(&option, index);
    const QStyle *const style = option.widget ? option.widget->style() : QApplication::style();
    style->drawPrimitive(QStyle::PE_PanelItemViewItem, &option, painter, option.widget);

    const bool isSelected = option.state.testFlag(QStyle::State_Selected);
    const auto group = option.state.testFlag(QStyle::State_Active) ? QPalette::Active : QPalette::Inactive;
    const QColor textColour =
        option.palette.color(group, isSelected ? QPalette::HighlightedText : QPalette::Text);
    QColor dimmed = textColour;
    dimmed.setAlphaF(0.62f);

    painter->save();
    const QSize iconSize = option.decorationSize;
    QRect rest = option.rect.adjusted(Gap / 2, 0, -Gap / 2, 0);
    const QRect iconRect(rest.left(), rest.top() + (rest.height() - iconSize.height()) / 2, iconSize.width(),
                         iconSize.height());
    if (index.data(KNDatabaseTreeModel::IsBusyRole).toBool())
        paintRing(painter, iconRect, textColour);
    else
        option.icon.paint(painter, iconRect, Qt::AlignCenter, isSelected ? QIcon::Selected : QIcon::Normal);
    rest.setLeft(iconRect.right() + Gap);

    const QFont font = nameFont(option, index);
    const QFontMetrics metrics(font);
    const QString details = index.data(KNDatabaseTreeModel::DetailsRole).toString();
    const bool isError = index.data(KNDatabaseTreeModel::IsErrorRole).toBool();
    QRect nameRect = rest;
    QRect detailsRect = rest;
    if (isHead(index)) {
        nameRect.setHeight(rest.height() / 2);
        detailsRect.setTop(nameRect.bottom() + 1);
    }
    painter->setFont(font);
    const bool isDimmed = index.data(KNDatabaseTreeModel::IsDimmedRole).toBool();
    painter->setPen(isError && !isSelected ? QColor(0xd0, 0x45, 0x3c) : isDimmed ? dimmed : textColour);
    // A message may have several lines; the tool tip shows all of them.
    const QString name = metrics.elidedText(option.text.simplified(), Qt::ElideRight, nameRect.width());
    painter->drawText(nameRect, Qt::AlignLeft | (isHead(index) ? Qt::AlignBottom : Qt::AlignVCenter), name);

    if (!isHead(index))
        detailsRect.setLeft(nameRect.left() + metrics.horizontalAdvance(name) + Gap);
    if (!details.isEmpty() && detailsRect.width() > 0) {
        painter->setFont(option.font);
        painter->setPen(dimmed);
        const QFontMetrics detailMetrics(option.font);
        const QString firstLine = details.section(QLatin1Char('\n'), 0, 0).simplified();
        painter->drawText(detailsRect, Qt::AlignLeft | (isHead(index) ? Qt::AlignTop : Qt::AlignVCenter),
                          detailMetrics.elidedText(firstLine, Qt::ElideRight, detailsRect.width()));
    }
    painter->restore();
}

QSize KNDatabaseTreeItemDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const QFontMetrics metrics(nameFont(option, index));
    const QString text = index.data(Qt::DisplayRole).toString();
    const QString details = index.data(KNDatabaseTreeModel::DetailsRole).toString();
    const int lines = isHead(index) ? 2 : 1;
    const int detailsWidth =
        details.isEmpty() || isHead(index) ? 0 : metrics.horizontalAdvance(details) + Gap;
    const int height = std::max({option.decorationSize.height() + Gap, metrics.height() * lines + Gap,
                                 index.data(KNDatabaseTreeModel::HeightRole).toInt()});
    return {option.decorationSize.width() + 2 * Gap + metrics.horizontalAdvance(text) + detailsWidth, height};
}
