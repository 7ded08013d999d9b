#include "Import/KNExcelReader.h"
#include "KNShared/Import/ImportTesting.h"

#include <zip.h>

using namespace ImportTesting;

namespace {

using Parts = std::map<std::string, QByteArray>;

/// A workbook of two sheets; the first one holds these rows.
Parts workbook(const QByteArray &rows)
{
    return {
        {"xl/workbook.xml",
         "<workbook xmlns:r='http://schemas.openxmlformats.org/officeDocument/2006/relationships'><sheets>"
         "<sheet name='First' sheetId='1' r:id='rId1'/><sheet name='Other' sheetId='2' r:id='rId2'/>"
         "</sheets></workbook>"},
        {"xl/_rels/workbook.xml.rels",
         "<Relationships><Relationship Id='rId1' Target='worksheets/sheet1.xml'/>"
         "<Relationship Id='rId2' Target='/xl/worksheets/sheet2.xml'/></Relationships>"},
        {"xl/styles.xml", "<styleSheet><numFmts><numFmt numFmtId='164' formatCode='yyyy\\-mm\\-dd'/>"
                          "<numFmt numFmtId='165' formatCode='#,##0.00 \"days\"'/></numFmts><cellXfs>"
                          "<xf numFmtId='0'/><xf numFmtId='14'/><xf numFmtId='22'/><xf numFmtId='20'/>"
                          "<xf numFmtId='164'/><xf numFmtId='165'/></cellXfs></styleSheet>"},
        {"xl/sharedStrings.xml",
         "<sst><si><t>id</t></si><si><r><t>na</t></r><r><t>me</t></r><rPh><t>no</t></rPh></si><si><t/></si>"
         "<si><t>Zo\xc3\xab</t></si></sst>"},
        {"xl/worksheets/sheet1.xml", "<worksheet><sheetData>" + rows + "</sheetData></worksheet>"},
        {"xl/worksheets/sheet2.xml",
         "<worksheet><sheetData><row r='1'><c r='A1' t='inlineStr'><is><t>x</t></is></c></row>"
         "<row r='2'><c r='A2'><v>7</v></c></row></sheetData></worksheet>"}};
}

const QByteArray Header = "<row r='1'><c r='A1' t='s'><v>0</v></c><c r='B1' t='s'><v>1</v></c></row>";

class ExcelReader : public testing::Test
{
protected:
    KNImportFile write(const Parts &parts) const
    {
        const QString path = files.path("a.xlsx");
        QFile::remove(path);
        zip_t *const archive = zip_open(path.toUtf8().constData(), ZIP_CREATE, nullptr);
        for (const auto &[name, content] : parts) {
            zip_source_t *const source =
                zip_source_buffer(archive, content.constData(), static_cast<zip_uint64_t>(content.size()), 0);
            EXPECT_GE(zip_file_add(archive, name.c_str(), source, 0), 0);
        }
        EXPECT_EQ(zip_close(archive), 0);
        return {path};
    }
    Content read(const QByteArray &rows) const { return contentOf(write(workbook(Header + rows))); }

    const Files files{};
};

} // namespace

TEST_F(ExcelReader, ReadsTextsNumbersAndGaps)
{
    const Content content =
        read("<row r='2'><c r='A2'><v>0.10000000000000001</v></c><c r='B2' t='s'><v>3</v></c></row>"
             "<row r='5'><c r='B5' t='str'><f>A1</f><v>sum</v></c></row>"
             "<row r='6'><c r='A6' t='b'><v>1</v></c><c r='B6' t='s'><v>2</v></c><c r='C6'/></row>");
    EXPECT_EQ(content.columns, words({"id", "name"}));
    EXPECT_EQ(content.rows,
              (QList<QStringList>{words({"0.1", "Zoë"}), words({"<null>", "sum"}), words({"1", ""})}));
    EXPECT_EQ(content.lines, (QList<quint64>{2, 5, 6}));
    EXPECT_TRUE(content.error.isNull()) << content.error.toStdString();
}

TEST_F(ExcelReader, KeepsByteOrderMarksInTexts)
{
    Parts parts = workbook(Header + "<row r='2'><c r='A2' t='s'><v>4</v></c></row>");
    parts["xl/sharedStrings.xml"].replace("</sst>", "<si><t>\xef\xbb\xbfx</t></si></sst>");
    const QList<QStringList> rows = contentOf(write(parts)).rows;
    ASSERT_EQ(rows.size(), 1);
    EXPECT_EQ(rows[0].value(0), QChar(0xFEFF) + QStringLiteral("x"));
}

