#include "Support/PrintQt.h"

#include <QDir>
#include <QFile>
#include <QMap>
#include <QRegularExpression>
#include <QSet>

#include <gtest/gtest.h>

namespace {

/// A text of T-SQL taken apart: enough to tell code from strings, comments and quoted names, and to find what
/// is left open.
struct BackingQueryScan
{
    QString code;        ///< the text with strings and comments blanked; bracketed names stay
    QStringList strings; ///< contents of the strings, with doubled apostrophes made single
    QString problem;     ///< what does not balance, and in which line; empty when all does
};

class Scanner
{
public:
    explicit Scanner(const QString &text)
        : m_text(text)
    {
    }

    BackingQueryScan run()
    {
        while (m_position < m_text.size() && m_scan.problem.isEmpty())
            step();
        if (m_scan.problem.isEmpty() && m_depth > 0)
            fail(QStringLiteral("a parenthesis is left open"));
        return m_scan;
    }

private:
    QChar at(qsizetype offset) const
    {
        const qsizetype position = m_position + offset;
        return position < m_text.size() ? m_text.at(position) : QChar();
    }

    void step()
    {
        const QChar c = at(0);
        if (c == u'\'')
            takeString();
        else if (c == u'[')
            takeName();
        else if (c == u'-' && at(1) == u'-')
            takeLineComment();
        else if (c == u'/' && at(1) == u'*')
            takeBlockComment();
        else
            takeCode(c);
    }

    void takeCode(QChar c)
    {
        if (c == u'(')
            ++m_depth;
        else if (c == u')' && --m_depth < 0)
            fail(QStringLiteral("a parenthesis is closed that was not open"));
        else if (c == u']')
            fail(QStringLiteral("a bracket is closed that was not open"));
        else if (c == u'"')
            fail(QStringLiteral("a double quote stands in code"));
        m_scan.code += c;
        ++m_position;
    }

    void takeString()
    {
        QString content;
        ++m_position;
        while (m_position < m_text.size()) {
            if (at(0) == u'\'' && at(1) != u'\'') {
                ++m_position;
                m_scan.strings += content;
                m_scan.code += u' ';
                return;
            }
            m_position += at(0) == u'\'' ? 1 : 0;
            content += at(0);
            ++m_position;
        }
        fail(QStringLiteral("a string is left open"));
    }

    void takeName()
    {
        m_scan.code += at(0);
        ++m_position;
        while (m_position < m_text.size()) {
            const bool isDoubled = at(0) == u']' && at(1) == u']';
            const bool isEnd = at(0) == u']' && !isDoubled;
            m_scan.code += m_text.mid(m_position, isDoubled ? 2 : 1);
            m_position += isDoubled ? 2 : 1;
            if (isEnd)
                return;
        }
        fail(QStringLiteral("a bracket is left open"));
    }

    void takeLineComment()
    {
        while (m_position < m_text.size() && at(0) != u'\n')
            ++m_position;
    }

    void takeBlockComment()
    {
        int depth = 0;
        while (m_position < m_text.size()) {
            if (at(0) == u'/' && at(1) == u'*') {
                ++depth;
                m_position += 2;
            } else if (at(0) == u'*' && at(1) == u'/') {
                m_position += 2;
                if (--depth == 0)
                    return;
            } else {
                ++m_position;
            }
        }
        fail(QStringLiteral("a comment is left open"));
    }

    void fail(const QString &what)
    {
        const qsizetype line = m_text.left(m_position).count(u'\n') + 1;
        m_scan.problem = QStringLiteral("%1 in line %2").arg(what, QString::number(line));
    }

