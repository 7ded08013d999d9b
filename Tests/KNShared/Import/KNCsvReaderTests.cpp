#include "KNShared/Import/ImportTesting.h"

using namespace ImportTesting;
using Encoding = KNImportTextSource::Encoding;

namespace {

class CsvReader : public testing::Test
{
protected:
    Content read(const QByteArray &content) const { return contentOf(files.write("a.csv", content)); }

    const Files files{};
};

QByteArray utf16(const char *text, bool isBigEndian, bool hasMark)
{
    QStringEncoder encoder(isBigEndian ? QStringEncoder::Utf16BE : QStringEncoder::Utf16LE,
                           hasMark ? QStringEncoder::Flag::WriteBom : QStringEncoder::Flag::Default);
    return encoder(QString::fromUtf8(text));
}

} // namespace

TEST_F(CsvReader, ReadsQuotedSeparatorsQuotesAndLineEnds)
{
    const Content content =
        read("id,text\r\n1,\"a,b\"\r\n2,\"say \"\"hi\"\"\"\r\n3,\"two\r\nlines\"\r\n4,last");
    EXPECT_EQ(content.columns, words({"id", "text"}));
    EXPECT_EQ(content.rows, (QList<QStringList>{words({"1", "a,b"}), words({"2", "say \"hi\""}),
                                                words({"3", "two\r\nlines"}), words({"4", "last"})}));
    EXPECT_EQ(content.lines, (QList<quint64>{2, 3, 4, 6}));
    EXPECT_TRUE(content.error.isNull()) << content.error.toStdString();
}

TEST_F(CsvReader, TellsEmptyValuesFromEmptyText)
{
    EXPECT_EQ(read("a,b,c\n,\"\", \n").rows, (QList<QStringList>{words({"<null>", "", " "})}));
}

TEST_F(CsvReader, KeepsBlanksAndSkipsEmptyLines)
{
    const Content content = read("a,b\n\n x , y \n\r\n1,2\n");
    EXPECT_EQ(content.rows, (QList<QStringList>{words({" x ", " y "}), words({"1", "2"})}));
    EXPECT_EQ(content.lines, (QList<quint64>{3, 5}));
}

TEST_F(CsvReader, ReadsLineEndsOfEveryKind)
{
    const QList<QStringList> rows{words({"1"}), words({"2"})};
    for (const char *content : {"a\n1\n2", "a\r\n1\r\n2\r\n", "a\r1\r2\r"}) {
        EXPECT_EQ(read(content).rows, rows) << content;
        EXPECT_EQ(read(content).lines, (QList<quint64>{2, 3})) << content;
    }
}

TEST_F(CsvReader, KeepsByteOrderMarksExceptTheFiles)
{
    const QByteArray mark("\xef\xbb\xbf");
    const QString marked = QChar(0xFEFF) + QStringLiteral("x");
    const Content content = read(mark + "a,b\n" + mark + "x," + mark + "x\n");
    EXPECT_EQ(content.columns, words({"a", "b"}));
    EXPECT_EQ(content.rows, (QList<QStringList>{{marked, marked}}));
    // The mark of UTF-16, and then one that belongs to the name of the column.
    EXPECT_EQ(read(QByteArray("\xff\xfe\xff\xfe"
                              "b\0\n\0a\0\n\0",
                              12))
                  .columns,
              QStringList{QChar(0xFEFF) + QStringLiteral("b")});
}

TEST_F(CsvReader, FindsTheSeparatorInTheFirstLine)
{
    for (const char *content : {"a,b\n1,2", "a;b\n1;2", "a\tb\n1\t2", "a|b\n1|2", "\"a,,,\";b\n1;2"})
        EXPECT_EQ(read(content).rows, (QList<QStringList>{words({"1", "2"})})) << content;
}

TEST_F(CsvReader, ReportsRowsWithTooManyAndTooFewValues)
{
    const Content content = read("a,b\n1\n1,2,3\n1,2\n");
    ASSERT_EQ(content.rows.size(), 3);
    EXPECT_EQ(content.rows[0], words({"!The line has 1 values, but there are 2 columns."}));
    EXPECT_EQ(content.rows[1], words({"!The line has 3 values, but there are 2 columns."}));
    EXPECT_EQ(content.rows[2], words({"1", "2"}));
}

TEST_F(CsvReader, ReportsAFileThatEndsInAQuote)
{
    const Content content = read("a,b\n1,2\n3,\"open\n4,5\n");
    EXPECT_EQ(content.rows, (QList<QStringList>{words({"1", "2"})}));
    EXPECT_EQ(content.error,
              QStringLiteral("Line 3: The file ends inside of a quoted value of the row that begins here."));
}

TEST_F(CsvReader, ReportsAQuoteInsideOfAValue)
{
    const Content content = read("a,b\n1,5\" disk\n");
    EXPECT_TRUE(content.error.startsWith(QStringLiteral("Line 2, character 3: A quote is neither doubled")))
        << content.error.toStdString();
    KNImportFile file = files.write("b.csv", "a,b\n1,5\" disk\n");
    file.quote = QChar();
    EXPECT_EQ(contentOf(file).rows, (QList<QStringList>{words({"1", "5\" disk"})}));
}

