#include "Database/KNRowReader.h"
#include "Export/MSSQLCellLiteral.h"
#include "VantorMSSQL/Wire/WireTest.h"

namespace LiteralTests {

using namespace WireTest;

namespace {

/// Texts with a backslash before a line end, where a constant would continue.
const char *const ContinuedTexts[] = {"a\\\nb", "a\\\\\nb", "a\\\r\nb",      "\\\n\\\n",        "\\\n\n",
                                      "\\\r\n", "\\\\\r\n", "it's\\\n'q'\\", "\xc3\xb1\\\r\nz", "a\\\rb"};

QString literalOf(const KNDatabaseResultSet &rows)
{
    KNByteBuffer buffer;
    MSSQLCellLiteral::append(buffer, KNRowReader(rows.rows()).cell(0, 0));
    return QString::fromUtf8(buffer.data(), static_cast<qsizetype>(buffer.size()));
}

} // namespace

TEST(Literals, KeepBackslashesBeforeLineEnds)
{
    const auto client = connectedClient();
    for (const char *const utf8 : ContinuedTexts) {
        const KNValue text(QString::fromUtf8(utf8));
        EXPECT_EQ(scalar(*client, QLatin1String("SELECT ") + MSSQLQuoting::literal(text)), text) << utf8;
        EXPECT_EQ(scalar(*client, QLatin1String("SELECT ") + MSSQLQuoting::unicodeLiteral(text.text())), text)
            << utf8;
    }
}

TEST(Literals, AreFoundAgainAfterAnImport)
{
    const auto client = connectedClient();
    run(*client, QStringLiteral("USE tempdb CREATE TABLE #t (v nvarchar(20))"));
    for (const char *const utf8 : ContinuedTexts) {
        const KNValue text(QString::fromUtf8(utf8));
        run(*client, QStringLiteral("DELETE FROM #t"));
        KNError error;
        EXPECT_TRUE(client->insertRows({{text}}, {QStringLiteral("#t")}, {QStringLiteral("v")},
                                       {QStringLiteral("nvarchar")}, &error))
            << error.localizedDescription().toStdString();
        const auto stored =
            run(*client, QLatin1String("SELECT v FROM #t WHERE v = ") + MSSQLQuoting::literal(text));
        ASSERT_EQ(stored.size(), 1);
        ASSERT_EQ(stored[0]->rows().rowCount(), 1) << utf8;
        EXPECT_EQ(stored[0]->rows().value(0, 0), text) << utf8;
        EXPECT_EQ(scalar(*client, QLatin1String("SELECT ") + literalOf(*stored[0])), text) << utf8;
    }
}

TEST(Literals, OfFloatingPointNumbersKeepTheirTypeAndEveryBit)
{
    const auto client = connectedClient();
    for (const double number : {0.1, 5.0, 0.12345678901234566, 1e300, -1.7976931348623157e308, 4.9e-320}) {
        const KNValue value(number);
        EXPECT_EQ(scalar(*client, QLatin1String("SELECT ") + MSSQLQuoting::literal(value)), value) << number;
    }
    for (const float number : {0.1F, 5.0F, 3.402823e38F, -1.17549435e-38F}) {
        const KNValue value(number);
        EXPECT_EQ(scalar(*client, QLatin1String("SELECT ") + MSSQLQuoting::literal(value)), value) << number;
    }
}

} // namespace LiteralTests
