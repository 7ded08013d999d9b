#pragma once

#include "Engine/Emit/StatementText.h"

#include <string>

namespace SampleServer {

class QueryEmitter;

/// Emits the sources of a FROM clause as SQLite's SQL.
class SourceEmitter
{
public:
    /// `queries` emits derived tables and expressions.
    SourceEmitter(StatementText &text, QueryEmitter &queries)
        : m_text(text)
        , m_queries(queries)
    {
    }

    /// `parenthesize` if a join needs parentheses.
    void write(const Bound::Source &source, bool parenthesize);

private:
    void emit(const Bound::TableScan &scan, const std::string &alias);
    void emit(const Bound::DerivedQuery &derived, const std::string &alias);
    void emit(const Bound::ValueRows &values, const std::string &alias);
    void emit(const Bound::GeneratedRows &rows, const std::string &alias);
    void emit(const Bound::ProvidedRows &rows, const std::string &alias);
    void emit(const Bound::RecursiveRows &rows, const std::string &alias);
    void emit(const Bound::RecursiveReference &reference, const std::string &alias);
    void emit(const Bound::JoinedSources &join, const std::string &);

    StatementText &m_text;
    QueryEmitter &m_queries;
};

} // namespace SampleServer
