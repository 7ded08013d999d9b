#include "Procedures/MSSQLProcedureBatch.h"

#include "Implementations/MSSQLDatabaseConnectionDetails.h"
#include "Procedures/MSSQLProcedureValues.h"
#include "Support/PrintQt.h"
#include "Support/RecordingStore.h"

#include <gtest/gtest.h>

namespace {

using Parameter = MSSQLStoredProcedureParameter;

Parameter procedureParameter(const char *name, const char *type, const char *value, bool isOutput = false)
{
    Parameter made;
    made.parameterName = QString::fromUtf8(name);
    made.parameterType = QString::fromUtf8(type);
    made.baseType = made.parameterType;
    made.parameterValue = QString::fromUtf8(value);
    made.parameterIsOutput = isOutput;
    return made;
}

KNStatementPair procedureBatch(const QList<Parameter> &parameters, const char *procedure = "Place")
{
    return MSSQLProcedureBatch(QStringLiteral("dbo"), QString::fromUtf8(procedure), parameters)
        .generatedQuery();
}

} // namespace

TEST(ProcedureBatch, WithoutParametersHasNoDeclarationsAndNoArguments)
{
    const KNStatementPair pair = procedureBatch({});
    EXPECT_EQ(pair.exact, QStringLiteral("DECLARE @return_value int\r\n"
                                         "\r\n\r\n"
                                         "EXEC @return_value =\r\n\tdbo.Place\r\n"
                                         "\r\n"
                                         "SELECT\r\n\t'Return Value' = @return_value"));
    EXPECT_FALSE(pair.differs());
}

TEST(ProcedureBatch, DeclaresAssignsPassesAndSelects)
{
    Parameter total = procedureParameter("@Total", "money", "", true);
    total.passNull = true;
    const KNStatementPair pair = procedureBatch(
        {procedureParameter("@Id", "int", "7"), procedureParameter("@Name", "nvarchar(50)", "Ann"), total},
        "Place");
    EXPECT_EQ(pair.exact, QStringLiteral("DECLARE @return_value int\r\n"
                                         "DECLARE @Id int\r\n"
                                         "DECLARE @Name nvarchar(50)\r\n"
                                         "DECLARE @Total money\r\n"
                                         "\r\n"
                                         "SELECT @Id = 7\r\n"
                                         "SELECT @Name = 'Ann'\r\n"
                                         "SELECT @Total = NULL\r\n"
                                         "\r\n"
                                         "EXEC @return_value =\r\n\tdbo.Place\r\n"
                                         "\t\t@Id = @Id,\r\n"
                                         "\t\t@Name = @Name,\r\n"
                                         "\t\t@Total = @Total\r\n"
                                         "\r\n"
                                         "SELECT\r\n\t'Return Value' = @return_value,\r\n\t@Total"));
    EXPECT_TRUE(pair.corrected.contains(QStringLiteral("\t\t@Total = @Total OUTPUT\r\n")));
    EXPECT_TRUE(pair.corrected.endsWith(QStringLiteral(",\r\n\t[@Total] = @Total")));
    EXPECT_TRUE(pair.differs());
}

TEST(ProcedureBatch, LeavesOutAnEmptyParameterWithoutNull)
{
    const KNStatementPair pair =
        procedureBatch({procedureParameter("@Id", "int", ""), procedureParameter("@B", "int", "1")}, "Place");
    for (const QString &text : {pair.exact, pair.corrected})
        EXPECT_FALSE(text.contains(QStringLiteral("@Id"))) << text.toStdString();
    EXPECT_FALSE(pair.differs());
}

TEST(ProcedureBatch, OnlyTheCorrectedFormDoublesQuotes)
{
    const KNStatementPair pair =
        procedureBatch({procedureParameter("@Name", "varchar(10)", "it's")}, "Place");
    EXPECT_TRUE(pair.exact.contains(QStringLiteral("SELECT @Name = 'it's'\r\n")));
    EXPECT_TRUE(pair.corrected.contains(QStringLiteral("SELECT @Name = 'it''s'\r\n")));
    EXPECT_TRUE(pair.differs());
}

