#include "KNShared/Import/ImportTesting.h"

using namespace ImportTesting;

namespace {

class JsonReader : public testing::Test
{
protected:
    Content read(const QByteArray &content) const { return contentOf(files.write("a.json", content)); }

    const Files files{};
};

} // namespace

TEST_F(JsonReader, ReadsArraysAndLinesOfObjects)
{
    const QList<QStringList> rows{words({"1", "x"}), words({"2", "<null>"})};
    for (const char *content :
         {"[{\"a\":1,\"b\":\"x\"},\n {\"a\":2}]", "{\"a\":1,\"b\":\"x\"}\n{\"b\":null,\"a\":2}\n"}) {
        const Content found = read(content);
        EXPECT_EQ(found.columns, words({"a", "b"})) << content;
        EXPECT_EQ(found.rows, rows) << content;
        EXPECT_EQ(found.lines, (QList<quint64>{1, 2})) << content;
    }
}

TEST_F(JsonReader, KeepsTheDigitsOfNumbersAndNestedValues)
{
    EXPECT_EQ(
        read("{\"n\":12345678901234567890.1234567890,\"b\":true,\"o\":{\"x\":[1,\"é\",null]},\"l\":[]}").rows,
        (QList<QStringList>{
            words({"12345678901234567890.1234567890", "true", "{\"x\":[1,\"é\",null]}", "[]"})}));
}

TEST_F(JsonReader, KeepsByteOrderMarksInValues)
{
    EXPECT_EQ(read("{\"a\":\"\xef\xbb\xbfx\"}").rows,
              (QList<QStringList>{{QChar(0xFEFF) + QStringLiteral("x")}}));
}

TEST_F(JsonReader, AddsColumnsThatLaterRowsHave)
{
    const Content content = read("{\"a\":1}\n{\"b\":2}\n{\"a\":3}\n");
    EXPECT_EQ(content.columns, words({"a", "b"}));
    EXPECT_EQ(content.rows,
              (QList<QStringList>{words({"1"}), words({"<null>", "2"}), words({"3", "<null>"})}));
}

TEST_F(JsonReader, ReportsPositionsOfErrors)
{
    EXPECT_TRUE(read("{\"a\":1}\n{\"a\":tru}\n").error.startsWith(QStringLiteral("Line 2, character ")));
    EXPECT_TRUE(read("{\"a\":1}\n{\"a\":\"\xff\"}\n").error.startsWith(QStringLiteral("Line 2")));
    EXPECT_EQ(read("{\"a\":1}\n{\"a\":").error,
              QStringLiteral("Line 2: The file ends in the middle of a value."));
    EXPECT_EQ(read("[{\"a\":1},").error, QStringLiteral("Line 1: The file ends in the middle of a value."));
    EXPECT_TRUE(read("[1,2]").error.contains(QStringLiteral("A record is an object.")));
    EXPECT_TRUE(read("17").error.contains(QStringLiteral("A record is an object.")));
    EXPECT_EQ(read("").error, QStringLiteral("The file contains no records."));
    EXPECT_EQ(read("[]").error, QStringLiteral("The file contains no records."));
}

TEST_F(JsonReader, RefusesHalvesOfSurrogatePairs)
{
    EXPECT_EQ(read("{\"a\":\"\\ud83d\\ude00\"}").rows, (QList<QStringList>{words({"😀"})}));
    EXPECT_EQ(read("{\"a\":\"\\\\ud83d\"}").rows, (QList<QStringList>{words({"\\ud83d"})}));
    for (const char *text : {"\\ud83d", "\\ude00", "\\ud83dx", "\\ud83d\\n", "\\uD83D\\ud83d\\ude00"})
        EXPECT_TRUE(read(QByteArray("{\"a\":\"") + text + "\"}").error.contains(QStringLiteral("surrogate")))
            << text;
}

TEST_F(JsonReader, ReportsRepeatedKeys)
{
    EXPECT_EQ(read("{\"a\":1,\"a\":2}\n").rows,
              (QList<QStringList>{words({"!The key \"a\" is there twice."})}));
}

TEST_F(JsonReader, BoundsNestingAndValues)
{
    EXPECT_TRUE(read("{\"a\":" + QByteArray(200, '[') + QByteArray(200, ']') + "}")
                    .error.contains(QStringLiteral("nested more than 100 levels")));
    EXPECT_TRUE(read("{\"a\":\"" + QByteArray(50 * 1024 * 1024, 'x') + "\"}")
                    .error.contains(QStringLiteral("more than 8 MB")));
}
