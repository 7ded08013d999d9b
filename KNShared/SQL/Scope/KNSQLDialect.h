#pragma once

#include "SQL/Format/KNSQLFormatRules.h"
#include "SQL/KNSignature.h"
#include "SQL/SQLMetadataTokenizer.h"
#include "SQL/Snippets/KNSnippet.h"

#include <QFlags>
#include <QHash>
#include <QList>
#include <QSet>
#include <QStringList>

/// The part that a word plays in a statement. The words are the dialect's; None is a name.
enum class KNSQLRole : quint8 {
    None,
    Select,
    Insert,
    Update,
    Delete,
    Merge,
    With,
    Execute,
    Declare,
    Use,
    Create,
    Alter,
    Drop,
    Truncate,
    Grant,
    Set,
    Statement, ///< begins any other statement
    End,       ///< ends a block or a CASE
    Case,
    Else, ///< ELSE, and words that begin a block of statements
    From,
    Join,
    Apply,    ///< a join whose right side sees the left one
    JoinKind, ///< LEFT, CROSS and others before a join
    On,
    Where,
    Group,
    Having,
    Order,
    By,
    Into,
    Values,
    Output,
    Using,
    When,
    Then,
    As,
    SetOperator, ///< UNION and others
    Quantifier,  ///< ALL, DISTINCT
    Top,
    Pivot,
    For,
    In,
    Over,
    Partition,
    Option,
    Table,
    Module,     ///< PROCEDURE, FUNCTION, TRIGGER, VIEW: a kind whose definition holds statements
    ObjectKind, ///< other kinds of objects
    Cast,       ///< functions with a type behind AS
    TypeFirst,  ///< functions whose first argument is a type
    References,
    Column,     ///< COLUMN in ALTER TABLE
    Constraint, ///< begins a constraint or an option in a definition of columns
    Operator,   ///< AND, LIKE and others before an operand
    Value,      ///< NULL and others that are operands
    Batch,      ///< separates batches when it is alone on its line
};

/// The place in a statement.
enum class KNSQLClause : quint8 {
    Statement, ///< where a statement begins
    SelectList,
    From,
    On,
    Where,
    GroupBy,
    Having,
    OrderBy,
    Over,
    Set, ///< of UPDATE
    SetOption,
    InsertTarget,
    InsertColumns,
    Values,
    Output,
    UpdateTarget,
    DeleteTarget,
    MergeTarget,
    MergeWhen,
    With, ///< a list of common table expressions
    Execute,
    Arguments, ///< of EXECUTE
    Declare,
    Type,
    ColumnDefinition,
    Use,
    NewName,
    ObjectKind, ///< behind CREATE, ALTER, DROP
    TableTarget,
    ModuleTarget,
    ObjectTarget,
    AlterTable,
    Columns, ///< a list of columns of a table
    Hint,
    Option,
    Pivot,
    Join,         ///< behind LEFT, CROSS and others
    SetOperation, ///< behind UNION and others
    For,
    Expression, ///< of IF, PRINT, RETURN and others
    Cast,
};

/// The kinds of names that can stand at a place.
enum class KNSQLExpected : quint32 {
    Nothing = 0,
    Columns = 1,
    Sources = 2, ///< tables, views, table functions
    Procedures = 4,
    Types = 8,
    Databases = 16,
    Variables = 32,
    Functions = 64,
    Parameters = 128,
    Modules = 256, ///< procedures, functions and views
    Objects = 512,
    JoinConditions = 1024,
    Aliases = 2048, ///< of the statement's sources
};
Q_DECLARE_FLAGS(KNSQLExpectations, KNSQLExpected)
Q_DECLARE_OPERATORS_FOR_FLAGS(KNSQLExpectations)

/// The names and words that can stand in a clause.
struct KNSQLClauseRule
{
    KNSQLExpectations expected; ///< where an operand is expected
    QStringList beginWords;     ///< where an operand is expected
    QStringList followWords;    ///< behind an operand
};

/// Lines that a command puts around others.
struct KNSQLSurrounding
{
    QString title;  ///< of a menu item
    QString before; ///< lines without the last line end; a tab is a level of indentation
    QString behind;
};

/// The rules of a server's language for completion, formatting and commands of the editor.
struct KNSQLDialect
{
    QString name; ///< of the language, for names of files
    SQLTokenizerOptions tokenizer;
    QHash<QString, KNSQLRole> roles; ///< by word in upper case
    QSet<QString> nonReserved;       ///< words with a role that are names elsewhere, in upper case
    QHash<KNSQLClause, KNSQLClauseRule> clauses;
    QStringList functions;
    QHash<QString, KNSignature> signatures; ///< of functions, by name in upper case
    QStringList types;
    QStringList changedRows; ///< names of the sources that an output clause sees
    KNSQLFormatRules format;
    qsizetype longestName = 128; ///< in UTF-16 units
    QList<KNSQLSurrounding> surroundings;
    QList<KNSnippet> snippets; ///< that the user can replace
};
