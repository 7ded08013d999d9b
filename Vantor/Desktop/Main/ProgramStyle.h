#pragma once

#include <QProxyStyle>

/// Fusion with outlines that are visible in light and dark: of fields, check boxes and tab crosses, and with
/// flat scroll bars. Their contrast to the window is at least 3 to 1, as WCAG 2.1, 1.4.11 asks of controls.
class ProgramStyle : public QProxyStyle
{
    Q_OBJECT

public:
    ProgramStyle();

    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex *option, QPainter *painter,
                            const QWidget *widget) const override;
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex *option, SubControl subControl,
                         const QWidget *widget) const override;
    /// The buttons of dialogs have no icons: those with titles of their own have none, either. Disabled texts
    /// have no second outline, which is blurred in the dark.
    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                  QStyleHintReturn *data) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const override;
};
