#include "Engine/Run/ModuleDefiner.h"
#include "Engine/Errors.h"
#include "Engine/Run/TableBuilder.h"
#include "Types/Collation.h"
#include "Types/Text.h"

namespace SampleServer {

namespace {

const char *kindWord(ObjectKind kind)
{
    switch (kind) {
    case ObjectKind::View:
        return "VIEW";
    case ObjectKind::Procedure:
        return "PROCEDURE";
    case ObjectKind::Trigger:
        return "TRIGGER";
    case ObjectKind::Synonym:
        return "SYNONYM";
    case ObjectKind::Table:
    case ObjectKind::TableType:
        return "TABLE";
    default:
        return "FUNCTION";
    }
}

bool endsWithReturn(const Ast::Statement &statement)
{
    if (const auto *block = std::get_if<Ast::Block>(&statement.node))
        return !block->statements.empty() && endsWithReturn(*block->statements.back());
    return std::holds_alternative<Ast::Return>(statement.node);
}

/// Throws 2111 if the object has another INSTEAD OF trigger for the same event.
void requireOnlyInsteadOf(const Ast::ModuleDefinition &definition, const Database &database,
                          const SchemaObject &parent)
{
    if (!definition.insteadOf)
        return;
    for (const ModulePtr &other : database.triggersOf(parent.id)) {
        const Ast::ModuleDefinition &its = *other->definition;
        const char *event = definition.onInsert && its.onInsert   ? "INSERT"
                            : definition.onUpdate && its.onUpdate ? "UPDATE"
                            : definition.onDelete && its.onDelete ? "DELETE"
                                                                  : nullptr;
        if (!its.insteadOf || !event || foldedName(other->name) == foldedName(definition.name.object()))
            continue;
        throw EngineError(2111, 16, 1,
                          "Cannot create trigger '" + definition.name.object() + "' on " +
                              (parent.kind == ObjectKind::View ? "view" : "table") + " '" +
                              definition.parent.toString() + "' because an INSTEAD OF " + event +
                              " trigger already exists on this object.",
                          ErrorEffect::EndsBatch);
    }
}

} // namespace

/// Errors contain the name of the module that cannot be created.
void ModuleDefiner::run(const Ast::CreateModule &node)
{
    try {
        defineModule(node);
    } catch (EngineError &error) {
        if (error.message.procedure.empty())
            error.message.procedure = node.definition->name.object();
        throw;
    }
    m_session.evaluation.rowCount = 0;
}

void ModuleDefiner::defineModule(const Ast::CreateModule &node)
{
    const Ast::ModuleDefinition &definition = *node.definition;
    NewPlace place = m_names.placeOfNew(definition.name, true);
    if (!place.database)
        throw Errors::notSupported("temporary " + toLower(kindWord(definition.kind)) + 's');
    auto module = std::make_shared<Module>(definition.kind);
    if (definition.kind == ObjectKind::Trigger) {
        const FoundObject parent = m_names.findObject(definition.parent);
        if (!parent.object ||
            (parent.object->kind != ObjectKind::Table && parent.object->kind != ObjectKind::View))
            throw EngineError(8197, 16, 4,
                              "The object '" + definition.parent.toString() +
                                  "' does not exist or is invalid for this operation.",
                              ErrorEffect::EndsBatch);
        if (parent.object->kind == ObjectKind::View && !definition.insteadOf)
            throw EngineError(8197, 16, 6,
                              "The object '" + definition.parent.toString() +
                                  "' does not exist or is invalid for this operation.",
                              ErrorEffect::EndsBatch);
        requireOnlyInsteadOf(definition, *parent.database, *parent.object);
        module->parent = parent.object->id;
        place.schema = parent.object->schema;
    }
    const ObjectPtr existing = place.database->find(place.schema, definition.name.object());
    const bool isTaken = place.database->isTaken(place.schema, definition.name.object());
    if (isTaken &&
        (!node.alter || !existing || std::string_view(kindWord(existing->kind)) != kindWord(definition.kind)))
        throw EngineError(2714, 16, 3,
                          "There is already an object named '" + definition.name.object() +
                              "' in the database.",
                          ErrorEffect::EndsBatch);
    if (!existing && !node.create) {
        EngineError error = Errors::invalidObject(definition.name.toString());
        error.message.state = 6;
        throw error;
    }
    const auto &statements = definition.statements;
    if (definition.kind == ObjectKind::ScalarFunction &&
        (statements.empty() || !endsWithReturn(*statements.back())))
        throw EngineError(455, 16, 2,
                          "The last statement included within a function must be a return statement.",
                          ErrorEffect::EndsBatch);
    module->id = existing ? existing->id : newObjectId();
    module->database = place.database->id();
    module->schema = place.schema;
    module->name = existing ? existing->name : definition.name.object();
    module->created = existing ? existing->created : m_session.evaluation.statementTime;
    module->modified = m_session.evaluation.statementTime;
    module->definition = node.definition;
    module->text = node.text;
    module->quotedIdentifiers = m_session.options.quotedIdentifiers;
    describeModule(*module, place.database);
    Transactions::Change change(m_session.transactions);
    m_store.replaceObject(place.database, existing, module);
    change.finish();
}

/// Resolves the types of parameters, results and columns. The body of a procedure or trigger is resolved when
/// it runs.
void ModuleDefiner::describeModule(Module &module, const DatabasePtr &database)
{
    const auto names = m_names.enterModule(module, database);
    const Ast::ModuleDefinition &definition = *module.definition;
    int number = 0;
    for (const Ast::ParameterDefinition &parameter : definition.parameters) {
        const NamedType named = m_names.findType(parameter.type, ++number);
        module.parameters.push_back({parameter.name, named.type, named.userType, parameter.defaultValue,
                                     parameter.defaultValue != nullptr, parameter.output});
    }
    if (definition.kind == ObjectKind::ScalarFunction)
        module.result = m_names.findType(definition.returns, number + 1).type;
    if (definition.kind == ObjectKind::TableFunction) {
        Table table;
        table.name = definition.resultTable.name.object();
        TableBuilder builder(m_queries, std::move(table), nullptr);
        builder.add(definition.resultTable);
        module.resultTable = std::make_shared<const Table>(builder.take());
        module.columns = module.resultTable->columns;
    }
    if (!definition.query)
        return;
    Binder types = m_queries.binder();
    const auto columns = types.describeModule(module);
    for (const ColumnInfo &info : columns) {
        TableColumn column;
        column.name = info.name;
        column.id = column.storage = static_cast<int>(module.columns.size()) + 1;
        column.type = info.type;
        column.nullable = info.nullable;
        column.identity = info.identity;
        for (const TableColumn &other : module.columns)
            if (foldedName(other.name) == foldedName(column.name))
                throw EngineError(4506, 16, 1,
                                  "Column names in each view or function must be unique. Column name '" +
                                      column.name + "' in view or function '" + module.name +
                                      "' is specified more than once.",
                                  ErrorEffect::EndsBatch);
        if (column.name.empty())
            throw EngineError(
                4511, 16, 1,
                "Create View or Function failed because no column name was specified for column " +
                    std::to_string(column.id) + '.',
                ErrorEffect::EndsBatch);
        module.columns.push_back(std::move(column));
    }
    m_names.uses().clear(); // nothing was read
}

void ModuleDefiner::dropObject(const Ast::ObjectName &name, const std::string &kind, bool ifExists)
{
    const DatabasePtr database = m_names.findDatabase(name.qualifier(2));
    if (database)
        m_session.transactions.changeDefinitions(*database);
    const FoundObject found = database ? m_names.findObject(name, false) : FoundObject();
    if (!found.object || !found.database || kindWord(found.object->kind) != kind) {
        if (found.object && found.database && kindWord(found.object->kind) != kind)
            throw EngineError(3705, 16, 1,
                              "Cannot use DROP " + kind + " with '" + name.toString() + "' because '" +
                                  name.toString() + "' is a " + toLower(kindWord(found.object->kind)) +
                                  ". Use DROP " + kindWord(found.object->kind) + '.');
        if (ifExists)
            return;
        throw EngineError(3701, 11, 5,
                          "Cannot drop the " + toLower(kind) + " '" + name.toString() +
                              "', because it does not exist or you do not have permission.");
    }
    Transactions::Change change(m_session.transactions);
    for (const ModulePtr &trigger : found.database->triggersOf(found.object->id))
        m_store.replaceObject(found.database, trigger, nullptr);
    m_store.replaceObject(found.database, found.object, nullptr);
    change.finish();
}

} // namespace SampleServer