TEST(ProcedureBatch, TheCorrectedFormWritesEachValueAsItsTypeNeedsIt)
{
    const auto assigned = [](const char *type, const char *value) {
        const QString text = procedureBatch({procedureParameter("@p", type, value)}, "Place").corrected;
        return text.section(QStringLiteral("SELECT @p = "), 1).section(QStringLiteral("\r\n"), 0, 0);
    };
    EXPECT_EQ(assigned("nvarchar(10)", "Gr\xc3\xb6\xc3\x9f"
                                       "e"),
              QString::fromUtf8("N'Gr\xc3\xb6\xc3\x9f"
                                "e'"));
    EXPECT_EQ(assigned("date", "2024-02-29"), QStringLiteral("'2024-02-29'"));
    EXPECT_EQ(assigned("varbinary(8)", "0x0aFF"), QStringLiteral("0x0aff"));
    EXPECT_EQ(assigned("decimal(38,2)", "123456789012345678901234567890.12"),
              QStringLiteral("123456789012345678901234567890.12"));
    EXPECT_EQ(assigned("xml", "<a b='1'/>"), QStringLiteral("'<a b=''1''/>'"));
    EXPECT_EQ(assigned("uniqueidentifier", "6F9619FF-8B86-D011-B42D-00CF4FC964FF").toUpper(),
              QStringLiteral("'6F9619FF-8B86-D011-B42D-00CF4FC964FF'"));
}

TEST(ProcedureBatch, LeavesOutAnOutputWithoutAValueSoThatItsDefaultApplies)
{
    Parameter output = procedureParameter("@Out", "int", "", true);
    const KNStatementPair pair = procedureBatch({output}, "Place");
    for (const QString &text : {pair.exact, pair.corrected})
        EXPECT_FALSE(text.contains(QStringLiteral("@Out"))) << text.toStdString();
    EXPECT_FALSE(pair.differs());
    output.passNull = true;
    const KNStatementPair withNull = procedureBatch({output}, "Place");
    EXPECT_TRUE(withNull.corrected.contains(QStringLiteral("SELECT @Out = NULL\r\n")));
    EXPECT_TRUE(withNull.corrected.contains(QStringLiteral("\t\t@Out = @Out OUTPUT\r\n")));
    EXPECT_TRUE(withNull.difference.contains(QStringLiteral("OUTPUT")));
}

TEST(ProcedureBatch, TheCorrectedFormAvoidsTypesThatVariablesCannotHave)
{
    EXPECT_TRUE(procedureBatch({procedureParameter("@t", "ntext", "a")})
                    .corrected.contains(QStringLiteral("DECLARE @t nvarchar(max)")));
    Parameter table = procedureParameter("@t", "[sales].[Lines]", "x");
    table.baseType = QStringLiteral("table type");
    EXPECT_FALSE(table.isSettable());
    EXPECT_FALSE(procedureBatch({table}).corrected.contains(QStringLiteral("@t")));
}

TEST(ProcedureBatch, TheCorrectedFormKeepsItsVariableApartFromAParameter)
{
    const QString text = procedureBatch({procedureParameter("@RETURN_VALUE", "int", "1")}).corrected;
    EXPECT_TRUE(
        text.startsWith(QStringLiteral("DECLARE @return_value_ int\r\nDECLARE @RETURN_VALUE int\r\n")));
}

TEST(ProcedureBatch, KnowsTheNamesOfParameters)
{
    EXPECT_TRUE(MSSQLProcedureBatch::isParameterName(QString::fromUtf8("@Gr\xc3\xb6\xc3\x9f"
                                                                       "e_1$#")));
    for (const char *name : {"", "@", "a", "@a b", "@a; DROP TABLE t", "@a\n"})
        EXPECT_FALSE(MSSQLProcedureBatch::isParameterName(QString::fromUtf8(name))) << name;
}

namespace {

/// The values of procedures in a store that exists in the test only.
class ProcedureValues : public testing::Test
{
protected:
    ProcedureValues()
    {
        details.setDatabase(QStringLiteral("shop"));
        details.setConnectionId(QStringLiteral("c1"));
    }
    ~ProcedureValues() override { KNKeyValueStore::setShared(nullptr); }

    QList<Parameter> restored(const char *procedure, const QList<Parameter> &parameters)
    {
        QList<Parameter> result;
        MSSQLProcedureValues(details, QStringLiteral("dbo"), QString::fromUtf8(procedure))
            .restore(parameters, [&](const QList<Parameter> &values) { result = values; });
        return result;
    }
    void keep(const char *procedure, const QList<Parameter> &parameters)
    {
        MSSQLProcedureValues(details, QStringLiteral("dbo"), QString::fromUtf8(procedure)).keep(parameters);
    }

