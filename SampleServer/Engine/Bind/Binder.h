#pragma once

#include "Engine/Bind/Bound.h"
#include "Engine/Bind/NameResolver.h"
#include "Engine/Run/Variables.h"

#include <map>
#include <set>

namespace SampleServer {

/// A column that names can resolve to.
struct ScopeColumn
{
    ColumnInfo info;
    std::string source;            ///< SQLite's alias of the source
    std::string column;            ///< SQLite's name of the column
    Bound::ExpressionPtr computed; ///< of a computed column; null for a stored one
};

/// A table of a FROM clause during name resolution.
struct ScopeSource
{
    std::string name;             ///< alias or table name
    std::string schema, database; ///< empty if an alias hides them
    std::vector<ScopeColumn> columns;
    std::shared_ptr<const Table> table; ///< null if it is not a base table
};

/// The columns of a scope after GROUP BY.
struct Grouping
{
    std::string alias;
    std::vector<Bound::ExpressionPtr> keys;
    std::vector<Bound::Aggregate> aggregates;
};

/// The tables visible to names in a query, including those of outer queries.
struct Scope
{
    std::vector<ScopeSource> sources;
    Scope *outer = nullptr;
    Grouping *grouping = nullptr;   ///< set while expressions after GROUP BY are bound
    bool allowsWindows = false;     ///< set while the select list and ORDER BY are bound
    bool inWindow = false;          ///< set while a windowed function is bound
    std::int32_t notGrouped = 8120; ///< the error for ungrouped columns, of the clause being bound
};

/// The common tables visible to names in a query, including those of outer queries.
struct CommonTableScope
{
    const std::vector<Ast::CommonTable> &tables;
    std::size_t visible = 0; ///< the number of visible common tables, from the first
    const CommonTableScope *outer = nullptr;
    /// Inside a recursive common table, the one after the visible ones: its columns and SQLite's name.
    const std::vector<ColumnInfo> *ownColumns = nullptr;
    std::string ownName = {};
};

/// Resolves names and types of a statement just before it runs. Session variables and functions are replaced
/// with their current values, so an expression of constants becomes one constant. Throws EngineError.
class Binder
{
public:
    Binder(EvaluationContext &context, NameResolver &tables, const Variables &variables);

    /// Binds a value; only the columns of enterScope() are visible.
    Bound::ExpressionPtr bindValue(const Ast::Expression &expression);
    /// Binds a value and converts it to a type as an assignment does.
    Bound::ExpressionPtr bindValueAs(const Ast::Expression &expression, const SqlType &type);
    Bound::ExpressionPtr bindCondition(const Ast::Expression &expression);
    Bound::QueryPtr bindSelect(const Ast::Select &select);
    /// Makes the common tables of UPDATE and DELETE visible as long as the binder exists.
    void useCommonTables(const std::vector<Ast::CommonTable> &tables);
    /// Reads variables while the query runs, so that changes are visible: SELECT @x = @x + column.
    void useLiveVariables() { m_liveVariables = true; }

    /// Returns the columns of a view or inline function.
    std::vector<ColumnInfo> describeModule(const Module &module);

    /// Binds the tables of a FROM clause into `scope`.
    std::vector<Bound::SourcePtr> bindFrom(const std::vector<Ast::TableSourcePtr> &from, Scope &scope);
    /// Binds one table under its name or an alias, as UPDATE and DELETE name their target.
    Bound::SourcePtr bindTarget(const Bound::TableScan &scan, const std::string &name, Scope &scope);
    void enterScope(Scope &scope);
    void leaveScope();

    // Helpers to build bound expressions

    static Bound::ExpressionPtr constant(SqlType type, Value value, bool isLiteral = false);
    static Bound::ExpressionPtr null(const SqlType &type) { return constant(type, Value()); }
    /// Converts the expression to a type; throws 206, 257 or 529 if T-SQL has no such conversion.
    Bound::ExpressionPtr converted(const Bound::ExpressionPtr &expression, const SqlType &type,
                                   bool explicitly = false, int style = 0);
    Bound::ExpressionPtr call(Bound::Operation operation, std::vector<Bound::ExpressionPtr> arguments);
    /// Converts all expressions to one type; the types of NULL literals are ignored.
    SqlType unify(std::vector<Bound::ExpressionPtr> &expressions);