TEST_F(ExcelReader, DecodesEscapedCharacters)
{
    Parts parts =
        workbook(Header + "<row r='2'><c r='A2' t='s'><v>4</v></c><c r='B2' t='s'><v>5</v></c></row>"
                          "<row r='3'><c r='A3' t='inlineStr'><is><r><t>1_x000D_\n2</t></r>"
                          "<r><t>_x00</t></r><r><t>41_</t></r></is></c>"
                          "<c r='B3' t='str'><v>_x005F_x000D__x000d_</v></c></row>");
    parts["xl/sharedStrings.xml"].replace(
        "</sst>", "<si><t>a_x000D_\nb</t></si><si><t>_x005F_x000D_ _xZZZZ_ _x0041 x_x263A_</t></si></sst>");
    EXPECT_EQ(contentOf(write(parts)).rows,
              (QList<QStringList>{words({"a\r\nb", "_x000D_ _xZZZZ_ _x0041 x\xe2\x98\xba"}),
                                  words({"1\r\n2_x0041_", "_x000D_\r"})}));
}

TEST_F(ExcelReader, ReadsDatesByTheirStyles)
{
    // 45351.5 is noon on 29 February 2024; 1 is 1 January 1900, and 61 is 1 March 1900.
    const Content content =
        read("<row r='2'><c r='A2' s='1'><v>45351</v></c><c r='B2' s='2'><v>45351.5</v></c></row>"
             "<row r='3'><c r='A3' s='3'><v>0.25</v></c><c r='B3' s='4'><v>1</v></c></row>"
             "<row r='4'><c r='A4' s='4'><v>61</v></c><c r='B4' s='5'><v>45351</v></c></row>");
    EXPECT_EQ(content.rows,
              (QList<QStringList>{words({"2024-02-29", "2024-02-29T12:00:00"}),
                                  words({"06:00:00", "1900-01-01"}), words({"1900-03-01", "45351"})}));
}

TEST_F(ExcelReader, ReadsDatesSince1904)
{
    Parts parts = workbook(Header + "<row r='2'><c r='A2' s='1'><v>0</v></c></row>");
    parts["xl/workbook.xml"].replace("<sheets>", "<workbookPr date1904='1'/><sheets>");
    EXPECT_EQ(contentOf(write(parts)).rows, (QList<QStringList>{words({"1904-01-01", "<null>"})}));
}

TEST_F(ExcelReader, ReadsTheChosenSheet)
{
    KNImportFile file = write(workbook(Header));
    KNError error;
    EXPECT_EQ(KNExcelReader::sheets(file.path, &error), words({"First", "Other"}));
    file.sheet = QStringLiteral("other");
    EXPECT_EQ(contentOf(file).rows, (QList<QStringList>{words({"7"})}));
    file.sheet = QStringLiteral("None");
    EXPECT_EQ(contentOf(file).error, QStringLiteral("The workbook has no sheet \"None\"."));
}

TEST_F(ExcelReader, ReportsErrorCellsAndMissingTexts)
{
    const Content content = read(
        "<row r='2'><c r='A2' t='e'><v>#N/A</v></c></row><row r='3'><c r='A3' t='s'><v>99</v></c></row>");
    ASSERT_EQ(content.rows.size(), 2);
    EXPECT_EQ(content.rows[0], words({"!Cell 1 contains the error #N/A."}));
    EXPECT_EQ(content.rows[1], words({"!Cell 1 refers to a text that is not there."}));
}

TEST_F(ExcelReader, RefusesDamagedWorkbooks)
{
    EXPECT_TRUE(contentOf(files.write("b.xlsx", "no zip"))
                    .error.contains(QStringLiteral("is not an Excel workbook")));
    EXPECT_TRUE(contentOf(write({{"a", "b"}})).error.contains(QStringLiteral("is damaged")));
    EXPECT_TRUE(read("<row r='2'><c r='A2'><v>1</v></c><c").error.contains(QStringLiteral("is damaged")));
    EXPECT_TRUE(
        read("<row r='2'><c r='ZZZZ2'><v>1</v></c></row>").error.contains(QStringLiteral("is damaged")));
}

TEST_F(ExcelReader, RefusesZipBombs)
{
    const Content content =
        read("<row r='2'><c r='A2' t='str'><v>" + QByteArray(64 * 1024 * 1024, 'x') + "</v></c></row>");
    EXPECT_TRUE(content.error.contains(QStringLiteral("is damaged, encrypted or too large")))
        << content.error.toStdString();
}

TEST_F(ExcelReader, TellsDateFormatsFromNumbers)
{
    using Kind = KNExcelStyles::Kind;
    const auto kind = [](const char *format) {
        return KNExcelStyles::kindOfFormat(QString::fromLatin1(format));
    };
    EXPECT_EQ(kind("dd/mm/yy"), Kind::Date);
    EXPECT_EQ(kind("mmm"), Kind::Date);
    EXPECT_EQ(kind("mm:ss"), Kind::Time);
    EXPECT_EQ(kind("[$-409]d-mmm-yy h:mm AM/PM;@"), Kind::DateAndTime);
    EXPECT_EQ(kind("0.00 \"dye\""), Kind::Number);
    EXPECT_EQ(kind("[Red]0\\d"), Kind::Number);
}