    QString m_text;
    qsizetype m_position = 0;
    int m_depth = 0;
    BackingQueryScan m_scan;
};

/// Takes a text apart. Knows '...' with '', [...] with ]], -- and nested /* */. A double quote in code is a
/// problem: what it means depends on a session option.
BackingQueryScan scanBackingQuery(const QString &text)
{
    return Scanner(text).run();
}

/// The titles that the connector asks for, each with the placeholders that its caller fills.
const QMap<QString, QStringList> &titles()
{
    static const QStringList schemaAndProcedure{QStringLiteral("{SCHEMA}"),
                                                QStringLiteral("{PROCEDURE_NAME}")};
    static const QStringList schemaAndTable{QStringLiteral("{TABLE_SCHEMA}"), QStringLiteral("{TABLE_NAME}")};
    static const QStringList ofTable{QStringLiteral("{SCHEMA}"), QStringLiteral("{TABLE}")};
    static const QStringList extraClause{QStringLiteral("{EXTRA_WHERE_CLAUSE}")};
    static const QStringList job{QStringLiteral("{SQLAGENT_JOB_ID}")};
    static const QStringList columnDefault{QStringLiteral("{TABLE_SCHEMA}"), QStringLiteral("{TABLE_NAME}"),
                                           QStringLiteral("{COLUMN_NAME}")};
    static const QMap<QString, QStringList> map{
        {QStringLiteral("General_ListDatabases"), {}},
        {QStringLiteral("General_FindDefaultUserSchema"), {}},
        {QStringLiteral("General_FindObject"), {QStringLiteral("{SCHEMA}"), QStringLiteral("{OBJECT}")}},
        {QStringLiteral("DatabaseTree_ServerVersion"), {}},
        {QStringLiteral("DatabaseTree_ListTables"), {}},
        {QStringLiteral("List_SearchableDatabaseEntries"), {}},
        {QStringLiteral("List_SearchableDatabaseEntries_Azure"), {}},
        {QStringLiteral("List_ViewsInDatabase_NonSystem"), {}},
        {QStringLiteral("List_IndexesForTable"), ofTable},
        {QStringLiteral("List_IndexesForView"), ofTable},
        {QStringLiteral("List_KeysForTable"), ofTable},
        {QStringLiteral("List_TriggersForTableWithDetails"), schemaAndTable},
        {QStringLiteral("ColumnsForTable"),
         {QStringLiteral("{TABLE_NAME}"), QStringLiteral("{SCHEMA_NAME}")}},
        {QStringLiteral("List_StoredProceduresInDatabase_NonSystem"), {}},
        {QStringLiteral("List_ParametersForStoredProcedure"), schemaAndProcedure},
        {QStringLiteral("List_FunctionsByTypeInDatabase_NonSystem"), extraClause},
        {QStringLiteral("List_UserTypesByTypeInDatabase_NonSystem"), extraClause},
        {QStringLiteral("List_AgentJobs"), {}},
        {QStringLiteral("List_Federations"), {}},
        {QStringLiteral("IsSQLServerAgentAvailable"), {}},
        {QStringLiteral("NewTable"), {}},
        {QStringLiteral("NewStoredProcedure"), {}},
        {QStringLiteral("NewFunction"), {}},
        {QStringLiteral("NewTrigger"), {}},
        {QStringLiteral("NewSQLAgentJob"), {}},
        {QStringLiteral("SQLServerAgentStartJob"), job},
        {QStringLiteral("SQLServerAgentStopJob"), job},
        {QStringLiteral("Script_ClearDatabase"), {}},
        {QStringLiteral("Script_SPWHO3"), {}},
        {QStringLiteral("Session_Options"), {}},
        {QStringLiteral("List_Sessions"), {}},
        {QStringLiteral("Script_TableSizes"), {}},
        {QStringLiteral("Script_ColumnsAndKeys"), {QStringLiteral("{SCHEMA}"), QStringLiteral("{OBJECT}")}},
        {QStringLiteral("Script_LongRunningQueries"), {}},
        {QStringLiteral("Script_ListConnections"), {}},
        {QStringLiteral("Table_CreationQuery"), schemaAndTable},
        {QStringLiteral("Function_AlterQuery"),
         {QStringLiteral("{SCHEMA}"), QStringLiteral("{FUNCTION_NAME}")}},
        {QStringLiteral("StoredProcedure_AlterQuery"), schemaAndProcedure},
        {QStringLiteral("StoredProcedure_ScriptCreateQuery"), schemaAndProcedure},
        {QStringLiteral("View_AlterQuery"), {QStringLiteral("{SCHEMA}"), QStringLiteral("{VIEW}")}},
        {QStringLiteral("INDEX_CREATION_QUERY"),
         {QStringLiteral("{INDEX_SRC}"), QStringLiteral("{INDEX_CLAUSE}")}},
        {QStringLiteral("UserDefinedDataType_CreationQuery"),
         {QStringLiteral("{TYPE}"), QStringLiteral("{SCHEMA}")}},
        {QStringLiteral("Table_DropPrimaryKey"), schemaAndTable},
        {QStringLiteral("Table_RemoveDefaultForColumn"), columnDefault},
        {QStringLiteral("Table_ReplaceDefaultForColumn"),
         columnDefault + QStringList{QStringLiteral("{NEW_DEFAULT}")}},
        {QStringLiteral("List_IndexesAndColumnsForTable"), schemaAndTable},
        {QStringLiteral("List_IndexDefinitionsForTable"), schemaAndTable},
        {QStringLiteral("List_ForeignKeysForTable"), schemaAndTable},
        {QStringLiteral("List_PrimaryKeysForTable"), ofTable},
        {QStringLiteral("List_TablesAndColumnsForImport"), {}},
        {QStringLiteral("List_EntriesForAutocomplete"), {}},
        {QStringLiteral("List_SystemEntriesForAutocomplete"), {}},
        {QStringLiteral("List_ObjectsForAutocomplete"), {}},
        {QStringLiteral("List_MembersForAutocomplete"), {}},
        {QStringLiteral("List_ForeignKeysForAutocomplete"), {}},
        {QStringLiteral("List_ExportableDatabaseEntries"), {}},
        {QStringLiteral("List_ObjectDependencies"), {}},
        {QStringLiteral("List_ForeignKeysForScripts"), {}},
        {QStringLiteral("List_ExtendedPropertyStatements"),
         {QStringLiteral("{SCHEMA}"), QStringLiteral("{OBJECT}")}},
        {QStringLiteral("List_PermissionStatements"), {}},
        {QStringLiteral("List_ViewTriggerStatements"),
         {QStringLiteral("{SCHEMA}"), QStringLiteral("{OBJECT}")}},
        {QStringLiteral("TableType_CreationQuery"), schemaAndTable},
        {QStringLiteral("List_DependentsOfTable"), ofTable},
        {QStringLiteral("List_TableRowCounts"), {}},
        {QStringLiteral("List_Schemas"), {}},
        {QStringLiteral("List_ServerPrincipals"), {}},
        {QStringLiteral("List_DatabasePrincipals"), {}},
        {QStringLiteral("Properties_Server"), {}},
        {QStringLiteral("Properties_Database"), {}},
        {QStringLiteral("Properties_Object"), {QStringLiteral("{SCHEMA}"), QStringLiteral("{OBJECT}")}},
        {QStringLiteral("Properties_Column"),
         {QStringLiteral("{SCHEMA}"), QStringLiteral("{OBJECT}"), QStringLiteral("{COLUMN}")}},
        {QStringLiteral("Properties_Index"),
         {QStringLiteral("{SCHEMA}"), QStringLiteral("{OBJECT}"), QStringLiteral("{INDEX}")}},
        {QStringLiteral("Properties_Parameter"),
         {QStringLiteral("{SCHEMA}"), QStringLiteral("{OBJECT}"), QStringLiteral("{PARAMETER}")}},
        {QStringLiteral("Properties_Type"), {QStringLiteral("{SCHEMA}"), QStringLiteral("{TYPE}")}},
    };
    return map;
}

/// Fragments of SQL; every other placeholder is a name or another value.
const QSet<QString> &fragmentPlaceholders()
{
    static const QSet<QString> set{QStringLiteral("{EXTRA_WHERE_CLAUSE}"), QStringLiteral("{INDEX_SRC}"),
                                   QStringLiteral("{INDEX_CLAUSE}")};
    return set;
}

const QString variantSuffix = QStringLiteral("_2000");

QString titleOf(const QString &name)
{
    return name.endsWith(variantSuffix) ? name.chopped(variantSuffix.size()) : name;
}

/// Name without suffix to text, of every file in the folder.
const QMap<QString, QString> &texts()
{
    static const QMap<QString, QString> map = [] {
        QMap<QString, QString> read;
        const QDir folder(QStringLiteral(BACKING_QUERIES_FOLDER));
        for (const QFileInfo &info : folder.entryInfoList({QStringLiteral("*.sql")}, QDir::Files)) {
            QFile file(info.filePath());
            EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << info.filePath().toStdString();
            read.insert(info.completeBaseName(), QString::fromUtf8(file.readAll()));
        }
        return read;
    }();
    return map;
}

QSet<QString> placeholdersIn(const QString &text)
{
    static const QRegularExpression pattern(QStringLiteral("\\{[^}]*\\}"));
    QSet<QString> found;
    for (auto matches = pattern.globalMatch(text); matches.hasNext();)
        found.insert(matches.next().captured());
    return found;
}

/// Every name of a text whose code (strings and comments aside) matches one of the patterns, with the
/// pattern.
QStringList offences(const QMap<QString, QString> &candidates, std::initializer_list<const char *> patterns)
{
    QStringList found;
    for (const char *text : patterns) {
        const QRegularExpression pattern(QString::fromLatin1(text),
                                         QRegularExpression::CaseInsensitiveOption);
        EXPECT_TRUE(pattern.isValid()) << text;
        for (auto entry = candidates.cbegin(); entry != candidates.cend(); ++entry) {
            if (pattern.match(scanBackingQuery(entry.value()).code).hasMatch())
                found += entry.key() + QStringLiteral(": ") + pattern.pattern();
        }
    }
    return found;
}

QMap<QString, QString> textsWhere(bool isVariant)
{
    QMap<QString, QString> chosen;
    for (auto entry = texts().cbegin(); entry != texts().cend(); ++entry) {
        if (entry.key().endsWith(variantSuffix) == isVariant)
            chosen.insert(entry.key(), entry.value());
    }
    return chosen;
}

} // namespace

