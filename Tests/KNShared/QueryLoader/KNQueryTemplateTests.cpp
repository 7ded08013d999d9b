#include "QueryLoader/KNQueryTemplate.h"
#include "Support/PrintQt.h"

#include <gtest/gtest.h>

TEST(QueryTemplate, NamesItsPlaceholdersOnceAndInOrder)
{
    EXPECT_EQ(KNQueryTemplate::placeholders(QStringLiteral("{B_C} {A} {B_C} {0} {} {lower} {A")),
              (QStringList{QStringLiteral("B_C"), QStringLiteral("A"), QStringLiteral("0")}));
    EXPECT_EQ(KNQueryTemplate::placeholders(QString()), QStringList());
}

TEST(QueryTemplate, FillsEveryOccurrenceAndKeepsUnknownPlaceholders)
{
    EXPECT_EQ(KNQueryTemplate::filled(
                  QStringLiteral("{A}.{B} {A}{C}"),
                  {{QStringLiteral("A"), QStringLiteral("x")}, {QStringLiteral("B"), QStringLiteral("y")}}),
              QStringLiteral("x.y x{C}"));
}

TEST(QueryTemplate, TakesBracesInAValueAsTheyStand)
{
    EXPECT_EQ(
        KNQueryTemplate::filled(QStringLiteral("{A} {B}"), {{QStringLiteral("A"), QStringLiteral("{B}")},
                                                            {QStringLiteral("B"), QStringLiteral("{A}")}}),
        QStringLiteral("{B} {A}"));
}

TEST(QueryTemplate, DoublesApostrophesOnlyWhereThePlaceholderIsALiteral)
{
    const QMap<QString, QString> values{{QStringLiteral("A"), QStringLiteral("O'Brien")}};
    EXPECT_EQ(KNQueryTemplate::filled(QStringLiteral("N'{A}' {A} 'x {A}'"), values),
              QStringLiteral("N'O''Brien' O'Brien 'x O'Brien'"));
}
