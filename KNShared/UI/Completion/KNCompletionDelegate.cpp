#include "UI/Completion/KNCompletionDelegate.h"

#include "UI/Completion/KNCompletionModel.h"

#include <QApplication>
#include <QPainter>

namespace {

constexpr int Gap = 6;
constexpr int IconSize = 16;

} // namespace

void KNCompletionDelegate::paint(QPainter *painter, const QStyleOptionViewItem &styleOption,
                                 const QModelIndex &index) const
{
    QStyleOptionViewItem option = styleOption;
    initStyleOption(&option, index);
    const QStyle *const style = option.widget ? option.widget->style() : QApplication::style();
    option.state.setFlag(QStyle::State_Active); // the editor has the focus
    style->drawPrimitive(QStyle::PE_PanelItemViewItem, &option, painter, option.widget);
    const bool isSelected = option.state.testFlag(QStyle::State_Selected);
    const QColor colour =
        option.palette.color(QPalette::Active, isSelected ? QPalette::HighlightedText : QPalette::Text);
    QColor dimmed = colour;
    dimmed.setAlphaF(0.62f);

    painter->save();
    QRect rest = option.rect.adjusted(Gap, 0, -Gap, 0);
    if (!option.icon.isNull()) {
        const QRect icon(rest.left(), rest.center().y() - IconSize / 2 + 1, IconSize, IconSize);
        option.icon.paint(painter, icon, Qt::AlignCenter, isSelected ? QIcon::Selected : QIcon::Normal);
    }
    rest.setLeft(rest.left() + IconSize + Gap);
    const QString detail = index.data(KNCompletionModel::DetailRole).toString();
    const QFontMetrics metrics(option.font);
    const int nameWidth = std::min(metrics.horizontalAdvance(option.text), rest.width());
    painter->setFont(option.font);
    painter->setPen(colour);
    painter->drawText(rest, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine,
                      metrics.elidedText(option.text, Qt::ElideRight, rest.width()));
    rest.setLeft(rest.left() + nameWidth + 2 * Gap);
    if (rest.width() > 2 * Gap) {
        painter->setPen(dimmed);
        painter->drawText(rest, Qt::AlignVCenter | Qt::AlignRight | Qt::TextSingleLine,
                          metrics.elidedText(detail, Qt::ElideRight, rest.width()));
    }
    painter->restore();
}

QSize KNCompletionDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const QString text = index.data(Qt::DisplayRole).toString();
    const QString detail = index.data(KNCompletionModel::DetailRole).toString();
    const QFontMetrics metrics(option.font);
    const int width = metrics.horizontalAdvance(text) + metrics.horizontalAdvance(detail);
    return {width + IconSize + 6 * Gap, std::max(metrics.height(), IconSize) + 4};
}