    EvaluationContext &context() { return m_context; }

private:
    // Expressions, one function per node of the syntax tree
    Bound::ExpressionPtr bind(const Ast::Expression &expression);
    Bound::ExpressionPtr bindNode(const Ast::Literal &node);
    Bound::ExpressionPtr bindNode(const Ast::ColumnReference &node);
    Bound::ExpressionPtr bindNode(const Ast::VariableReference &node);
    Bound::ExpressionPtr bindNode(const Ast::GlobalVariableReference &node);
    Bound::ExpressionPtr bindNode(const Ast::Unary &node);
    Bound::ExpressionPtr bindNode(const Ast::Arithmetic &node);
    Bound::ExpressionPtr bindNode(const Ast::Bitwise &node);
    Bound::ExpressionPtr bindNode(const Ast::Comparison &node);
    Bound::ExpressionPtr bindNode(const Ast::QuantifiedComparison &node);
    Bound::ExpressionPtr bindNode(const Ast::Logical &node);
    Bound::ExpressionPtr bindNode(const Ast::Not &node);
    Bound::ExpressionPtr bindNode(const Ast::IsNull &node);
    Bound::ExpressionPtr bindNode(const Ast::Between &node);
    Bound::ExpressionPtr bindNode(const Ast::InList &node);
    Bound::ExpressionPtr bindNode(const Ast::InQuery &node);
    Bound::ExpressionPtr bindNode(const Ast::Like &node);
    Bound::ExpressionPtr bindNode(const Ast::Exists &node);
    Bound::ExpressionPtr bindNode(const Ast::ScalarQuery &node);
    Bound::ExpressionPtr bindNode(const Ast::Case &node);
    Bound::ExpressionPtr bindNode(const Ast::Cast &node);
    Bound::ExpressionPtr bindNode(const Ast::FunctionCall &node);
    Bound::ExpressionPtr bindNode(const Ast::MethodCall &node);

    Bound::ExpressionPtr compare(Ast::ComparisonOperator op, Bound::ExpressionPtr left,
                                 Bound::ExpressionPtr right);
    Bound::ExpressionPtr arithmetic(ArithmeticOperator op, Bound::ExpressionPtr left,
                                    Bound::ExpressionPtr right);
    Bound::ExpressionPtr dateArithmetic(ArithmeticOperator op, const Bound::ExpressionPtr &left,
                                        const Bound::ExpressionPtr &right);
    Bound::ExpressionPtr concatenation(const Bound::ExpressionPtr &left, const Bound::ExpressionPtr &right);
    Bound::ExpressionPtr negated(Bound::ExpressionPtr condition, bool negate);
    Bound::ExpressionPtr logical(bool isAnd, Bound::ExpressionPtr left, Bound::ExpressionPtr right);

    // Names
    struct Found
    {
        const ScopeColumn *column = nullptr;
        Scope *scope = nullptr;
    };
    Found findColumn(const Ast::ObjectName &name);
    const ScopeColumn *findIn(const Scope &scope, const Ast::ObjectName &name) const;
    Bound::ExpressionPtr columnExpression(const ScopeColumn &column) const;
    Bound::ExpressionPtr groupKey(Grouping &grouping, const Bound::ExpressionPtr &expression) const;
    std::string newAlias() { return "s" + std::to_string(++m_aliases); }

    // Functions
    Bound::ExpressionPtr aggregate(const Ast::FunctionCall &node, const std::string &name);
    Bound::ExpressionPtr average(Bound::ExpressionPtr argument, bool distinct, Grouping &grouping);
    Bound::ExpressionPtr addAggregate(Grouping &grouping, Bound::Aggregate aggregate, const SqlType &type);
    Bound::ExpressionPtr specialFunction(const Ast::FunctionCall &node, const std::string &name);
    Bound::ExpressionPtr coalesce(const Ast::FunctionCall &node);
    Bound::ExpressionPtr choice(std::vector<std::pair<Bound::ExpressionPtr, Bound::ExpressionPtr>> branches,
                                Bound::ExpressionPtr otherwise);
    Bound::ExpressionPtr stringAggregate(const Ast::FunctionCall &node, Grouping &grouping);

    // Window functions
    Bound::ExpressionPtr window(const Ast::FunctionCall &node, const std::string &name);
    Bound::ExpressionPtr windowAggregate(const Ast::FunctionCall &node, const std::string &name,
                                         const Bound::WindowCall &over);
    Bound::WindowCall bindWindow(const Ast::Window &window, const std::string &name);