TEST(BackingQueryScanner, SeparatesCodeFromStringsAndComments)
{
    const BackingQueryScan scan =
        scanBackingQuery(QStringLiteral("SELECT 'it''s (' -- not ( \n, [a]](] /* ( /* ' */ ) */ FROM t"));
    EXPECT_EQ(scan.problem, QString());
    EXPECT_EQ(scan.strings, QStringList{QStringLiteral("it's (")});
    EXPECT_EQ(scan.code, QStringLiteral("SELECT   \n, [a]](]  FROM t"));
}

TEST(BackingQueryScanner, DetectsUnbalancedBlocks)
{
    for (const char *text :
         {"SELECT (1", "SELECT 1)", "SELECT 'a", "SELECT [a", "SELECT a]", "/* a", "SELECT \"a\""})
        EXPECT_NE(scanBackingQuery(QString::fromLatin1(text)).problem, QString()) << text;
    EXPECT_EQ(scanBackingQuery(QStringLiteral("a\nb)")).problem,
              QStringLiteral("a parenthesis is closed that was not open in line 2"));
}

TEST(BackingQueryTexts, ExistForEveryTitle)
{
    for (const QString &title : titles().keys())
        EXPECT_FALSE(texts().value(title).trimmed().isEmpty()) << title.toStdString();
}

