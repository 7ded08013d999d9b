#include "Recent/KNDBCTabColorHelper.h"

#include "Support/PrintQt.h"

#include <QSet>

#include <gtest/gtest.h>

#include <cmath>

using namespace KNDBCTabColorHelper;

namespace {

/// WCAG 2's contrast of a colour with a grey from 0 to 255.
double contrast(const QString &colour, int grey)
{
    const auto linear = [](double c) {
        return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
    };
    const auto channel = [&](int at) { return linear(colour.mid(at, 2).toInt(nullptr, 16) / 255.0); };
    const double luminance = 0.2126 * channel(1) + 0.7152 * channel(3) + 0.0722 * channel(5);
    const double ground = linear(grey / 255.0);
    return (std::max(luminance, ground) + 0.05) / (std::min(luminance, ground) + 0.05);
}

} // namespace

TEST(TabColor, IsThatOfTheAliasForEveryConnection)
{
    setColorFromAliasTemporary(QStringLiteral("Production"), QStringLiteral("one"));
    setColorFromAliasTemporary(QStringLiteral("Production"), QStringLiteral("two"));
    setColorFromAliasTemporary(QStringLiteral("Test"), QStringLiteral("three"));
    EXPECT_FALSE(colorForId(QStringLiteral("one")).isNull());
    EXPECT_EQ(colorForId(QStringLiteral("one")), colorForId(QStringLiteral("two")));
    EXPECT_NE(colorForId(QStringLiteral("one")), colorForId(QStringLiteral("three")));
}

TEST(TabColor, GoesWithTheAlias)
{
    setColorFromAliasTemporary(QStringLiteral("Production"), QStringLiteral("one"));
    setColorFromAliasTemporary(QStringLiteral(""), QStringLiteral("one"));
    EXPECT_TRUE(colorForId(QStringLiteral("one")).isNull());
    EXPECT_TRUE(colorForId(QStringLiteral("never set")).isNull());
}

TEST(TabColor, StandsOutOnLightAndOnDarkGround)
{
    QSet<QString> colours;
    for (int i = 0; i < 500; ++i) {
        setColorFromAliasTemporary(QString::number(i), QStringLiteral("one"));
        const QString colour = colorForId(QStringLiteral("one"));
        ASSERT_EQ(colour.size(), 7);
        EXPECT_GE(contrast(colour, 255), 3.0) << colour.toStdString();
        EXPECT_GE(contrast(colour, 35), 3.0) << colour.toStdString();
        colours.insert(colour);
    }
    EXPECT_GE(colours.size(), 20);
}
