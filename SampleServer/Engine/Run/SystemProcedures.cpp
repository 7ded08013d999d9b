#include "Engine/Run/SystemProcedures.h"
#include "Engine/Errors.h"
#include "Engine/Functions/Conversion.h"
#include "Engine/Parse/NameText.h"
#include "Types/Collation.h"
#include "Types/Text.h"

#include <algorithm>

namespace SampleServer {

namespace {

/// The arguments of a system procedure by name or position.
class Arguments
{
public:
    Arguments(const std::vector<ProcedureArgument> &given, std::vector<std::string> names)
        : m_given(given)
        , m_names(std::move(names))
    {
    }

    /// The argument as text; empty if it is NULL or omitted.
    std::string text(const std::string &name) const
    {
        const auto place = std::find(m_names.begin(), m_names.end(), name) - m_names.begin();
        for (std::size_t i = 0; i < m_given.size(); ++i) {
            const ProcedureArgument &argument = m_given[i];
            const bool matches = argument.name.empty() ? static_cast<std::ptrdiff_t>(i) == place
                                                       : equalsIgnoringAsciiCase(argument.name, name);
            if (matches && !argument.isDefault && !isNull(argument.value))
                return shown(argument);
        }
        return {};
    }

private:
    static std::string shown(const ProcedureArgument &argument)
    {
        if (const auto *variant = std::get_if<std::shared_ptr<const VariantValue>>(&argument.value))
            return textOf((*variant)->value, (*variant)->type, 0);
        return textOf(argument.value, argument.type, 0);
    }

    const std::vector<ProcedureArgument> &m_given;
    const std::vector<std::string> m_names;
};

EngineError noSuchObject(const std::string &name, const std::string &database)
{
    return {15009, 16, 1,
            "The object '" + name + "' does not exist in database '" + database +
                "' or is invalid for this operation."};
}

/// Splits a text into lines including their line ends.
std::vector<std::string> linesOf(const std::string &text)
{
    std::vector<std::string> lines;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size() - 1) + 1;
        lines.push_back(text.substr(at, end - at));
        at = end;
    }
    return lines;
}

} // namespace

std::optional<std::int32_t> SystemProcedures::call(const Ast::ObjectName &name,
                                                   std::vector<ProcedureArgument> &arguments)
{
    if (name.parts.empty())
        return {};
    const std::string procedure = foldedName(name.object());
    if (procedure == "SP_HELPTEXT")
        showText(Arguments(arguments, {"@objname"}).text("@objname"));
    else if (procedure == "SP_RENAME") {
        const Arguments given(arguments, {"@objname", "@newname", "@objtype"});
        rename(given.text("@objname"), given.text("@newname"), asciiUpper(given.text("@objtype")));
    } else if (procedure == "SP_ADDEXTENDEDPROPERTY" || procedure == "SP_UPDATEEXTENDEDPROPERTY" ||
               procedure == "SP_DROPEXTENDEDPROPERTY") {
        changeProperty(procedure, arguments);
    } else if (procedure == "SP_ADDTYPE" || procedure == "SP_DROPTYPE") {
        changeType(arguments, procedure == "SP_DROPTYPE");
    } else {
        // Other procedures are SQL modules in master; they run in the caller's database.
        const auto master = m_session.state.databases.find("master");
        const auto module = std::dynamic_pointer_cast<const Module>(master->find("dbo", name.object()));
        if (!module || !procedure.starts_with("SP_"))
            return {};
        const DatabasePtr database = m_names.findDatabase(name.qualifier(2));
        return m_calls.callModule(module, database ? database : m_session.database, arguments);
    }
    return 0;
}

/// sp_addtype and sp_droptype
void SystemProcedures::changeType(const std::vector<ProcedureArgument> &arguments, bool drops)
{
    const Arguments given(arguments, {"@typename", "@phystype", "@nulltype"});
    std::string type = "TYPE ";
    for (const UserTypePtr &known : m_session.database->types()) // in any schema
        if (foldedName(known->name) == foldedName(given.text("@typename")))
            type += quotedName(known->schema) + '.';
    type += quotedName(given.text("@typename"));
    const std::string base = " FROM " + given.text("@phystype") + ' ' + given.text("@nulltype");
    m_session.runner->runText(drops ? "DROP " + type : "CREATE " + type + base, {});
}

