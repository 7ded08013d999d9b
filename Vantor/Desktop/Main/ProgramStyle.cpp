#include "Desktop/Main/ProgramStyle.h"

#include <QPainter>
#include <QStyleFactory>
#include <QStyleOption>

#include <algorithm>

namespace {

constexpr int ScrollBarExtent = 13;
constexpr int ShortestSlider = 24;
constexpr qreal Corner = 2.5;

QColor mixed(const QColor &one, const QColor &other, qreal share)
{
    const auto mix = [share](int a, int b) { return qRound(a * share + b * (1 - share)); };
    return QColor(mix(one.red(), other.red()), mix(one.green(), other.green()),
                  mix(one.blue(), other.blue()));
}

QColor outline(const QStyleOption &option)
{
    const QPalette &palette = option.palette;
    const bool isEnabled = option.state.testFlag(QStyle::State_Enabled);
    if (isEnabled && option.state.testFlag(QStyle::State_HasFocus))
        return palette.color(QPalette::Highlight).lighter(120);
    constexpr qreal EnabledShare = 0.55;
    constexpr qreal DisabledShare = 0.25;
    return mixed(palette.color(QPalette::Active, QPalette::WindowText), palette.color(QPalette::Window),
                 isEnabled ? EnabledShare : DisabledShare);
}

QRectF strokedRect(const QRect &rect)
{
    return QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5);
}

void strokeFrame(QPainter *painter, const QStyleOption &option)
{
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(outline(option));
    painter->setBrush(Qt::NoBrush);
    painter->drawRoundedRect(strokedRect(option.rect), Corner, Corner);
    painter->restore();
}

/// A menu over a list of the same colour would have no visible edge in the dark.
void paintMenuFrame(QPainter *painter, const QStyleOption &option)
{
    constexpr qreal Share = 0.35;
    painter->save();
    painter->setPen(mixed(option.palette.color(QPalette::Active, QPalette::WindowText),
                          option.palette.color(QPalette::Window), Share));
    painter->drawRect(option.rect.adjusted(0, 0, -1, -1));
    painter->restore();
}

void paintCheckBox(QPainter *painter, const QStyleOption &option)
{
    const bool isOn = option.state & (QStyle::State_On | QStyle::State_NoChange);
    const bool isEnabled = option.state.testFlag(QStyle::State_Enabled);
    const QPalette &palette = option.palette;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(outline(option));
    painter->setBrush(isOn && isEnabled ? palette.color(QPalette::Highlight) : palette.color(QPalette::Base));
    const QRectF box = strokedRect(option.rect);
    painter->drawRoundedRect(box, Corner, Corner);
    QPen pen(isEnabled ? palette.color(QPalette::HighlightedText) : outline(option), 1.8);
    pen.setCapStyle(Qt::RoundCap);
    painter->setPen(pen);
    const auto at = [&box](qreal x, qreal y) {
        return QPointF(box.left() + box.width() * x, box.top() + box.height() * y);
    };
    if (option.state.testFlag(QStyle::State_On)) {
        const QPointF tick[] = {at(0.22, 0.52), at(0.42, 0.72), at(0.78, 0.28)};
        painter->drawPolyline(tick, 3);
    } else if (option.state.testFlag(QStyle::State_NoChange)) {
        painter->drawLine(at(0.25, 0.5), at(0.75, 0.5));
    }
    painter->restore();
}

void paintCross(QPainter *painter, const QStyleOption &option)
{
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    if (option.state.testFlag(QStyle::State_MouseOver) && option.state.testFlag(QStyle::State_Enabled)) {
        QColor background = option.palette.color(QPalette::WindowText);
        background.setAlphaF(0.15f);
        painter->setPen(Qt::NoPen);
        painter->setBrush(background);
        painter->drawRoundedRect(QRectF(option.rect), Corner, Corner);
    }
    QPen pen(mixed(option.palette.color(QPalette::WindowText), option.palette.color(QPalette::Window), 0.75),
             1.4);
    pen.setCapStyle(Qt::RoundCap);
    painter->setPen(pen);
    const qreal reach = std::min(option.rect.width(), option.rect.height()) / 4.0;
    const QPointF centre = QRectF(option.rect).center();
    painter->drawLine(centre - QPointF(reach, reach), centre + QPointF(reach, reach));
    painter->drawLine(centre - QPointF(reach, -reach), centre + QPointF(reach, -reach));
    painter->restore();
}

