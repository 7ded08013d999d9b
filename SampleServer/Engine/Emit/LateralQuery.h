#pragma once

#include "Engine/Emit/Emitter.h"
#include "Engine/Storage/RowProvider.h"

namespace SampleServer {

/// A query that references the current row of other sources, as in CROSS APPLY. It runs for each of these
/// rows with their values as arguments.
class LateralQuery : public RowProvider
{
public:
    LateralQuery(Bound::QueryPtr query, Emitted statement)
        : m_query(std::move(query))
        , m_statement(std::move(statement))
    {
    }

    std::unique_ptr<RowCursor> open(SqliteConnection &connection) const override;

private:
    const Bound::QueryPtr m_query; ///< owns the objects of the statement's parameters
    const Emitted m_statement;
};

} // namespace SampleServer
