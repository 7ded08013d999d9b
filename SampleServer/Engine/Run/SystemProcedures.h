#pragma once

#include "Engine/Run/ModuleCalls.h"

#include <optional>
#include <string>
#include <vector>

namespace SampleServer {

/// The server's system procedures: those that cannot be written in SQL, and calls of the others.
class SystemProcedures
{
public:
    SystemProcedures(QueryExecutor &queries, ModuleCalls &calls)
        : m_session(queries.session())
        , m_names(queries.names())
        , m_store(queries.store())
        , m_calls(calls)
    {
    }

    /// Runs a system procedure and returns its status; empty if it does not exist.
    std::optional<std::int32_t> call(const Ast::ObjectName &name, std::vector<ProcedureArgument> &arguments);

private:
    void showText(const std::string &objectName);
    void rename(const std::string &what, const std::string &newName, const std::string &kind);
    bool renamePart(const Bound::TableScan &scan, const std::string &part, const std::string &newName,
                    bool isColumn);
    void renameWhole(const FoundObject &found, const std::string &newName);
    bool renameConstraint(const Ast::ObjectName &name, const std::string &newName);
    void changeType(const std::vector<ProcedureArgument> &arguments, bool drops);
    void changeProperty(const std::string &procedure, const std::vector<ProcedureArgument> &arguments);

    SessionContext &m_session;
    NameLookup &m_names;
    TableStore &m_store;
    ModuleCalls &m_calls;
};

} // namespace SampleServer
