#include "Results/KNRowSearch.h"
#include "Support/ResultTesting.h"

#include <gtest/gtest.h>

namespace KNRowSearchTests {

using namespace ResultTesting;

namespace {

QString shown(const KNRowCell &cell, qsizetype)
{
    return cell.storedValue().displayText();
}

using Matches = std::vector<KNRowSearch::Match>;

Matches found(const ResultRows &rows, const char *text, Qt::CaseSensitivity sensitivity = Qt::CaseInsensitive)
{
    return *KNRowSearch{QString::fromUtf8(text), sensitivity}.find(rows, shown, false);
}

} // namespace

TEST(RowSearch, FindsCellsRowByRow)
{
    const auto source = result({QStringLiteral("a"), QStringLiteral("b")},
                               {{text("Anna"), KNValue(12)}, {KNValue(), text("banana 12")}});
    const ResultRows rows{source, nullptr, {{0, 2}}, {0, 1}};
    EXPECT_EQ(found(rows, "ANA"), (Matches{{1, 1}}));
    EXPECT_EQ(found(rows, "12"), (Matches{{0, 1}, {1, 1}}));
    EXPECT_EQ(found(rows, "an"), (Matches{{0, 0}, {1, 1}}));
    EXPECT_EQ(found(rows, "an", Qt::CaseSensitive), (Matches{{1, 1}}));
    EXPECT_EQ(found(rows, "NULL"), Matches{});
}

TEST(RowSearch, RegardsCaseOfOtherLettersThanAscii)
{
    const auto source = result({QStringLiteral("a")}, {{text("ÄRGER")}, {text("ärger")}});
    const ResultRows rows{source, nullptr, {{0, 2}}, {0}};
    EXPECT_EQ(found(rows, "Är"), (Matches{{0, 0}, {1, 0}}));
    EXPECT_EQ(found(rows, "är", Qt::CaseSensitive), (Matches{{1, 0}}));
}

TEST(RowSearch, CountsDisplayedRowsOfChosenColumns)
{
    const auto order = std::make_shared<KNRowOrder>(KNRowOrder{7, 3, 5});
    const ResultRows rows{numberedRows(10), order, {{0, 3}}, {1}};
    EXPECT_EQ(found(rows, "5"), (Matches{{2, 1}}));
    EXPECT_EQ(found(rows, "row"), (Matches{{0, 1}, {1, 1}, {2, 1}}));
}

TEST(RowSearch, StopsWhenCancelledAndAtItsLimit)
{
    const ResultRows rows{numberedRows(10), nullptr, {{0, 10}}, {0, 1}};
    EXPECT_FALSE(KNRowSearch{.text = QStringLiteral("1")}.find(rows, shown, true));
    constexpr int Count = 600'000;
    const ResultRows many{numberedRows(Count), nullptr, {{0, Count}}, {1, 1}};
    EXPECT_EQ(found({many.result, nullptr, {{0, Count}, {0, Count}}, {1}}, "row").size(),
              KNRowSearch::MostMatches);
}

} // namespace KNRowSearchTests