/// sp_helptext
void SystemProcedures::showText(const std::string &objectName)
{
    const FoundObject found = m_names.findObject(nameFromText(objectName), false);
    const auto *module = dynamic_cast<const Module *>(found.object.get());
    std::string text;
    if (module && module->definition->encrypted) {
        m_session.sink->message(
            {15471, 1, 0, "The text for object '" + objectName + "' is encrypted.", {}, m_session.line});
        return;
    }
    if (module)
        text = module->text;
    else if (!found.object)
        throw noSuchObject(objectName, m_session.evaluation.database);
    else
        throw EngineError(15197, 16, 1, "There is no text for object '" + objectName + "'.");
    ColumnInfo column;
    column.name = "Text";
    column.type = {TypeId::NVarChar, 255, 0, 0};
    m_session.sink->columns({column}, {});
    StatementEnd end;
    end.currentCommand = 0xC1;
    end.rowCount = 0;
    for (const std::string &line : linesOf(text)) {
        const Value value = line;
        m_session.sink->row({&value, 1});
        ++*end.rowCount;
    }
    m_session.sink->endStatement(end);
}

/// sp_rename
void SystemProcedures::rename(const std::string &what, const std::string &newName, const std::string &kind)
{
    Ast::ObjectName name = nameFromText(what);
    const EngineError ambiguous(15225, 11, 1,
                                "No item by the name of '" + what +
                                    "' could be found in the current database '" +
                                    m_session.evaluation.database + "', given that @itemtype was input as '" +
                                    (kind.empty() ? std::string("(null)") : kind) + "'.");
    if (name.parts.empty() || newName.empty())
        throw ambiguous;
    m_session.transactions.changeDefinitions(*m_session.database);
    Transactions::Change change(m_session.transactions);
    if (kind == "COLUMN" || kind == "INDEX") {
        const std::string part = name.object();
        name.parts.pop_back();
        const Bound::TableScan scan = name.parts.empty() ? Bound::TableScan() : m_names.findOrNull(name);
        if (!scan.table || !renamePart(scan, part, newName, kind == "COLUMN"))
            throw EngineError(15248, 11, 1,
                              "Either the parameter @objname is ambiguous or the claimed @objtype (" + kind +
                                  ") is wrong.");
    } else if (const FoundObject found = m_names.findObject(name, false); found.object && found.database) {
        renameWhole(found, newName);
    } else if (!renameConstraint(name, newName)) {
        throw ambiguous;
    }
    change.finish();
    m_session.sink->message(
        {15477,
         1,
         0,
         "Caution: Changing any part of an object name could break scripts and stored procedures.",
         {},
         m_session.line});
}

bool SystemProcedures::renamePart(const Bound::TableScan &scan, const std::string &part,
                                  const std::string &newName, bool isColumn)
{
    Table changed = *scan.table;
    if (isColumn) {
        const auto column = changed.findColumn(part);
        if (!column)
            return false;
        if (changed.findColumn(newName) && foldedName(newName) != foldedName(part))
            throw EngineError(
                15335, 11, 1,
                "Error: The new name '" + newName +
                    "' is already in use as a COLUMN name and would cause a duplicate that is not "
                    "permitted.");
        changed.columns[*column].name = newName;
    } else {
        if (!changed.findIndex(part))
            return false;
        for (TableIndex &index : changed.indexes)
            if (foldedName(index.name) == foldedName(part)) {
                index.name = newName;
                index.constraint.name = index.isKey() ? newName : index.constraint.name;
            }
    }
    m_store.replaceTable(scan, std::move(changed));
    return true;
}

