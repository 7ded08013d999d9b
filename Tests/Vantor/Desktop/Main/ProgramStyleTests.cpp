#include "Desktop/Main/ProgramStyle.h"
#include "Desktop/Main/Theme.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QImage>
#include <QLineEdit>
#include <QMenu>
#include <QPainter>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTest>

#include <gtest/gtest.h>

#include <cmath>

namespace {

double linear(double channel)
{
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

/// WCAG 2.1, relative luminance.
double luminance(const QColor &colour)
{
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

double contrast(const QColor &one, const QColor &other)
{
    const double light = std::max(luminance(one), luminance(other));
    const double dark = std::min(luminance(one), luminance(other));
    return (light + 0.05) / (dark + 0.05);
}

/// The best contrast of a pixel on the widget's left edge to the window around it.
double edgeContrast(QWidget &widget)
{
    const QImage image = widget.grab().toImage();
    const QColor window = widget.palette().color(QPalette::Window);
    double best = 1;
    for (int x = 0; x < 6; ++x)
        best = std::max(best, contrast(image.pixelColor(x, image.height() / 2), window));
    return best;
}

class StyledControls : public testing::TestWithParam<bool>
{
protected:
    template <typename Widget>
    void prepare(Widget &widget)
    {
        widget.setStyle(&m_style);
        widget.setPalette(GetParam() ? Theme::darkPalette() : Theme::lightPalette());
    }

    ProgramStyle m_style;
};

} // namespace

TEST_P(StyledControls, HaveOutlinesThatStandOutFromTheWindow)
{
    constexpr double Least = 3; // WCAG 2.1, 1.4.11
    QCheckBox check(QStringLiteral("Check"));
    prepare(check);
    EXPECT_GE(edgeContrast(check), Least);
    QLineEdit line;
    prepare(line);
    EXPECT_GE(edgeContrast(line), Least);
    QComboBox box;
    box.setEditable(true);
    prepare(box);
    EXPECT_GE(edgeContrast(box), Least);
    QSpinBox spin;
    prepare(spin);
    EXPECT_GE(edgeContrast(spin), Least);
}

TEST_P(StyledControls, ShowThatAFieldIsDisabled)
{
    QLineEdit line;
    prepare(line);
    line.resize(100, 24);
    const QColor enabled = line.grab().toImage().pixelColor(50, 12);
    line.setEnabled(false);
    EXPECT_NE(line.grab().toImage().pixelColor(50, 12), enabled);
    EXPECT_LT(edgeContrast(line), 3);
}

TEST_P(StyledControls, MenusHaveAVisibleEdge)
{
    QMenu menu;
    prepare(menu);
    menu.addAction(QStringLiteral("Refresh"));
    menu.resize(menu.sizeHint());
    EXPECT_GE(edgeContrast(menu), 1.7);
}

TEST_P(StyledControls, ButtonsOfDialogsHaveTextsOnly)
{
    QDialogButtonBox box;
    prepare(box);
    for (const auto button : {QDialogButtonBox::Ok, QDialogButtonBox::Cancel, QDialogButtonBox::Close})
        EXPECT_TRUE(box.addButton(button)->icon().isNull());
}

TEST_P(StyledControls, ScrollBarsMoveByPagesAndByTheSlider)
{
    QScrollBar bar(Qt::Vertical);
    prepare(bar);
    bar.setRange(0, 1000);
    bar.setPageStep(100);
    bar.resize(13, 400);
    bar.show();
    QTest::mouseClick(&bar, Qt::LeftButton, {}, QPoint(6, 390)); // where others have an arrow
    EXPECT_EQ(bar.value(), 100);
    bar.setValue(0);
    QTest::mousePress(&bar, Qt::LeftButton, {}, QPoint(6, 10));
    QTest::mouseMove(&bar, QPoint(6, 200));
    QTest::mouseRelease(&bar, Qt::LeftButton, {}, QPoint(6, 200));
    EXPECT_GT(bar.value(), 400);
    EXPECT_LT(bar.value(), 650);
}

INSTANTIATE_TEST_SUITE_P(Palette, StyledControls, testing::Bool(),
                         [](const auto &dark) { return dark.param ? "Dark" : "Light"; });
