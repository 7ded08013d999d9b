#include "Wire/ProcedureCall.h"

#include <gtest/gtest.h>

using namespace SampleServer;

namespace {

Bytes units(const std::string &ascii)
{
    Bytes bytes;
    for (const char c : ascii) {
        bytes.push_back(static_cast<std::uint8_t>(c));
        bytes.push_back(0);
    }
    return bytes;
}

Bytes joinedCall(std::initializer_list<Bytes> pieces)
{
    Bytes all;
    for (const Bytes &piece : pieces)
        all.insert(all.end(), piece.begin(), piece.end());
    return all;
}

const Bytes ExecuteSql = {0xFF, 0xFF, 10, 0, 0, 0};

Bytes nvarchar(const std::string &text)
{
    return joinedCall({{0, 0, 0xE7, 0x40, 0x1F, 9, 4, 0xD0, 0, 0x34},
                       {static_cast<std::uint8_t>(2 * text.size()), 0},
                       units(text)});
}

Bytes integer(const std::string &name, std::uint8_t number)
{
    return joinedCall(
        {{static_cast<std::uint8_t>(name.size())}, units(name), {0, 0x26, 4, 4, number, 0, 0, 0}});
}

ProcedureCall parsed(const Bytes &request)
{
    return parseProcedureCall(request, TdsVersion::V71);
}

} // namespace

TEST(ProcedureCall, HasANameAlsoWhenCalledByNumber)
{
    EXPECT_EQ(parsed(joinedCall({{2, 0}, units("ab"), {0, 0}})).procedure, "ab");
    EXPECT_EQ(parsed({0xFF, 0xFF, 15, 0, 0, 0}).procedure, "sp_unprepare");
    EXPECT_EQ(parsed({0xFF, 0xFF, 99, 0, 0, 0}).procedure, "#99");
    EXPECT_EQ(parsed({0xFF, 0xFF, 0, 0, 0, 0}).procedure, "#0");
    EXPECT_EQ(
        parseProcedureCall(joinedCall({{4, 0, 0, 0, 1, 0}, units("a"), {0, 0}}), TdsVersion::V72).procedure,
        "a");
}

TEST(ProcedureCall, KnowsExecuteSqlByNumberAndByName)
{
    EXPECT_TRUE(parsed(ExecuteSql).executesSql());
    EXPECT_TRUE(parsed(joinedCall({{13, 0}, units("sp_ExecuteSQL"), {0, 0}})).executesSql());
    EXPECT_FALSE(parsed({0xFF, 0xFF, 11, 0, 0, 0}).executesSql());
}

TEST(ProcedureCall, HasAStatementThatIsUnicodeText)
{
    EXPECT_EQ(parsed(joinedCall({ExecuteSql, nvarchar("go!")})).statement(), "go!");
    EXPECT_EQ(parsed(ExecuteSql).statement(), std::nullopt);
    EXPECT_EQ(parsed(joinedCall({ExecuteSql, integer("", 1)})).statement(), std::nullopt);
    EXPECT_EQ(
        parsed(joinedCall({ExecuteSql, {0, 0, 0xE7, 2, 0, 9, 4, 0xD0, 0, 0x34, 0xFF, 0xFF}})).statement(),
        std::nullopt);
}

TEST(ProcedureCall, NamesItsArgumentsAsTheyAreDeclaredUnlessTheyHaveNames)
{
    const Bytes declarations = nvarchar("@a int,@b\tdecimal(9, 2) OUTPUT , @c int");
    const auto arguments = parsed(joinedCall({ExecuteSql, nvarchar("s"), declarations, integer("", 1),
                                              integer("", 2), integer("@x", 3)}))
                               .statementParameters();
    ASSERT_EQ(arguments.size(), 3u);
    EXPECT_EQ(arguments[0].name, "@a");
    EXPECT_EQ(arguments[1].name, "@b");
    EXPECT_EQ(arguments[2].name, "@x");
    EXPECT_TRUE(arguments[1].value == Value(std::int64_t{2}));
    EXPECT_TRUE(parsed(joinedCall({ExecuteSql, nvarchar("s"), declarations})).statementParameters().empty());
}

TEST(ProcedureCall, LeavesAnArgumentWithoutADeclarationNameless)
{
    const auto arguments =
        parsed(joinedCall({ExecuteSql, nvarchar("s"), nvarchar(""), integer("", 1)})).statementParameters();
    ASSERT_EQ(arguments.size(), 1u);
    EXPECT_EQ(arguments[0].name, "");
}

TEST(ProcedureCall, ReportsWhyItsParametersCannotBeRead)
{
    const ProcedureCall call =
        parsed(joinedCall({ExecuteSql, nvarchar("s"), nvarchar("@a xml"), {0, 0, 0xF1, 0}}));
    EXPECT_EQ(call.refusal, "Parameter '' is of a type that this server does not take.");
    EXPECT_EQ(call.parameters.size(), 2u);
}
