#include "RowEditing/MSSQLGridInsert.h"
#include "Support/PrintQt.h"
#include "Support/TestText.h"

#include <gtest/gtest.h>

namespace {

KNEditRowColumn inserted(const char *name, const char *type, const KNValue &value = {})
{
    KNEditRowColumn column;
    column.columnName = q(name);
    column.typeName = q(type);
    column.columnCurrentValue = value;
    return column;
}

KNEditRowColumn identity(const char *name)
{
    KNEditRowColumn column = inserted(name, "int");
    column.isIdentity = true;
    return column;
}

KNEditRowColumn withDefault(const char *name, const char *type, const char *expression)
{
    KNEditRowColumn column = inserted(name, type);
    column.columnDefaultValue = q(expression);
    return column;
}

} // namespace

TEST(GridInsert, WritesFloatsWithSeventeenDigitsAndRealsWithNine)
{
    const MSSQLGridInsert insert(q("sales"), q("Rates"),
                                 {inserted("f", "float", KNValue(*KNDecimal::fromString(q("0.1")))),
                                  inserted("r", "real", KNValue(1.5F)), inserted("n", "int", KNValue(7))});
    EXPECT_EQ(insert.statement().corrected,
              q("INSERT INTO sales.Rates (f, r, n) VALUES (1.0000000000000001e-01, CAST(1.50000000e+00 AS "
                "real), 7)"));
    EXPECT_EQ(insert.statement().exact,
              q("SET QUOTED_IDENTIFIER OFF\r\nINSERT INTO sales.Rates (f, r, n) VALUES "
                "(1.0000000000000001e-01, CAST(1.50000000e+00 AS real), 7)"));
}

TEST(GridInsert, ReadsTheRowByItsIdentityInTheSameBatch)
{
    const KNStatementPair pair =
        MSSQLGridInsert(q("dbo"), q("t"), {inserted("name", "nvarchar(9)", KNValue(q("x")))})
            .statementAndRead({identity("id")}, {identity("id"), inserted("name", "nvarchar(9)")});
    EXPECT_EQ(pair.corrected, q("INSERT INTO dbo.t (name) VALUES ('x')\r\nSELECT id, name FROM dbo.t WHERE "
                                "id = SCOPE_IDENTITY()"));
    EXPECT_EQ(pair.exact, q("SET QUOTED_IDENTIFIER OFF\r\n") + pair.corrected);
}

TEST(GridInsert, EvaluatesTheDefaultOfAKeyBefore)
{
    const KNStatementPair pair =
        MSSQLGridInsert(q("dbo"), q("t"), {inserted("site", "int", KNValue(3))})
            .statementAndRead({inserted("site", "int"), withDefault("id", "uniqueidentifier", "(newid())")},
                              {inserted("id", "uniqueidentifier")});
    EXPECT_EQ(pair.corrected,
              q("DECLARE @VantorKey1 uniqueidentifier\r\nSET @VantorKey1 = (newid())\r\nINSERT INTO dbo.t "
                "(site, id) VALUES (3, @VantorKey1)\r\nSELECT id FROM dbo.t WHERE site = 3 AND id = "
                "@VantorKey1"));
}

TEST(GridInsert, DoesNotReadARowWhoseKeyCannotBeKnown)
{
    const MSSQLGridInsert insert(q("dbo"), q("t"), {inserted("name", "int", KNValue(1))});
    const KNEditRowColumn keys[] = {
        withDefault("id", "uniqueidentifier", "(newsequentialid())"), // only a default may call it
        withDefault("id", "decimal", "((1.25))"),                     // the scale is not known
        withDefault("id", "int", "CREATE DEFAULT seven AS 7"),        // bound
        inserted("id", "int"),                                        // a trigger may set it
        withDefault("id", "Phone", "('1')"),                          // a type of users
    };
    for (const KNEditRowColumn &key : keys)
        EXPECT_TRUE(insert.statementAndRead({key}, {key}).exact.isNull())
            << key.typeName.toStdString() << ' ' << key.columnDefaultValue.toStdString();
    const MSSQLGridInsert null(q("dbo"), q("t"), {inserted("id", "int")});
    EXPECT_TRUE(null.statementAndRead({inserted("id", "int")}, {inserted("id", "int")}).exact.isNull());
}

TEST(GridInsert, AddsARowOfDefaults)
{
    EXPECT_EQ(MSSQLGridInsert(q("dbo"), q("t"), {}).statement().corrected,
              q("INSERT INTO dbo.t DEFAULT VALUES"));
}