TEST(BackingQueryTexts, BelongToATitle)
{
    ASSERT_FALSE(texts().isEmpty());
    for (const QString &name : texts().keys())
        EXPECT_TRUE(titles().contains(titleOf(name))) << name.toStdString();
}

TEST(BackingQueryTexts, HoldThePlaceholdersThatTheirCallersFill)
{
    for (auto entry = titles().cbegin(); entry != titles().cend(); ++entry)
        EXPECT_EQ(placeholdersIn(texts().value(entry.key())), QSet<QString>(entry->cbegin(), entry->cend()))
            << entry.key().toStdString();
}

TEST(BackingQueryTexts, HoldNoOtherPlaceholdersInTheVariantsForSQLServer2000)
{
    for (auto entry = texts().cbegin(); entry != texts().cend(); ++entry) {
        if (!entry.key().endsWith(variantSuffix))
            continue;
        const QStringList filled = titles().value(titleOf(entry.key()));
        QSet<QString> allowed(filled.cbegin(), filled.cend());
        if (entry.key() == QStringLiteral("INDEX_CREATION_QUERY_2000"))
            allowed = {QStringLiteral("{VIEW_PATH}")};
        EXPECT_EQ(placeholdersIn(entry.value()), allowed) << entry.key().toStdString();
    }
}

TEST(BackingQueryTexts, TakeEveryValueInsideAUnicodeLiteralOfItsOwn)
{
    for (auto entry = texts().cbegin(); entry != texts().cend(); ++entry) {
        for (const QString &placeholder : placeholdersIn(entry.value()) - fragmentPlaceholders()) {
            const QString literal = QStringLiteral("N'") + placeholder + QStringLiteral("'");
            EXPECT_EQ(entry->count(placeholder), entry->count(literal))
                << entry.key().toStdString() << " " << placeholder.toStdString();
        }
    }
}

