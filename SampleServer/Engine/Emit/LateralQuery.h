#pragma once

#include "Engine/Emit/Emitter.h"
#include "Engine/Storage/RowProvider.h"

namespace SampleServer {

/// A query that looks at the current row of other sources, as CROSS APPLY has it: run anew for each such row,
/// whose values are its arguments.
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
    const Bound::QueryPtr m_query; ///< what the statement's parameters belong to
    const Emitted m_statement;
};

} // namespace SampleServer
