#pragma once

#include "Engine/Run/QueryExecutor.h"

#include <string>

namespace SampleServer {

/// Runs SET for options.
class OptionExecutor
{
public:
    explicit OptionExecutor(QueryExecutor &queries)
        : m_session(queries.session())
        , m_names(queries.names())
        , m_queries(queries)
    {
    }

    void run(const Ast::SetOption &node);
    void run(const Ast::SetIdentityInsert &node);

private:
    void applyOption(const std::string &option, const std::string &value, const Value &number);
    bool applyWord(const std::string &option, const std::string &value);
    bool applyNumber(const std::string &option, std::int64_t number);
    void applyLanguage(const std::string &language);
    std::string nameOfIdentityInsert() const;

    SessionContext &m_session;
    NameLookup &m_names;
    QueryExecutor &m_queries;
};

} // namespace SampleServer
