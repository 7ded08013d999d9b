#include "Engine/Parse/DefinitionParser.h"
#include "Engine/Errors.h"
#include "Engine/Parse/Parsers.h"
#include "Types/Collation.h"

namespace SampleServer {

using namespace Ast;

StatementPtr DefinitionParser::parseCreate()
{
    const std::size_t start = m_context.at;
    expectKeyword("CREATE");
    if (isKeyword("OR"))
        require(Edition::Sql2022);
    const bool alter = acceptKeyword("OR");
    if (alter)
        expectKeyword("ALTER");
    if (m_parsers.modules.atModule())
        return m_parsers.modules.parseModule(start, true, alter);
    if (alter)
        failHere();
    if (acceptKeyword("TABLE"))
        return m_parsers.tables.parseCreateTable();
    if (acceptKeyword("DATABASE"))
        return parseCreateDatabase();
    if (acceptKeyword("SCHEMA"))
        return parseCreateSchema();
    if (isKeyword("TYPE")) {
        require(Edition::Sql2008);
        advance();
        return parseCreateType();
    }
    if (isKeyword("SYNONYM")) {
        require(Edition::Sql2008);
        advance();
        CreateSynonym node;
        node.name = parseObjectName();
        expectKeyword("FOR");
        node.target = parseObjectName();
        return statement(std::move(node));
    }
    if (isKeyword("UNIQUE") || isKeyword("CLUSTERED") || isKeyword("NONCLUSTERED") || isKeyword("INDEX"))
        return parseCreateIndex();
    refuse("CREATE " + current().keyword);
}

StatementPtr DefinitionParser::parseAlter()
{
    const std::size_t start = m_context.at;
    expectKeyword("ALTER");
    if (m_parsers.modules.atModule())
        return m_parsers.modules.parseModule(start, false, true);
    if (acceptKeyword("TABLE"))
        return parseAlterTable();
    if (isKeyword("INDEX"))
        require(Edition::Sql2008);
    if (acceptKeyword("INDEX"))
        return parseAlterIndex();
    if (acceptKeyword("DATABASE"))
        return parseAlterDatabase();
    refuse("ALTER " + current().keyword);
}

StatementPtr DefinitionParser::parseDrop()
{
    expectKeyword("DROP");
    static constexpr std::string_view kinds[] = {"VIEW",    "PROCEDURE", "PROC", "FUNCTION",
                                                 "TRIGGER", "SYNONYM",   "TYPE", "SCHEMA"};
    const std::string kind = current().keyword;
    const bool object = std::find(std::begin(kinds), std::end(kinds), kind) != std::end(kinds);
    if (!object && kind != "TABLE" && kind != "DATABASE" && kind != "INDEX")
        refuse("DROP " + kind);
    advance();
    if (isKeyword("IF"))
        require(Edition::Sql2022);
    const bool ifExists = acceptKeyword("IF");
    if (ifExists)
        expectKeyword("EXISTS");
    if (kind == "INDEX")
        return parseDropIndex(ifExists);
    std::vector<ObjectName> names;
    do
        names.push_back(parseObjectName());
    while (acceptSymbol(","));
    if (kind == "TABLE")
        return statement(DropTable{std::move(names), ifExists});
    if (object)
        return statement(DropObjects{kind == "PROC" ? "PROCEDURE" : kind, std::move(names), ifExists});
    DropDatabase node{{}, ifExists};
    for (const ObjectName &name : names)
        node.names.push_back(name.object());
    return statement(std::move(node));
}

StatementPtr DefinitionParser::parseTruncate()
{
    expectKeyword("TRUNCATE");
    expectKeyword("TABLE");
    return statement(TruncateTable{parseObjectName()});
}

/// ENABLE TRIGGER name ON table as a separate statement.
StatementPtr DefinitionParser::parseEnableTrigger()
{
    AlterTable node;
    node.action = AlterTable::Action::EnableTriggers;
    node.enable = isKeyword("ENABLE");
    advance(2);
    if (!acceptKeyword("ALL"))
        do
            node.names.push_back(parseObjectName().object());
        while (acceptSymbol(","));
    expectKeyword("ON");
    if (isKeyword("DATABASE") || isKeyword("ALL"))
        refuse("triggers on databases and servers");
    node.name = parseObjectName();
    return statement(std::move(node));
}

/// INCLUDE (columns) WHERE condition WITH (options) ON filegroup
void DefinitionParser::parseIndexTail(CreateIndex &index)
{
    if (isName() && isKeyword("INCLUDE")) {
        require(Edition::Sql2008);
        advance();
        for (KeyColumn &column : m_parsers.tables.parseKeyColumns())
            index.included.push_back(std::move(column.name));
    }
    if (isKeyword("WHERE"))
        require(Edition::Sql2008);
    if (acceptKeyword("WHERE"))
        index.filter = m_parsers.expressions.keepExpression(&ExpressionParser::parseCondition);
    index.options = parseIndexOptions();
    m_parsers.tables.skipStorage();
}

IndexOptions DefinitionParser::parseIndexOptions()
{
    IndexOptions options;
    if (!isKeyword("WITH") || (ahead(1).source != "(" && ahead(1).keyword != "FILLFACTOR"))
        return options;
    advance();
    const bool parenthesized = acceptSymbol("(");
    do {
        const std::string option = current().keyword;
        advance();
        if (!acceptSymbol("=")) { // the old form: WITH FILLFACTOR = 80, PAD_INDEX
            options.padded = options.padded || option == "PAD_INDEX";
            options.ignoresDuplicates = options.ignoresDuplicates || option == "IGNORE_DUP_KEY";
            options.dropExisting = options.dropExisting || option == "DROP_EXISTING";
            continue;
        }
        const bool on = isKeyword("ON");
        if (option == "FILLFACTOR")
            options.fillFactor = std::atoi(current().value.c_str());
        options.padded = option == "PAD_INDEX" ? on : options.padded;
        options.ignoresDuplicates = option == "IGNORE_DUP_KEY" ? on : options.ignoresDuplicates;
        options.dropExisting = option == "DROP_EXISTING" ? on : options.dropExisting;
        advance();
        if (isSymbol("("))
            skipParentheses();
    } while (acceptSymbol(","));
    if (parenthesized)
        expectSymbol(")");
    return options;
}

StatementPtr DefinitionParser::parseCreateDatabase()
{
    const std::string name = expectName();
    if (isKeyword("ON") || isKeyword("FOR") || isKeyword("WITH"))
        refuse("CREATE DATABASE with files or options");
    if (acceptKeyword("COLLATE"))
        expectName();
    return statement(CreateDatabase{name});
}

StatementPtr DefinitionParser::parseCreateSchema()
{
    CreateSchema node;
    if (!isKeyword("AUTHORIZATION"))
        node.name = expectName();
    if (acceptKeyword("AUTHORIZATION")) {
        const std::string owner = expectName();
        if (node.name.empty())
            node.name = owner;
    }
    return statement(std::move(node));
}

StatementPtr DefinitionParser::parseCreateType()
{
    CreateType node;
    node.name = parseObjectName();
    if (acceptKeyword("AS")) {
        expectKeyword("TABLE");
        auto table = std::make_shared<CreateTable>();
        table->name = node.name;
        m_parsers.tables.parseTableElements(*table);
        node.table = std::move(table);
        return statement(std::move(node));
    }
    expectKeyword("FROM");
    node.base = parseTypeName();
    if (acceptKeyword("NULL")) {
        node.nullable = true;
    } else if (acceptKeyword("NOT")) {
        expectKeyword("NULL");
        node.nullable = false;
    }
    return statement(std::move(node));
}

StatementPtr DefinitionParser::parseCreateIndex()
{
    CreateIndex node;
    node.unique = acceptKeyword("UNIQUE");
    node.clustered = m_parsers.tables.acceptClustering().value_or(false);
    expectKeyword("INDEX");
    node.name = expectName();
    expectKeyword("ON");
    node.table = parseObjectName();
    node.columns = m_parsers.tables.parseKeyColumns();
    parseIndexTail(node);
    return statement(std::move(node));
}

StatementPtr DefinitionParser::parseAlterDatabase()
{
    AlterDatabase node;
    node.name = expectName();
    if (isKeyword("MODIFY") && ahead(1).keyword == "NAME") {
        advance(2);
        expectSymbol("=");
        node.newName = expectName();
    } else if (acceptKeyword("SET") || acceptKeyword("COLLATE")) {
        skipDatabaseOptions();
    } else {
        refuse("ALTER DATABASE ... " + current().keyword);
    }
    if (foldedName(node.name) == "CURRENT")
        node.name.clear();
    return statement(std::move(node));
}

/// RECOVERY SIMPLE, ANSI_NULLS ON ... WITH ROLLBACK IMMEDIATE: parsed and ignored.
void DefinitionParser::skipDatabaseOptions()
{
    do {
        advance();
        acceptSymbol("=");
        if (isKeyword("ON") || isKeyword("OFF") || isName() || current().kind == TokenKind::Integer)
            advance();
        if (isSymbol("("))
            skipParentheses();
    } while (acceptSymbol(","));
    if (!acceptKeyword("WITH"))
        return;
    acceptKeyword("ROLLBACK");
    while (isName() || isKeyword("AFTER") || current().kind == TokenKind::Integer)
        advance();
}

StatementPtr DefinitionParser::parseAlterTable()
{
    AlterTable node;
    node.name = parseObjectName();
    if (isKeyword("WITH") && (ahead(1).keyword == "CHECK" || ahead(1).keyword == "NOCHECK")) {
        node.checkExisting = ahead(1).keyword == "CHECK";
        advance(2);
    } else {
        node.checkExisting = !isKeyword("CHECK"); // enabling a constraint checks the rows only WITH CHECK
    }
    const bool enableWord = isKeyword("ENABLE") || isKeyword("DISABLE");
    if (acceptKeyword("ADD"))
        parseTableAdditions(node);
    else if (acceptKeyword("ALTER"))
        parseAlterColumn(node);
    else if (acceptKeyword("DROP"))
        parseTableDrops(node);
    else if (isKeyword("CHECK") || isKeyword("NOCHECK") || enableWord)
        parseEnabling(node);
    else
        refuse("ALTER TABLE ... " + current().keyword);
    return statement(std::move(node));
}

void DefinitionParser::parseTableAdditions(AlterTable &node)
{
    node.action = AlterTable::Action::Add;
    do {
        m_parsers.tables.parseTableElement(node.added);
        if (isKeyword("WITH") && ahead(1).keyword == "VALUES") {
            advance(2);
            node.added.columns.back().withValues = true;
        }
    } while (acceptSymbol(","));
}

void DefinitionParser::parseAlterColumn(AlterTable &node)
{
    node.action = AlterTable::Action::AlterColumn;
    expectKeyword("COLUMN");
    const std::string name = expectName();
    ColumnDefinition column;
    column.name = name;
    if (isKeyword("ADD") || isKeyword("DROP")) {
        const bool add = isKeyword("ADD");
        advance();
        if (acceptKeyword("ROWGUIDCOL")) {
            node.setRowGuid = add;
        } else if (isKeyword("SPARSE")) {
            advance();
            node.setSparse = add;
        } else {
            refuse("ALTER COLUMN ... " + current().keyword);
        }
    } else {
        column.type = parseTypeName();
        while (!isKeyword("IDENTITY") && m_parsers.tables.parseColumnProperty(column)) {
        }
    }
    node.added.columns.push_back(std::move(column));
}

void DefinitionParser::parseTableDrops(AlterTable &node)
{
    node.action = AlterTable::Action::Drop;
    bool isColumn = false;
    do {
        AlterTable::Dropped item;
        if (acceptKeyword("COLUMN"))
            isColumn = true;
        else if (acceptKeyword("CONSTRAINT"))
            isColumn = false;
        if (isKeyword("IF"))
            require(Edition::Sql2022);
        item.ifExists = acceptKeyword("IF");
        if (item.ifExists)
            expectKeyword("EXISTS");
        item.name = expectName();
        item.isColumn = isColumn;
        node.dropped.push_back(std::move(item));
    } while (acceptSymbol(","));
}

/// CHECK, NOCHECK CONSTRAINT and ENABLE, DISABLE TRIGGER with names or ALL.
void DefinitionParser::parseEnabling(AlterTable &node)
{
    node.enable = isKeyword("CHECK") || isKeyword("ENABLE");
    const bool triggers = isKeyword("ENABLE") || isKeyword("DISABLE");
    advance();
    expectKeyword(triggers ? "TRIGGER" : "CONSTRAINT");
    node.action = triggers ? AlterTable::Action::EnableTriggers : AlterTable::Action::EnableConstraints;
    if (acceptKeyword("ALL"))
        return;
    do
        node.names.push_back(expectName());
    while (acceptSymbol(","));
}

StatementPtr DefinitionParser::parseAlterIndex()
{
    AlterIndex node;
    if (!acceptKeyword("ALL"))
        node.name = expectName();
    expectKeyword("ON");
    node.table = parseObjectName();
    const std::string action = current().keyword;
    advance();
    if (action == "REBUILD")
        node.action = AlterIndex::Action::Rebuild;
    else if (action == "DISABLE")
        node.action = AlterIndex::Action::Disable;
    else if (action == "SET")
        skipParentheses();
    else if (action != "REORGANIZE")
        refuse("ALTER INDEX ... " + action);
    if (isKeyword("WITH")) {
        advance();
        skipParentheses();
    }
    return statement(std::move(node));
}

/// DROP INDEX name ON table, or the old table.name.
StatementPtr DefinitionParser::parseDropIndex(bool ifExists)
{
    DropIndex node;
    node.ifExists = ifExists;
    do {
        ObjectName name = parseObjectName();
        DropIndex::Item item;
        item.name = name.object();
        if (acceptKeyword("ON")) {
            item.table = parseObjectName();
        } else {
            name.parts.pop_back();
            if (name.parts.empty())
                failHere();
            item.table = std::move(name);
        }
        parseIndexOptions();
        node.items.push_back(std::move(item));
    } while (acceptSymbol(","));
    return statement(std::move(node));
}

} // namespace SampleServer