void SystemProcedures::renameWhole(const FoundObject &found, const std::string &newName)
{
    if (found.database->isTaken(found.object->schema, newName) &&
        foldedName(newName) != foldedName(found.object->name))
        throw EngineError(15335, 11, 1,
                          "Error: The new name '" + newName +
                              "' is already in use as a OBJECT name and would cause a duplicate that is not "
                              "permitted.");
    const auto renamed = [&](const auto &object) {
        auto copy = std::make_shared<std::decay_t<decltype(object)>>(object);
        copy->name = newName;
        copy->modified = m_session.evaluation.statementTime;
        m_store.replaceObject(found.database, found.object, copy);
    };
    if (const auto *table = dynamic_cast<const Table *>(found.object.get()))
        renamed(*table);
    else if (const auto *module = dynamic_cast<const Module *>(found.object.get()))
        renamed(*module);
    else
        renamed(dynamic_cast<const Synonym &>(*found.object));
}

bool SystemProcedures::renameConstraint(const Ast::ObjectName &name, const std::string &newName)
{
    const std::string schema = name.qualifier(1).empty() ? "dbo" : name.qualifier(1);
    const TablePtr table = m_session.database->findConstraint(schema, name.object());
    if (!table)
        return false;
    const std::string folded = foldedName(name.object());
    Table changed = *table;
    const auto rename = [&](ConstraintName &constraint) {
        if (foldedName(constraint.name) == folded)
            constraint.name = newName;
    };
    for (TableIndex &index : changed.indexes)
        if (index.isKey()) {
            rename(index.constraint);
            index.name = index.constraint.name;
        }
    for (ForeignKey &key : changed.foreignKeys)
        rename(key.constraint);
    for (CheckConstraint &check : changed.checks)
        rename(check.constraint);
    for (TableColumn &column : changed.columns)
        rename(column.defaultName);
    m_store.replaceTable(m_store.scanOf(table, m_session.database), std::move(changed));
    return true;
}

/// sp_addextendedproperty, sp_updateextendedproperty and sp_dropextendedproperty
void SystemProcedures::changeProperty(const std::string &procedure,
                                      const std::vector<ProcedureArgument> &arguments)
{
    const bool drops = procedure == "SP_DROPEXTENDEDPROPERTY";
    std::vector<std::string> names = {"@name",       "@value",      "@level0type", "@level0name",
                                      "@level1type", "@level1name", "@level2type", "@level2name"};
    if (drops)
        names.erase(names.begin() + 1);
    const Arguments given(arguments, names);
    ExtendedProperty property;
    property.name = given.text("@name");
    property.value = given.text("@value");
    const std::string schema = given.text("@level0name"), object = given.text("@level1name"),
                      column = given.text("@level2name");
    if (schema.empty()) {
        property.type = 0;
    } else if (object.empty()) {
        const auto found = m_session.database->findSchema(schema);
        property.type = 3;
        property.major = found ? found->id : 0;
    } else {
        const ObjectPtr found = m_session.database->find(schema, object);
        if (!found)
            throw EngineError(15135, 16, 8,
                              "Object is invalid. Extended properties are not permitted on '" + schema + '.' +
                                  object + "', or the object does not exist.");
        property.major = found->id;
        const auto *table = dynamic_cast<const Table *>(found.get());
        if (const auto place = !column.empty() && table ? table->findColumn(column) : std::nullopt)
            property.minor = table->columns[*place].id;
    }
    auto properties = m_session.database->properties();
    const auto known = std::find_if(properties.begin(), properties.end(), [&](const ExtendedProperty &other) {
        return other.type == property.type && other.major == property.major &&
               other.minor == property.minor && foldedName(other.name) == foldedName(property.name);
    });
    if (procedure == "SP_ADDEXTENDEDPROPERTY" ? known != properties.end() : known == properties.end())
        throw known == properties.end()
            ? EngineError(15217, 16, 2,
                          "Property cannot be updated or deleted. Property '" + property.name +
                              "' does not exist.")
            : EngineError(15233, 16, 1,
                          "Property cannot be added. Property '" + property.name + "' already exists.");
    if (drops)
        properties.erase(known);
    else if (known != properties.end())
        *known = property;
    else
        properties.push_back(property);
    m_session.database->setProperties(std::move(properties));
}

} // namespace SampleServer
