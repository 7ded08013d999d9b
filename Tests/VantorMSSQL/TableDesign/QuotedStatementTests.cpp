#include "SQL/SQLMetadataTokenizer.h"
#include "Support/PrintQt.h"
#include "TableDesign/MSSQLRenameScript.h"
#include "VantorMSSQL/TableDesign/DesignStatements.h"

#include <gtest/gtest.h>

namespace QuotedStatementTests {

using namespace DesignStatements;

namespace {

/// All corrected statements of an object of which every name is this one.
QStringList statementsOf(const QString &name)
{
    const MSSQLDesignedTable table{name, name};
    const MSSQLColumnScript script(table);
    const MSSQLIndexScript indexes(table);
    const QList<MSSQLColumnRecord> columns{column(name, "int"), column(QStringLiteral("other"), "int")};
    const MSSQLIndexEntry index{name, true, true, {{name}}};
    const MSSQLIndexEntry renamed{name + name, true, true, {{name}}};
    const MSSQLIndexEntry changed{name, true, true, {{name}, {name}}};
    KNEditRowColumn key{.columnName = name, .isPrimaryKey = true, .columnCurrentValue = KNValue(1)};
    KNEditRowColumn value{.columnName = name, .columnCurrentValue = KNValue(2), .hasBeenModified = true};
    const MSSQLRowStatement row(name, name, {key, value}, MSSQLRowStatement::Values{{name, KNValue(1)}});
    return {
        script.rename(name, name).corrected,
        script.changeType(columns[0], column(name, "bigint")).corrected,
        script.addColumn(name).corrected,
        script.dropColumn(name, columns).corrected,
        MSSQLPrimaryKeyScript(table, QString()).change(columns, name, true).corrected,
        indexes.queryForUpdateIndex({}, index, true).corrected,
        indexes.queryForUpdateIndex(index, renamed, false).corrected,
        indexes.queryForUpdateIndex(index, changed, false).corrected,
        indexes.dropIndex(name).corrected,
        MSSQLForeignKeyScript::drop(table, name).corrected,
        MSSQLTriggerScript::drop(table, name).corrected,
        MSSQLTableScript::creationQueryForColumns({}, table).corrected,
        MSSQLTableScript::rename(table, name).corrected,
        row.generateInsert().corrected,
        row.generateUpdate().corrected,
        row.generateReadBack().corrected,
        MSSQLRenameScript::column(table, name, name),
        MSSQLRenameScript::index(table, name, name),
        MSSQLRenameScript::constraint(table, name, name),
    };
}

/// The tokens of a statement without blanks; names in brackets and literals stand for themselves.
QStringList shape(const QString &statement)
{
    QStringList shape;
    for (const SQLToken &token : SQLMetadataTokenizer::tokenize(
             statement, {.nestedComments = true, .recognizesMSSQLVariables = true})) {
        if (token.kind == SQLTokenKind::BracketedIdentifier)
            shape.append(QStringLiteral("name"));
        else if (token.kind == SQLTokenKind::String)
            shape.append(QStringLiteral("literal"));
        else if (token.kind != SQLTokenKind::Whitespace)
            shape.append(token.text.toString());
    }
    return shape;
}

} // namespace

TEST(QuotedStatement, ReadsTheSameTokensWhateverTheNames)
{
    const QStringList plain = statementsOf(QStringLiteral("two words"));
    for (const QString &name : hostileNames()) {
        const QStringList statements = statementsOf(name);
        ASSERT_EQ(statements.size(), plain.size());
        for (qsizetype i = 0; i < plain.size(); ++i) {
            ASSERT_FALSE(statements[i].isEmpty()) << i;
            EXPECT_EQ(shape(statements[i]), shape(plain[i])) << statements[i].toStdString();
        }
    }
}

TEST(QuotedStatement, HasTheShapeOfItsPlainCounterpart)
{
    const QStringList statements = statementsOf(QStringLiteral("it's]"));
    EXPECT_EQ(statements[0],
              QStringLiteral("EXEC sp_rename N'[it''s]]].[it''s]]].[it''s]]]', N'it''s]', N'COLUMN'"));
    EXPECT_EQ(shape(statements[1]).join(QLatin1Char(' ')),
              QStringLiteral("ALTER TABLE name . name ALTER COLUMN name bigint NOT NULL"));
    EXPECT_EQ(shape(statements[8]).join(QLatin1Char(' ')), QStringLiteral("DROP INDEX name ON name . name"));
    EXPECT_EQ(shape(statements[14]).join(QLatin1Char(' ')),
              QStringLiteral("UPDATE TOP ( 1 ) name . name SET name = 2 WHERE name = 1"));
}

TEST(RenameScript, NamesAConstraintByTheSchemaOfItsTable)
{
    const MSSQLDesignedTable table{QStringLiteral("it's]"), QStringLiteral("Orders")};
    EXPECT_EQ(MSSQLRenameScript::constraint(table, QStringLiteral("PK.a"), QStringLiteral("o'clock")),
              QStringLiteral("EXEC sp_rename N'[it''s]]].[PK.a]', N'o''clock', N'OBJECT'"));
}

TEST(RenameScript, AcceptsNamesThatAServerTakes)
{
    const QString longest(128, QLatin1Char('x'));
    EXPECT_EQ(MSSQLRenameScript::acceptedName(QLatin1Char(' ') + longest + QLatin1Char(' ')), longest);
    EXPECT_EQ(MSSQLRenameScript::acceptedName(QStringLiteral("a]b c.d")), QStringLiteral("a]b c.d"));
    for (const QString &name : {QString(), QStringLiteral(" "), longest + QLatin1Char('x'),
                                QStringLiteral("a\nb"), QString(QChar(0)) + QLatin1Char('a')})
        EXPECT_TRUE(MSSQLRenameScript::acceptedName(name).isNull()) << name.toStdString();
}

} // namespace QuotedStatementTests
