#pragma once

#include "Engine/Edition.h"
#include "Types/DateTime.h"
#include "Types/ResultSink.h"
#include "Types/Value.h"

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

namespace SampleServer {

class Database;
struct Module;

/// Session state and services for expressions. Used by the session's thread only.
struct EvaluationContext
{
    std::string serverName;
    std::string versionBanner;
    std::string loginName;
    std::string hostName;
    std::string applicationName;
    std::string database; ///< the current database
    int spid = 51;
    Edition edition = Edition::Sql2022;

    DateOrder dateOrder = DateOrder::MonthDayYear;
    int firstWeekday = 7; ///< SET DATEFIRST, 1 is Monday
    std::int32_t textSize = 4096;
    bool concatNullYieldsNull = true;
    std::uint64_t optionBits = 0; ///< the value of @@OPTIONS

    int boundSources = 0; ///< of the statement, including views and common tables

    std::int64_t rowCount = 0;
    std::int32_t lastError = 0;
    std::int32_t transactionCount = 0;
    bool isTransactionDoomed = false;         ///< the open transaction can only be rolled back
    std::int32_t nestingLevel = 0;            ///< @@NESTLEVEL
    std::int64_t procedureId = 0;             ///< @@PROCID
    std::optional<ServerMessage> caughtError; ///< the error handled by the current CATCH block
    std::optional<Decimal> lastIdentity;      ///< @@IDENTITY
    std::optional<Decimal> scopeIdentity;     ///< SCOPE_IDENTITY(): of this module or batch
    DateTimeValue statementTime;              ///< local, the same for all rows of a statement
    DateTimeValue statementTimeUtc;           ///< UTC

    /// Returns the id of an object by name, as OBJECT_ID, or of a database (empty: the current one).
    std::function<std::optional<std::int64_t>(const std::string &)> objectId;
    std::function<std::optional<std::int64_t>(const std::string &)> databaseId;
    /// Returns a database by name (empty: the current one); null if there is none.
    std::function<std::shared_ptr<Database>(const std::string &)> findDatabase;
    /// Returns the name of an id; empty if there is none.
    std::function<std::optional<std::string>(std::int64_t)> databaseName;
    /// Runs a user-defined scalar function.
    std::function<Value(const Module &, std::span<const Value>)> callFunction;
    /// Runs a user-defined multi-statement function and returns its rows.
    std::function<std::vector<std::vector<Value>>(const Module &, std::span<const Value>)> callTableFunction;
    std::set<std::string> updatedColumns; ///< folded names: the columns for UPDATE(column) in a trigger
    /// Returns the current value of a variable (name with @), for expressions that must see changes while a
    /// query runs.
    std::function<Value(const std::string &)> variable;
};

} // namespace SampleServer
