#include "Autocomplete/MSSQLDialect.h"

#include "Autocomplete/MSSQLFormatRules.h"
#include "Autocomplete/MSSQLFunctionSignatures.h"
#include "Autocomplete/MSSQLSnippets.h"
#include "Implementations/MSSQLTokenizer.h"
#include "Implementations/MSSQLWordLists.h"

#include <algorithm>
#include <functional>

namespace {

using Role = KNSQLRole;
using Clause = KNSQLClause;
using Expected = KNSQLExpected;

struct RoleWords
{
    Role role;
    const char *words;
};

constexpr RoleWords Roles[] = {
    {Role::Select, "SELECT"},
    {Role::Insert, "INSERT"},
    {Role::Update, "UPDATE"},
    {Role::Delete, "DELETE"},
    {Role::Merge, "MERGE"},
    {Role::With, "WITH"},
    {Role::Execute, "EXEC EXECUTE"},
    {Role::Declare, "DECLARE"},
    {Role::Use, "USE"},
    {Role::Create, "CREATE"},
    {Role::Alter, "ALTER"},
    {Role::Drop, "DROP"},
    {Role::Truncate, "TRUNCATE"},
    {Role::Grant, "GRANT DENY REVOKE"},
    {Role::Set, "SET"},
    {Role::Statement, "IF WHILE PRINT RETURN RAISERROR COMMIT ROLLBACK SAVE GOTO BREAK CONTINUE WAITFOR DBCC "
                      "BACKUP RESTORE KILL OPEN CLOSE FETCH DEALLOCATE RECONFIGURE CHECKPOINT SHUTDOWN"},
    {Role::End, "END"},
    {Role::Case, "CASE"},
    {Role::Else, "ELSE BEGIN"},
    {Role::From, "FROM"},
    {Role::Join, "JOIN"},
    {Role::Apply, "APPLY"},
    {Role::JoinKind, "INNER LEFT RIGHT FULL CROSS OUTER"},
    {Role::On, "ON"},
    {Role::Where, "WHERE"},
    {Role::Group, "GROUP"},
    {Role::Having, "HAVING"},
    {Role::Order, "ORDER"},
    {Role::By, "BY"},
    {Role::Into, "INTO"},
    {Role::Values, "VALUES"},
    {Role::Output, "OUTPUT"},
    {Role::Using, "USING"},
    {Role::When, "WHEN"},
    {Role::Then, "THEN"},
    {Role::As, "AS"},
    {Role::SetOperator, "UNION EXCEPT INTERSECT"},
    {Role::Quantifier, "ALL DISTINCT"},
    {Role::Top, "TOP"},
    {Role::Pivot, "PIVOT UNPIVOT"},
    {Role::For, "FOR"},
    {Role::In, "IN"},
    {Role::Over, "OVER"},
    {Role::Partition, "PARTITION"},
    {Role::Option, "OPTION"},
    {Role::Table, "TABLE"},
    {Role::Module, "PROCEDURE PROC FUNCTION TRIGGER VIEW"},
    {Role::ObjectKind, "INDEX SCHEMA TYPE SEQUENCE SYNONYM DATABASE LOGIN USER ROLE STATISTICS"},
    {Role::Cast, "CAST TRY_CAST PARSE TRY_PARSE"},
    {Role::TypeFirst, "CONVERT TRY_CONVERT"},
    {Role::References, "REFERENCES"},
    {Role::Column, "COLUMN"},
    {Role::Constraint, "CONSTRAINT PRIMARY FOREIGN UNIQUE CHECK KEY IDENTITY COLLATE"},
    {Role::Operator, "AND OR NOT LIKE BETWEEN IS EXISTS ANY SOME ESCAPE PERCENT"},
    {Role::Value, "NULL DEFAULT CURRENT_TIMESTAMP CURRENT_USER SESSION_USER SYSTEM_USER ASC DESC"},
    {Role::Batch, "GO"},
};

/// Words with a role that T-SQL does not reserve.
constexpr const char *NonReserved =
    "APPLY, OUTPUT, USING, PARTITION, TYPE, SEQUENCE, SYNONYM, LOGIN, ROLE, PARSE, TRY_PARSE";

constexpr const char *Statements =
    "SELECT, INSERT INTO, UPDATE, DELETE FROM, MERGE, EXEC, DECLARE, SET, IF, WHILE, BEGIN, END, ELSE, WITH, "
    "USE, "
    "CREATE, ALTER, DROP, TRUNCATE TABLE, PRINT, RETURN, RAISERROR, THROW, BEGIN TRY, BEGIN CATCH, "
    "BEGIN TRANSACTION, COMMIT, ROLLBACK, GRANT, DENY, REVOKE, WAITFOR, DBCC, BACKUP, RESTORE, GO";
constexpr const char *Operands = "CASE, NOT, EXISTS, NULL, CAST, CONVERT";
constexpr const char *Operators =
    "AND, OR, IN, LIKE, BETWEEN, IS NULL, IS NOT NULL, NOT IN, NOT LIKE, NOT BETWEEN, COLLATE";
constexpr const char *BehindSources = "AS, JOIN, INNER JOIN, LEFT JOIN, RIGHT JOIN, FULL JOIN, CROSS JOIN, "
                                      "CROSS APPLY, OUTER APPLY, ON, WHERE, "
                                      "GROUP BY, HAVING, ORDER BY, WITH, PIVOT, UNPIVOT, UNION, UNION ALL, "
                                      "EXCEPT, INTERSECT, FOR XML, FOR JSON, OPTION";
constexpr const char *Hints = "NOLOCK, UPDLOCK, HOLDLOCK, ROWLOCK, PAGLOCK, TABLOCK, TABLOCKX, XLOCK, "
                              "READPAST, READUNCOMMITTED, READCOMMITTED, "
                              "REPEATABLEREAD, SERIALIZABLE, SNAPSHOT, NOEXPAND, NOWAIT, FORCESEEK, "
                              "FORCESCAN, INDEX, KEEPIDENTITY, KEEPDEFAULTS";

struct ClauseWords
{
    Clause clause;
    KNSQLExpectations expected;
    const char *begin;
    QList<const char *> follow;
};

constexpr KNSQLExpectations Expression =
    KNSQLExpectations(Expected::Columns) | Expected::Variables | Expected::Functions;
constexpr KNSQLExpectations Scalar = KNSQLExpectations(Expected::Variables) | Expected::Functions;

const QList<ClauseWords> &clauseWords()
{
    static const QList<ClauseWords> words = {
        {Clause::Statement, Expected::Nothing, Statements, {Statements, "TRY, CATCH, TRANSACTION"}},
        {Clause::SelectList,
         Expression,
         "DISTINCT, TOP, ALL, CASE, NULL, CAST, CONVERT, NEXT VALUE FOR",
         {"AS, FROM, INTO, WHERE, ORDER BY, UNION, UNION ALL, EXCEPT, INTERSECT, OVER, COLLATE, WHEN, THEN, "
          "ELSE, END",
          Statements}},
        {Clause::From,
         Expected::Sources,
         "OPENROWSET, OPENQUERY, OPENJSON, OPENXML",
         {BehindSources, Statements}},
        {Clause::On, Expression | Expected::JoinConditions, Operands, {Operators, BehindSources, Statements}},
        {Clause::Where,
         Expression,
         Operands,
         {Operators,
          "GROUP BY, HAVING, ORDER BY, UNION, UNION ALL, EXCEPT, INTERSECT, FOR XML, FOR JSON, OPTION",
          "WHEN, THEN, ELSE, END, ESCAPE", Statements}},
        {Clause::GroupBy,
         Expression,
         "ROLLUP, CUBE, GROUPING SETS",
         {"HAVING, ORDER BY, WITH ROLLUP, WITH CUBE, UNION, UNION ALL, EXCEPT, INTERSECT, OPTION",
          Statements}},
        {Clause::Having,
         Expression,
         Operands,
         {Operators, "ORDER BY, UNION, UNION ALL, EXCEPT, INTERSECT, OPTION", Statements}},
        {Clause::OrderBy,
         Expression,
         "CASE",
         {"ASC, DESC, OFFSET, FETCH NEXT, COLLATE, FOR XML, FOR JSON, OPTION, ROWS, ROWS ONLY", Statements}},
        {Clause::Over,
         Expression,
         "PARTITION BY, ORDER BY",
         {"PARTITION BY, ORDER BY, ASC, DESC, ROWS BETWEEN, RANGE BETWEEN, UNBOUNDED PRECEDING, CURRENT ROW, "
          "UNBOUNDED FOLLOWING, AND"}},
        {Clause::Set,
         Expression,
         "CASE, NULL, DEFAULT",
         {"FROM, WHERE, OUTPUT, OPTION, WHEN, THEN, ELSE, END", Statements}},
        {Clause::SetOption,
         Expected::Variables,
         "NOCOUNT, XACT_ABORT, ANSI_NULLS, ANSI_PADDING, ANSI_WARNINGS, ARITHABORT, CONCAT_NULL_YIELDS_NULL, "
         "DATEFIRST, "
         "DATEFORMAT, DEADLOCK_PRIORITY, FMTONLY, IDENTITY_INSERT, IMPLICIT_TRANSACTIONS, LANGUAGE, "
         "LOCK_TIMEOUT, NOEXEC, "
         "NUMERIC_ROUNDABORT, PARSEONLY, QUERY_GOVERNOR_COST_LIMIT, QUOTED_IDENTIFIER, ROWCOUNT, "
         "SHOWPLAN_ALL, "
         "SHOWPLAN_TEXT, SHOWPLAN_XML, STATISTICS IO, STATISTICS PROFILE, STATISTICS TIME, STATISTICS XML, "
         "TEXTSIZE, "
         "TRANSACTION ISOLATION LEVEL",
         {"ON, OFF", Statements}},
        {Clause::InsertTarget,
         Expected::Sources,
         "INTO, TOP",
         {"VALUES, SELECT, EXEC, DEFAULT VALUES, OUTPUT, WITH"}},
        {Clause::InsertColumns, Expected::Columns, "", {}},
        {Clause::Values, Scalar, "DEFAULT, NULL, CASE, CAST, CONVERT, NEXT VALUE FOR", {Statements}},
        {Clause::Output, Expression, "", {"AS, INTO, VALUES, SELECT, FROM, WHERE, OPTION", Statements}},
        {Clause::UpdateTarget,
         KNSQLExpectations(Expected::Sources) | Expected::Aliases,
         "TOP, STATISTICS",
         {"SET, WITH"}},
        {Clause::DeleteTarget,
         KNSQLExpectations(Expected::Sources) | Expected::Aliases,
         "FROM, TOP",
         {"FROM, WHERE, OUTPUT, WITH, OPTION", Statements}},
        {Clause::MergeTarget, Expected::Sources, "INTO, TOP", {"AS, USING, WITH"}},
        {Clause::MergeWhen,
         Expression,
         "MATCHED, NOT MATCHED, INSERT, UPDATE SET, DELETE",
         {"MATCHED, THEN, AND, OR, BY TARGET, BY SOURCE, WHEN, OUTPUT, OPTION, SET", Statements}},
        {Clause::With, Expected::Nothing, "", {"AS, SELECT, INSERT INTO, UPDATE, DELETE FROM, MERGE"}},
        {Clause::Execute, KNSQLExpectations(Expected::Procedures) | Expected::Variables, "AS", {}},
        {Clause::Arguments,
         KNSQLExpectations(Expected::Parameters) | Expected::Variables,
         "DEFAULT, NULL",
         {"OUTPUT, WITH RECOMPILE, WITH RESULT SETS", Statements}},
        {Clause::Declare, Expected::Nothing, "", {Statements}},
        {Clause::Type,
         Expected::Types,
         "TABLE, CURSOR",
         {"NOT NULL, NULL, OUTPUT, READONLY, AS", Statements}},
        {Clause::ColumnDefinition,
         Expected::Types,
         "",
         {"NOT NULL, NULL, PRIMARY KEY, IDENTITY, DEFAULT, UNIQUE, CHECK, REFERENCES, CONSTRAINT, COLLATE, "
          "SPARSE, "
          "CLUSTERED, NONCLUSTERED, ON DELETE CASCADE, ON UPDATE CASCADE"}},
        {Clause::Use, Expected::Databases, "", {Statements}},
        {Clause::NewName,
         Expected::Nothing,
         "",
         {"AS, FROM, ON, WITH, RETURNS, FOR, START WITH, AUTHORIZATION"}},
        {Clause::ObjectKind,
         Expected::Nothing,
         "TABLE, VIEW, PROCEDURE, FUNCTION, TRIGGER, INDEX, UNIQUE INDEX, CLUSTERED INDEX, NONCLUSTERED "
         "INDEX, SCHEMA, "
         "TYPE, SEQUENCE, SYNONYM, DATABASE, LOGIN, USER, ROLE, STATISTICS, OR ALTER, COLUMNSTORE INDEX",
         {}},
        {Clause::TableTarget,
         Expected::Sources,
         "IF EXISTS",
         {"ADD, ALTER COLUMN, DROP COLUMN, DROP CONSTRAINT, CHECK CONSTRAINT, NOCHECK CONSTRAINT, REBUILD, "
          "SWITCH, WITH, "
          "WHERE, INCLUDE, AFTER, INSTEAD OF, FOR, ON DELETE CASCADE, ON UPDATE CASCADE, VALUES, SELECT",
          Statements}},
        {Clause::ModuleTarget, Expected::Modules, "IF EXISTS", {"AS, WITH, RETURNS, ON, AFTER", Statements}},
        {Clause::ObjectTarget, Expected::Objects, "IF EXISTS", {"TO, ON, SET, WITH, FROM", Statements}},
        {Clause::AlterTable,
         Expected::Nothing,
         "",
         {"ADD, ALTER COLUMN, DROP COLUMN, DROP CONSTRAINT, CHECK CONSTRAINT, NOCHECK CONSTRAINT, REBUILD, "
          "SWITCH, "
          "ENABLE TRIGGER, DISABLE TRIGGER, WITH",
          Statements}},
        {Clause::Columns, Expected::Columns, "", {"ASC, DESC, NOT NULL, NULL"}},
        {Clause::Hint, Expected::Nothing, Hints, {Hints}},
        {Clause::Option,
         Expected::Nothing,
         "RECOMPILE, MAXDOP, MAXRECURSION, OPTIMIZE FOR, HASH JOIN, LOOP JOIN, MERGE JOIN, FAST, FORCE "
         "ORDER, KEEP PLAN, "
         "KEEPFIXED PLAN, HASH GROUP, ORDER GROUP, CONCAT UNION, HASH UNION, MERGE UNION, USE HINT, ROBUST "
         "PLAN, EXPAND VIEWS",
         {}},
        {Clause::Pivot, Expression, "", {"FOR, IN"}},
        {Clause::Join, Expected::Nothing, "JOIN, OUTER JOIN, APPLY", {}},
        {Clause::SetOperation, Expected::Nothing, "SELECT, ALL", {}},
        {Clause::For,
         Expected::Nothing,
         "XML, JSON, BROWSE",
         {"AUTO, PATH, RAW, EXPLICIT, ROOT, ELEMENTS, TYPE"}},
        {Clause::Expression, Scalar, Operands, {Operators, Statements}},
        {Clause::Cast, Expression, Operands, {"AS"}},
    };
    return words;
}

/// TRY and CATCH are known since SQL Server 2005. The handler reports the error, so that none is lost.
QList<KNSQLSurrounding> surroundings()
{
    return {{QStringLiteral("&BEGIN … END"), QStringLiteral("BEGIN"), QStringLiteral("END")},
            {QStringLiteral("&TRY … CATCH"), QStringLiteral("BEGIN TRY"),
             QStringLiteral("END TRY\nBEGIN CATCH\n\tPRINT ERROR_MESSAGE();\nEND CATCH")}};
}

QStringList listOf(const char *words)
{
    return QString::fromLatin1(words).split(QStringLiteral(", "), Qt::SkipEmptyParts);
}

/// The types with those at the end that the documentation advises against.
QStringList typesByUse()
{
    QStringList types = MSSQLWordLists::dataTypes();
    const auto isObsolete = [](const QString &type) {
        static const QStringList obsolete = listOf("image, ntext, text, timestamp");
        return obsolete.contains(type, Qt::CaseInsensitive);
    };
    std::stable_partition(types.begin(), types.end(), std::not_fn(isObsolete));
    return types;
}

KNSQLDialect create()
{
    KNSQLDialect dialect;
    dialect.tokenizer = MSSQLTokenizer::options();
    for (const RoleWords &entry : Roles) {
        const QStringList words = QString::fromLatin1(entry.words).split(u' ');
        for (const QString &word : words)
            dialect.roles.insert(word, entry.role);
    }
    const QStringList names = listOf(NonReserved);
    dialect.nonReserved = QSet<QString>(names.begin(), names.end());
    for (const ClauseWords &entry : clauseWords()) {
        KNSQLClauseRule rule{entry.expected, listOf(entry.begin), {}};
        for (const char *const words : entry.follow)
            rule.followWords += listOf(words);
        rule.followWords.removeDuplicates();
        dialect.clauses.insert(entry.clause, rule);
    }
    dialect.functions = MSSQLWordLists::functions();
    dialect.signatures = MSSQLFunctionSignatures::read();
    dialect.types = typesByUse();
    dialect.changedRows = QStringList{QStringLiteral("inserted"), QStringLiteral("deleted")};
    dialect.name = QStringLiteral("tsql");
    dialect.snippets = MSSQLSnippets::read();
    dialect.surroundings = surroundings();
    dialect.format = MSSQLFormatRules::create();
    return dialect;
}

} // namespace

const KNSQLDialect &MSSQLDialect::shared()
{
    static const KNSQLDialect *const dialect = new KNSQLDialect(create());
    return *dialect;
}