TEST_F(CsvReader, ReportsBytesThatAreNoUtf8)
{
    // Windows-1252 beyond the part that the detection looks at, and a sequence that the end of the file cuts.
    const QByteArray filling = QByteArray("x\n").repeated(40'000);
    const Content content = read("a\n" + filling + "caf\xe9\ny\nna\xc3");
    ASSERT_EQ(content.rows.size(), 40'003);
    EXPECT_EQ(content.rows[40'000], words({"!Value 1 is not valid UTF-8. Choose the file's encoding."}));
    EXPECT_EQ(content.rows[40'001], words({"y"}));
    EXPECT_EQ(content.rows[40'002], words({"!Value 1 is not valid UTF-8. Choose the file's encoding."}));
}

TEST_F(CsvReader, ReadsWindows1252)
{
    const Content content = read("a,b\n\x80\x93x\x94,caf\xe9 \x9f\x81\n");
    EXPECT_EQ(content.rows, (QList<QStringList>{words(
                                {"\xe2\x82\xac\xe2\x80\x9cx\xe2\x80\x9d", "caf\xc3\xa9 \xc5\xb8\xc2\x81"})}));
}

TEST_F(CsvReader, DetectsEncodings)
{
    const QList<QStringList> rows{words({"Zoë", "日本"})};
    const char *const text = "name,land\nZoë,日本\n";
    EXPECT_EQ(read(text).rows, rows);
    EXPECT_EQ(read(QByteArray("\xef\xbb\xbf") + text).columns, words({"name", "land"}));
    for (const bool isBigEndian : {false, true}) {
        for (const bool hasMark : {false, true}) {
            const Content content = read(utf16(text, isBigEndian, hasMark));
            EXPECT_EQ(content.columns, words({"name", "land"}));
            EXPECT_EQ(content.rows, rows);
        }
    }
    EXPECT_EQ(read("name\ncaf\xe9\n").rows, (QList<QStringList>{words({"café"})}));
}

TEST_F(CsvReader, ReadsAstralCharactersAcrossPieces)
{
    QByteArray text = "a\nx";
    for (int i = 0; i < 50'000; ++i)
        text += "😀";
    const Content content = read(utf16(text.constData(), false, true));
    ASSERT_EQ(content.rows.size(), 1) << content.error.toStdString();
    EXPECT_EQ(content.rows[0][0].size(), 100'001);
    EXPECT_EQ(content.rows[0][0].right(2), QString::fromUtf8("😀"));
}

TEST_F(CsvReader, ReportsUtf16ThatEndsInACharacter)
{
    QByteArray content = utf16("a\nb\n", false, true);
    content.chop(1);
    EXPECT_TRUE(read(content).error.contains(QStringLiteral("is not valid UTF-16")));
}

TEST_F(CsvReader, ReportsEmptyAndMissingFiles)
{
    EXPECT_EQ(read("").error, QStringLiteral("The file is empty."));
    EXPECT_EQ(read("\n\n").error, QStringLiteral("The file is empty."));
    EXPECT_TRUE(contentOf({files.path("none.csv")}).error.contains(QStringLiteral("cannot be read")));
    EXPECT_TRUE(contentOf({QStringLiteral("/"), QStringLiteral("csv")})
                    .error.contains(QStringLiteral("cannot be read")));
}

TEST_F(CsvReader, NamesEmptyAndRepeatedColumns)
{
    EXPECT_EQ(read("a,,A,a\n1,2,3,4\n").columns, words({"a", "Column2", "A (2)", "a (3)"}));
    KNImportFile file = files.write("c.csv", "1,2\n3,4\n");
    file.hasHeader = false;
    const Content content = contentOf(file);
    EXPECT_EQ(content.columns, words({"Column1", "Column2"}));
    EXPECT_EQ(content.rows, (QList<QStringList>{words({"1", "2"}), words({"3", "4"})}));
}

TEST_F(CsvReader, ReadsAThousandColumns)
{
    QByteArray header;
    QByteArray values;
    for (int i = 0; i < 1000; ++i) {
        header += (i ? ",c" : "c") + QByteArray::number(i);
        values += (i ? "," : "") + QByteArray::number(i);
    }
    const Content content = read(header + "\n" + values + "\n");
    ASSERT_EQ(content.columns.size(), 1000);
    ASSERT_EQ(content.rows.size(), 1);
    EXPECT_EQ(content.rows[0][999], QStringLiteral("999"));
    EXPECT_TRUE(read(QByteArray(KNImportReader::MostColumns, ',') + "\n")
                    .error.contains(QStringLiteral("A row has more than 16384 values.")));
}

TEST_F(CsvReader, KeepsLargeValuesAndRefusesHugeOnes)
{
    const QByteArray large(KNImportReader::LargestValue, 'x');
    const Content content = read("a\n\"" + large + "\"\n");
    ASSERT_EQ(content.rows.size(), 1) << content.error.toStdString();
    EXPECT_EQ(content.rows[0][0].size(), large.size());
    const Content huge = read("a\n1\n\"" + QByteArray(50 * 1024 * 1024, 'x') + "\"\n");
    EXPECT_EQ(huge.error, QStringLiteral("Line 3: A value has more than 8 MB. Is a closing quote missing?"));
    EXPECT_EQ(huge.rows.size(), 1);
}

TEST_F(CsvReader, PassesZeroBytesOn)
{
    KNImportFile file = files.write("d.csv", QByteArray("a,b\nx\0y,z\n", 10));
    file.encoding = Encoding::UTF8;
    EXPECT_EQ(contentOf(file).rows,
              (QList<QStringList>{QStringList{QString(QStringLiteral("x")) + QChar() + QLatin1Char('y'),
                                              QStringLiteral("z")}}));
}

TEST_F(CsvReader, ReadsTabs)
{
    EXPECT_EQ(contentOf(files.write("e.tsv", "a\tb\n1,5\t\"x\ty\"\n")).rows,
              (QList<QStringList>{words({"1,5", "x\ty"})}));
}