QRect sliderRect(const QStyleOptionSlider &bar)
{
    const bool isHorizontal = bar.orientation == Qt::Horizontal;
    const int length = isHorizontal ? bar.rect.width() : bar.rect.height();
    int slider = length;
    if (const qint64 range = qint64(bar.maximum) - bar.minimum; range > 0)
        slider = std::clamp(static_cast<int>(qint64(bar.pageStep) * length / (range + bar.pageStep)),
                            std::min(ShortestSlider, length), length);
    const int position = QStyle::sliderPositionFromValue(bar.minimum, bar.maximum, bar.sliderPosition,
                                                         length - slider, bar.upsideDown);
    const QRect rect = isHorizontal ? QRect(bar.rect.x() + position, bar.rect.y(), slider, bar.rect.height())
                                    : QRect(bar.rect.x(), bar.rect.y() + position, bar.rect.width(), slider);
    return QStyle::visualRect(bar.direction, bar.rect, rect);
}

void paintScrollBar(QPainter *painter, const QStyleOptionSlider &bar)
{
    painter->save();
    painter->fillRect(bar.rect, bar.palette.color(QPalette::Window));
    if (bar.maximum > bar.minimum) {
        const bool isActive = bar.state & (QStyle::State_MouseOver | QStyle::State_Sunken);
        QColor colour = bar.palette.color(QPalette::WindowText);
        colour.setAlphaF(isActive ? 0.65f : 0.45f);
        constexpr int Margin = 3;
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(Qt::NoPen);
        painter->setBrush(colour);
        painter->drawRoundedRect(sliderRect(bar).adjusted(Margin, Margin, -Margin, -Margin), 3, 3);
    }
    painter->restore();
}

} // namespace

ProgramStyle::ProgramStyle()
    : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion")))
{
}

void ProgramStyle::drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                                 const QWidget *widget) const
{
    switch (element) {
    case PE_IndicatorCheckBox:
    case PE_IndicatorItemViewItemCheck:
        return paintCheckBox(painter, *option);
    case PE_IndicatorTabClose:
        return paintCross(painter, *option);
    case PE_PanelMenu:
        QProxyStyle::drawPrimitive(element, option, painter, widget);
        return paintMenuFrame(painter, *option);
    case PE_FrameLineEdit:
        return strokeFrame(painter, *option);
    default:
        QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
}

void ProgramStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex *option,
                                      QPainter *painter, const QWidget *widget) const
{
    if (const auto *bar = qstyleoption_cast<const QStyleOptionSlider *>(option);
        bar && control == CC_ScrollBar)
        return paintScrollBar(painter, *bar);
    QProxyStyle::drawComplexControl(control, option, painter, widget);
    const auto *box = qstyleoption_cast<const QStyleOptionComboBox *>(option);
    const auto *spin = qstyleoption_cast<const QStyleOptionSpinBox *>(option);
    if ((box && box->frame) || (spin && spin->frame))
        strokeFrame(painter, *option);
}

QRect ProgramStyle::subControlRect(ComplexControl control, const QStyleOptionComplex *option,
                                   SubControl subControl, const QWidget *widget) const
{
    const auto *bar = qstyleoption_cast<const QStyleOptionSlider *>(option);
    if (control != CC_ScrollBar || !bar)
        return QProxyStyle::subControlRect(control, option, subControl, widget);
    const QRect slider = sliderRect(*bar);
    const bool isHorizontal = bar->orientation == Qt::Horizontal;
    switch (subControl) {
    case SC_ScrollBarSlider:
        return slider;
    case SC_ScrollBarGroove:
        return bar->rect;
    case SC_ScrollBarSubPage:
        return isHorizontal ? QRect(bar->rect.topLeft(), QPoint(slider.left() - 1, bar->rect.bottom()))
                            : QRect(bar->rect.topLeft(), QPoint(bar->rect.right(), slider.top() - 1));
    case SC_ScrollBarAddPage:
        return isHorizontal ? QRect(QPoint(slider.right() + 1, bar->rect.top()), bar->rect.bottomRight())
                            : QRect(QPoint(bar->rect.left(), slider.bottom() + 1), bar->rect.bottomRight());
    default:
        return {}; // there are no arrows
    }
}

int ProgramStyle::styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                            QStyleHintReturn *data) const
{
    if (hint == SH_DialogButtonBox_ButtonsHaveIcons || hint == SH_EtchDisabledText)
        return 0;
    return QProxyStyle::styleHint(hint, option, widget, data);
}

int ProgramStyle::pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const
{
    if (metric == PM_ScrollBarExtent)
        return ScrollBarExtent;
    if (metric == PM_ScrollBarSliderMin)
        return ShortestSlider;
    return QProxyStyle::pixelMetric(metric, option, widget);
}