    const std::shared_ptr<RecordingStore> store = RecordingStore::install();
    MSSQLDatabaseConnectionDetails details;
};

} // namespace

TEST_F(ProcedureValues, ComeBackForTheSameProcedure)
{
    Parameter nothing = procedureParameter("@b", "int", "");
    nothing.passNull = true;
    keep("P", {procedureParameter("@a", "int", "5"), nothing, procedureParameter("@c", "int", "")});
    const auto values =
        restored("P", {procedureParameter("@a", "int", ""), procedureParameter("@b", "int", ""),
                       procedureParameter("@c", "int", ""), procedureParameter("@d", "int", "")});
    ASSERT_EQ(values.size(), 4);
    EXPECT_EQ(values[0].parameterValue, QStringLiteral("5"));
    EXPECT_TRUE(values[1].passNull);
    EXPECT_TRUE(values[2].isLeftOut());
    EXPECT_TRUE(values[3].isLeftOut());
    EXPECT_TRUE(restored("Q", {procedureParameter("@a", "int", "")}).first().isLeftOut());
}

TEST_F(ProcedureValues, AreKeptForEachConnectionAndDatabase)
{
    keep("P", {procedureParameter("@a", "int", "5")});
    details.setDatabase(QStringLiteral("library"));
    EXPECT_TRUE(restored("P", {procedureParameter("@a", "int", "")}).first().isLeftOut());
    details.setDatabase(QStringLiteral("shop"));
    details.setConnectionId(QStringLiteral("c2"));
    EXPECT_TRUE(restored("P", {procedureParameter("@a", "int", "")}).first().isLeftOut());
}

TEST_F(ProcedureValues, AreBoundedInNumberAndLength)
{
    keep("Long", {procedureParameter("@a", "nvarchar(max)", QByteArray(5000, 'x').constData())});
    EXPECT_TRUE(restored("Long", {procedureParameter("@a", "nvarchar(max)", "")}).first().isLeftOut());
    for (int i = 0; i <= MSSQLProcedureValues::MostProcedures; ++i)
        keep(qPrintable(QString::number(i)), {procedureParameter("@a", "int", "5")});
    EXPECT_TRUE(restored("0", {procedureParameter("@a", "int", "")}).first().isLeftOut());
    EXPECT_EQ(restored("1", {procedureParameter("@a", "int", "")}).first().parameterValue,
              QStringLiteral("5"));
}

TEST_F(ProcedureValues, ThatAreNamedLikePasswordsAreNotKept)
{
    for (const char *const name : {"@Password", "@user_pwd", "@ClientSecret", "@loginpw"}) {
        keep("P", {procedureParameter("@a", "int", "5"), procedureParameter(name, "nvarchar(50)", "hidden")});
        const auto values = restored(
            "P", {procedureParameter("@a", "int", ""), procedureParameter(name, "nvarchar(50)", "")});
        EXPECT_EQ(values.first().parameterValue, QStringLiteral("5"));
        EXPECT_TRUE(values.last().isLeftOut()) << name;
    }
    for (const QString &text : store->writes)
        EXPECT_FALSE(text.contains(QStringLiteral("hidden"))) << text.toStdString();
}

TEST_F(ProcedureValues, AreForgottenWithTheirConnection)
{
    keep("P", {procedureParameter("@a", "int", "5")});
    ASSERT_EQ(store->texts.size(), 1);
    MSSQLProcedureValues::forget(QStringLiteral("c2"));
    EXPECT_EQ(store->texts.size(), 1);
    MSSQLProcedureValues::forget(QStringLiteral("c1"));
    EXPECT_TRUE(store->texts.isEmpty());
}

TEST_F(ProcedureValues, SurviveAStoreThatFailsOrHoldsRubbish)
{
    store->readProblem = KNKeyValueStore::Refused;
    EXPECT_TRUE(restored("P", {procedureParameter("@a", "int", "")}).first().isLeftOut());
    store->readProblem.reset();
    store->texts.insert(QStringLiteral("MSSQLProcedureValues c1"), QStringLiteral("{[rubbish"));
    EXPECT_TRUE(restored("P", {procedureParameter("@a", "int", "")}).first().isLeftOut());
}