    // Queries
    Bound::QueryPtr bindWhole(const Ast::Select &select);
    Bound::QueryPtr bindQuery(const Ast::Query &query, const Ast::Select *whole);
    Bound::QueryPtr xmlQuery(Bound::QueryPtr rows, const Ast::ForXml &options);
    Bound::QueryPtr bindSpecification(const Ast::QuerySpecification &specification, const Ast::Select *whole);
    Bound::QueryPtr bindCombination(const Ast::Query &query, const Ast::Select *whole);
    Bound::QueryPtr bindSubquery(const Ast::Select &select, bool allowsManyColumns);
    Bound::QueryPtr withColumnTypes(const Bound::QueryPtr &query, const std::vector<SqlType> &types);
    void bindItems(const Ast::QuerySpecification &specification, Scope &scope, Bound::Query &query);
    void bindStar(const Ast::ObjectName &qualifier, Scope &scope, Bound::Query &query);
    void bindOrder(const Ast::Select &whole, Bound::Query &query, bool outputOnly);
    Bound::OrderItem bindOrderItem(const Ast::OrderItem &item, const Bound::Query &query, bool outputOnly);
    void bindLimit(const Ast::QuerySpecification &specification, const Ast::Select *whole,
                   Bound::Query &query);
    void bindGrouping(const Ast::QuerySpecification &specification, Scope &scope, Grouping &grouping);
    Bound::SourcePtr bindSource(const Ast::TableSource &source, Scope &scope, bool lateral = false);
    Bound::SourcePtr bindNamed(const Ast::TableSource &source, const Ast::NamedTable &table, Scope &scope);
    Bound::SourcePtr bindDerived(const Ast::TableSource &source, const Ast::DerivedTable &table, Scope &scope,
                                 bool lateral);
    /// Adds the columns of a query to a scope under a name; the query may reference the scope's other
    /// sources.
    Bound::SourcePtr addQuery(ScopeSource entry, const Bound::QueryPtr &query,
                              const std::vector<std::string> &names, Scope &scope, bool lateral);
    Bound::SourcePtr bindCommon(const Ast::TableSource &source, const CommonTableScope &common,
                                std::size_t index, Scope &scope);
    Bound::SourcePtr bindRecursive(const Ast::TableSource &source, const CommonTableScope &common,
                                   std::size_t index, Scope &scope);
    Bound::SourcePtr bindOwnReference(const Ast::TableSource &source, const CommonTableScope &common,
                                      Scope &scope);
    Bound::SourcePtr findCommon(const Ast::TableSource &source, const Ast::ObjectName &name, Scope &scope);
    Bound::QueryPtr bindStep(const Ast::Query &step, const CommonTableScope &own, const Bound::Query &anchor);
    Bound::SourcePtr bindView(const Ast::TableSource &source, const Ast::ObjectName &name,
                              const NamedSource &view, Scope &scope);
    Bound::SourcePtr bindCatalog(const Ast::TableSource &source, const Ast::ObjectName &name,
                                 const NamedSource &rows, Scope &scope);
    Bound::SourcePtr bindModuleFunction(const Ast::TableSource &source, const Ast::FunctionTable &function,
                                        const ModulePtr &module, const DatabasePtr &database, Scope &scope);
    Bound::QueryPtr moduleQuery(const Module &module, const DatabasePtr &database,
                                const std::vector<Bound::ExpressionPtr> &arguments);
    std::vector<Bound::ExpressionPtr> moduleArguments(const Module &module,
                                                      const std::vector<Ast::ExpressionPtr> &arguments);
    Bound::ExpressionPtr callModule(const Ast::FunctionCall &node);
    Bound::SourcePtr provided(const Ast::TableSource &source, ScopeSource entry,
                              const std::vector<ColumnInfo> &columns, Bound::ProvidedRows rows, Scope &scope);
    Bound::SourcePtr bindSplit(const Ast::TableSource &source, const Ast::FunctionTable &function,
                               Scope &scope);
    Bound::SourcePtr bindValues(const Ast::TableSource &source, const Ast::ValuesTable &table, Scope &scope,
                                bool lateral);
    Bound::SourcePtr bindFunction(const Ast::TableSource &source, const Ast::FunctionTable &function,
                                  Scope &scope);
    Bound::SourcePtr bindJoin(const Ast::Join &join, Scope &scope);
    void addSource(ScopeSource source, Scope &scope);
    ScopeSource scopeOfTable(const Bound::TableScan &scan, const std::string &alias,
                             const std::string &sqliteAlias);
    void bindComputedColumns(ScopeSource &source);

    EvaluationContext &m_context;
    NameResolver &m_tables;
    const Variables &m_variables;
    Scope *m_scope = nullptr;
    const CommonTableScope *m_common = nullptr;
    std::unique_ptr<CommonTableScope> m_statementCommon; ///< created by useCommonTables()
    std::string m_recursiveAlias; ///< SQLite's alias of the previous rows, once a step has referenced them
    int m_maxRecursion = 100;
    const std::map<std::string, Bound::ExpressionPtr> *m_parameters = nullptr; ///< of an inline function
    int m_moduleDepth = 0;
    bool m_liveVariables = false;
    int m_aliases = 0;
};

/// Whether the expression contains an aggregate function outside of its subqueries.
bool containsAggregate(const Ast::Expression &expression);
/// Whether the expression contains a subquery.
bool containsSubquery(const Ast::Expression &expression);

} // namespace SampleServer
