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

/// What expressions can ask of the session they run in. Used by the session's thread only.
struct EvaluationContext
{
    std::string serverName;
    std::string versionBanner;
    std::string loginName;
    std::string hostName;
    std::string applicationName;
    std::string database; ///< the current one
    int spid = 51;
    Edition edition = Edition::Sql2022;

    DateOrder dateOrder = DateOrder::MonthDayYear;
    int firstWeekday = 7; ///< SET DATEFIRST, 1 is Monday
    std::int32_t textSize = 4096;
    bool concatNullYieldsNull = true;
    std::uint64_t optionBits = 0; ///< what @@OPTIONS answers

    int boundSources = 0; ///< by the statement, those inside of views and common tables included

    std::int64_t rowCount = 0;
    std::int32_t lastError = 0;
    std::int32_t transactionCount = 0;
    bool isTransactionDoomed = false; ///< what is left of the open transaction can only be rolled back
    std::int32_t nestingLevel = 0;    ///< @@NESTLEVEL
    std::int64_t procedureId = 0;     ///< @@PROCID
    std::optional<ServerMessage> caughtError; ///< what the CATCH block that runs has caught
    std::optional<Decimal> lastIdentity;      ///< @@IDENTITY
    std::optional<Decimal> scopeIdentity;     ///< SCOPE_IDENTITY(): of this module or batch
    DateTimeValue statementTime;              ///< local, the same for all rows of a statement
    DateTimeValue statementTimeUtc;           ///< UTC

    /// The id of an object by its name as OBJECT_ID takes it, and of a database (empty: the current one).
    std::function<std::optional<std::int64_t>(const std::string &)> objectId;
    std::function<std::optional<std::int64_t>(const std::string &)> databaseId;
    /// A database by its name (empty: the current one); null when there is none.
    std::function<std::shared_ptr<Database>(const std::string &)> findDatabase;
    /// The name behind an id, empty when there is none.
    std::function<std::optional<std::string>(std::int64_t)> databaseName;
    /// Runs a scalar function of the user's.
    std::function<Value(const Module &, std::span<const Value>)> callFunction;
    /// Runs a multi-statement function of the user's and returns its rows.
    std::function<std::vector<std::vector<Value>>(const Module &, std::span<const Value>)> callTableFunction;
    std::set<std::string> updatedColumns; ///< folded names: what UPDATE(column) knows in a trigger
    /// The current value of a variable (with its @), for expressions that must see changes while a query
    /// runs.
    std::function<Value(const std::string &)> variable;
};

} // namespace SampleServer
