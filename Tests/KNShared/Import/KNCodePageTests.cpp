#include "Import/KNCodePage.h"
#include "Import/KNImportConverter.h"
#include "Import/KNImportPlan.h"
#include "Support/PrintQt.h"
#include "Support/TestText.h"

#include <gtest/gtest.h>

namespace {

struct Sized
{
    int codePage;
    const char *text;
    qsizetype size; ///< -1 if a character is missing
};

} // namespace

TEST(CodePage, KnowsTheCharactersOfLanguages)
{
    const Sized cases[] = {
        {1252, "caf\xC3\xA9 \xE2\x82\xAC", 6},                // é and € have one byte
        {1252, "\xD0\x96", -1},                               // Ж
        {1252, "\xC4\x81", -1},                               // ā, which a server makes an a
        {1251, "\xD0\x96", 1},                                //
        {1250, "\xC5\x81\xC3\xB3\x64\xC5\xBA", 4},            // Łódź
        {1253, "\xCE\xA9", 1},                                // Ω
        {932, "\xE6\x97\xA5\xE6\x9C\xAC a", 6},               // 日本 has two bytes each
        {936, "\xE4\xB8\xAD", 2},                             // 中
        {949, "\xED\x95\x9C", 2},                             // 한
        {932, "\xED\x95\x9C", -1},                            //
        {874, "\xE0\xB8\x81", 1},                             // ก
        {65001, "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80", 10}, // 1, 2, 3 and 4 bytes
        {1252, "\xF0\x9F\x98\x80", -1},
        {1252, "", 0},
    };
    for (const Sized &one : cases) {
        const KNCodePage page(one.codePage);
        ASSERT_TRUE(page.isKnown()) << one.codePage;
        QString missing;
        EXPECT_EQ(page.sizeOf(q(one.text), &missing).value_or(-1), one.size)
            << one.codePage << ' ' << one.text << ' ' << missing.toStdString();
    }
}

TEST(CodePage, NamesTheFirstCharacterThatIsMissing)
{
    QString missing;
    EXPECT_FALSE(KNCodePage(1252).sizeOf(q("ab\xF0\x9F\x98\x80\xD0\x96"), &missing));
    EXPECT_EQ(missing, q("\xF0\x9F\x98\x80")) << "both halves of the character";
}

TEST(CodePage, IsUnknownForNumbersThatAreNone)
{
    for (const int number : {0, -1, 4711, 99999999})
        EXPECT_FALSE(KNCodePage(number).isKnown()) << number;
}

TEST(CodePage, IsRespectedByTheConverter)
{
    KNImportColumnType type;
    type.kind = KNImportColumnType::Kind::Text;
    type.isUnicode = false;
    type.maximumLength = 4;
    type.codePage = KNCodePage(932);
    const KNImportConverter converter(type, true, {});
    QString reason;
    EXPECT_EQ(converter.convert(q("\xE6\x97\xA5\xE6\x9C\xAC"), &reason)->text(),
              q("\xE6\x97\xA5\xE6\x9C\xAC"));
    EXPECT_FALSE(converter.convert(q("\xE6\x97\xA5\xE6\x9C\xAC\x61"), &reason));
    EXPECT_EQ(reason, q("The text has 5 bytes in code page 932, the column holds 4."));
    EXPECT_FALSE(converter.convert(q("a\xED\x95\x9C"), &reason));
    EXPECT_EQ(reason, q("The column's code page 932 does not have the character \"\xED\x95\x9C\"."));
}

TEST(ImportMapping, NamesColumnsThatNeedAValueAndGetNone)
{
    const KNImportTableColumnModel id{q("id"), q("int"), false, 0, true};
    const KNImportTableColumnModel name{q("name"), q("varchar(9)"), false, 1252, false};
    const KNImportTableColumnModel note{q("note"), q("varchar(9)"), true, 0, false};
    const KNImportTableColumnModel code{q("code"), q("char(2)"), false, 0, false};
    EXPECT_EQ(KNImportMapping::unfilledColumns({id, name, note, code}, {{note, 0}, {code, -1, q("x")}}),
              QStringList{q("name")});
}
