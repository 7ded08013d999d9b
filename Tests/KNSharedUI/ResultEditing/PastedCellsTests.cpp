#include "Support/PrintQt.h"
#include "UI/ResultEditing/KNPastedCells.h"

#include <gtest/gtest.h>

namespace {

using Rows = QList<QStringList>;

QList<QStringList> cellsOf(const char *text)
{
    QString problem;
    const auto cells = KNPastedCells::read(QString::fromUtf8(text), 100, &problem);
    EXPECT_TRUE(cells) << problem.toStdString();
    return cells.value_or(QList<QStringList>());
}

QStringList row(std::initializer_list<const char *> cells)
{
    QStringList texts;
    for (const char *const cell : cells)
        texts.append(QString::fromUtf8(cell));
    return texts;
}

} // namespace

TEST(PastedCells, AreSeparatedByTabsAndLineEnds)
{
    EXPECT_EQ(cellsOf("a"), (Rows{row({"a"})}));
    EXPECT_EQ(cellsOf("a\tb\r\nc\td\n"), (Rows{row({"a", "b"}), row({"c", "d"})}));
    EXPECT_EQ(cellsOf("a\rb"), (Rows{row({"a"}), row({"b"})}));
}

TEST(PastedCells, MayBeEmpty)
{
    EXPECT_EQ(cellsOf("\t"), (Rows{row({"", ""})}));
    EXPECT_EQ(cellsOf("a\t\nb"), (Rows{row({"a", ""}), row({"b"})}));
    EXPECT_EQ(cellsOf("a\n\nb"), (Rows{row({"a"}), row({""}), row({"b"})}));
}

TEST(PastedCells, MayHoldSeparatorsInQuotes)
{
    EXPECT_EQ(cellsOf("\"a\tb\nc\"\t\"d\"\"e\""), (Rows{row({"a\tb\nc", "d\"e"})}));
    EXPECT_EQ(cellsOf("\"not closed\tx"), (Rows{row({"\"not closed", "x"})}));
    EXPECT_EQ(cellsOf("5\" wide\tx"), (Rows{row({"5\" wide", "x"})}));
}

TEST(PastedCells, AreLimited)
{
    QString problem;
    EXPECT_FALSE(KNPastedCells::read(QStringLiteral("a\tb\tc"), 2, &problem));
    EXPECT_EQ(problem, QStringLiteral("At most 2 cells can be pasted at once. Nothing was pasted."));
    EXPECT_FALSE(KNPastedCells::read(QString(), 2, &problem));
    EXPECT_EQ(problem, QStringLiteral("The clipboard has no text."));
}