TEST(BackingQueryTexts, TakeEveryFragmentAsCode)
{
    for (auto entry = texts().cbegin(); entry != texts().cend(); ++entry) {
        for (const QString &placeholder : placeholdersIn(entry.value()) & fragmentPlaceholders())
            EXPECT_EQ(entry->count(placeholder), scanBackingQuery(entry.value()).code.count(placeholder))
                << entry.key().toStdString() << " " << placeholder.toStdString();
    }
}

TEST(BackingQueryTexts, HaveBalancedBlocks)
{
    for (auto entry = texts().cbegin(); entry != texts().cend(); ++entry)
        EXPECT_EQ(scanBackingQuery(entry.value()).problem, QString()) << entry.key().toStdString();
}

TEST(BackingQueryTexts, HaveBalancedBlocksInDynamicSQL)
{
    static const QRegularExpression wholeStatement(QStringLiteral("^\\s*SELECT\\b.*\\bFROM\\s+\\w"),
                                                   QRegularExpression::DotMatchesEverythingOption);
    int statements = 0;
    for (auto entry = texts().cbegin(); entry != texts().cend(); ++entry) {
        for (const QString &string : scanBackingQuery(entry.value()).strings) {
            if (!wholeStatement.match(string).hasMatch())
                continue;
            ++statements;
            EXPECT_EQ(scanBackingQuery(string).problem, QString()) << entry.key().toStdString();
        }
    }
    EXPECT_GT(statements, 5);
}

TEST(BackingQueryTexts, UseNothingNewerThanSQLServer2000InItsVariants)
{
    EXPECT_EQ(
        offences(textsWhere(true),
                 {"\\bsys\\.", "\\bINFORMATION_SCHEMA\\.", "\\bWITH\\s+\\w+\\s*(\\([^)]*\\))?\\s*AS\\s*\\(",
                  "\\(\\s*max\\s*\\)", "\\bFOR\\s+XML\\b", "\\bTRY\\b", "\\bCATCH\\b", "\\bOVER\\s*\\(",
                  "\\bAPPLY\\b", "\\bTOP\\s*\\(", "\\bSCHEMA_(NAME|ID)\\s*\\(", "\\bOBJECT_SCHEMA_NAME\\b",
                  "\\bOBJECT_DEFINITION\\b", "\\bHAS_PERMS_BY_NAME\\b", "\\bTYPE_NAME\\s*\\(",
                  "\\b(EXCEPT|INTERSECT|PIVOT|SYNONYM)\\b", "\\bOBJECT_ID\\s*\\([^()]*(\\([^()]*\\)[^()]*)*,",
                  "\\bxml\\b"}),
        QStringList());
}

TEST(BackingQueryTexts, UseNothingNewerThanSQLServer2005OutsideOfDynamicSQL)
{
    EXPECT_EQ(
        offences(
            texts(),
            {"\\b(STRING_AGG|STRING_SPLIT|CONCAT|CONCAT_WS|IIF|CHOOSE|TRIM|TRANSLATE|GREATEST|LEAST)\\s*\\(",
             "\\b(TRY_CONVERT|TRY_CAST|TRY_PARSE|PARSE|FORMAT|EOMONTH|DATEFROMPARTS)\\s*\\(",
             "\\b(SYSDATETIME|SYSUTCDATETIME|SYSDATETIMEOFFSET|SESSION_CONTEXT)\\s*\\(",
             "\\b(LAG|LEAD|FIRST_VALUE|LAST_VALUE|PERCENT_RANK)\\s*\\(",
             "\\b(THROW|MERGE|OFFSET|FETCH|CURSOR|PIVOT)\\b",
             "\\b(DROP|CREATE)\\s+\\w+\\s+IF\\s+EXISTS\\b",
             "\\bCREATE\\s+OR\\s+ALTER\\b",
             "\\bsys\\.(sequences|federations|federation_distributions|periods|masked_columns)\\b",
             "\\bsys\\.(hash_indexes|column_store_\\w+|external_\\w+|security_policies|table_types)\\b",
             "\\bsys\\.(spatial_\\w+|sensitivity_\\w+|database_scoped_\\w+|query_store_\\w+)\\b",
             "\\bsys\\.dm_exec_(describe|input_buffer|procedure_stats|trigger_stats|function_stats)\\w*\\b",
             "\\bsys\\.dm_db_(?!partition_stats\\b)\\w+\\b",
             "\\.(filter_definition|has_filter|is_sparse|is_column_set|is_filestream|data_compression\\w*)"
             "\\b",
             "\\.(temporal_type|history_table_id|is_memory_optimized|durability|lock_escalation)\\b",
             "\\.(generated_always_type|is_hidden|masking_function|encryption_type)\\b",
             "\\bt\\.is_table_type\\b",
             "\\bDECLARE\\s+@\\w+\\s+\\w+(\\([^)]*\\))?\\s*=",
             "[-+*/]=",
             "\\bVALUES\\s*\\([^()]*(\\([^()]*\\)[^()]*)*\\)\\s*,",
             "\\b(datetime2|datetimeoffset|hierarchyid|geography|geometry)\\b",
             "\\bAT\\s+TIME\\s+ZONE\\b"}),
        QStringList());
}

// A column with another collation than the database's cannot be joined to one that has the database's.
TEST(BackingQueryTexts, GiveColumnsOfDerivedTablesNoCollationOfTheirOwn)
{
    QMap<QString, QString> plain = texts();
    plain.remove(QStringLiteral("DatabaseTree_ServerVersion")); // its only column of a text
    EXPECT_EQ(offences(plain, {"\\bCOLLATE\\s+(?!DATABASE_DEFAULT\\b)\\w+\\s+AS\\b"}), QStringList());
}

// Catalogs have a collation of their own in Azure SQL Database and in contained databases.
TEST(BackingQueryTexts, JoinNamesOfPermissionsInTheCollationOfTheDatabase)
{
    static const QRegularExpression name(QStringLiteral("^ +(c\\.name|g\\.name|\\(?N'\\w+::')(?!.*COLLATE)"),
                                         QRegularExpression::MultilineOption);
    EXPECT_FALSE(name.match(texts().value(QStringLiteral("List_PermissionStatements"))).hasMatch());
}

TEST(BackingQueryTexts, NameOtherDatabasesOnlyWhereThereIsNoAzure)
{
    QMap<QString, QString> plain = textsWhere(false);
    for (const char *title :
         {"List_AgentJobs", "SQLServerAgentStartJob", "SQLServerAgentStopJob", "NewSQLAgentJob"})
        plain.remove(QString::fromLatin1(title));
    EXPECT_EQ(offences(plain, {"\\b(master|msdb|model|tempdb)\\.", "\\bUSE\\s+\\w"}), QStringList());
}

TEST(BackingQueryTexts, HaveNoVariantOfTheVersionQuery)
{
    EXPECT_FALSE(texts().contains(QStringLiteral("DatabaseTree_ServerVersion_2000")))
        << "choosing it would need the version that it asks for";
}

TEST(BackingQueryTexts, SeparateBatchesInTemplatesOnly)
{
    static const QRegularExpression separator(QStringLiteral("^GO$"), QRegularExpression::MultilineOption);
    for (auto entry = texts().cbegin(); entry != texts().cend(); ++entry)
        EXPECT_TRUE(entry.key().startsWith(QStringLiteral("New")) ||
                    !separator.match(entry.value()).hasMatch())
            << entry.key().toStdString();
}

TEST(BackingQueryTexts, RestoreNocount)
{
    for (auto entry = texts().cbegin(); entry != texts().cend(); ++entry) {
        if (entry.key().startsWith(QStringLiteral("New")))
            continue;
        const QString code = scanBackingQuery(entry.value()).code;
        EXPECT_EQ(code.count(QStringLiteral("SET NOCOUNT ON")), code.count(QStringLiteral("SET NOCOUNT OFF")))
            << entry.key().toStdString();
    }
}

TEST(BackingQueryTexts, AreAsciiInLinesThatAnEditorShows)
{
    for (auto entry = texts().cbegin(); entry != texts().cend(); ++entry) {
        const QString name = entry.key();
        EXPECT_TRUE(entry->endsWith(u'\n')) << name.toStdString();
        EXPECT_FALSE(entry->contains(u'\r')) << name.toStdString() << ": the build adds CR";
        for (const QChar c : entry.value())
            ASSERT_LT(c.unicode(), 0x7f) << name.toStdString();
        for (const QString &line : entry->split(u'\n')) {
            EXPECT_LE(line.size(), 120) << name.toStdString() << ": " << line.toStdString();
            EXPECT_FALSE(line.endsWith(u' ')) << name.toStdString() << ": " << line.toStdString();
        }
    }
}
