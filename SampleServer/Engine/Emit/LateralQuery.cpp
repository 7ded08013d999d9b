#include "Engine/Emit/LateralQuery.h"
#include "Engine/Storage/SqliteConnection.h"

namespace SampleServer {

namespace {

class LateralCursor : public RowCursor
{
public:
    LateralCursor(SqliteConnection &connection, const Emitted &emitted)
        : m_emitted(emitted)
        , m_statement(connection, emitted.sql)
    {
    }

    void start(std::span<sqlite3_value *> arguments, const Equality *) override
    {
        m_statement.reset();
        m_statement.bind(m_emitted.parameters, arguments);
        m_hasRow = m_statement.step();
    }
    void next() override { m_hasRow = m_statement.step(); }
    bool atEnd() const override { return !m_hasRow; }
    void column(sqlite3_context *context, int index) override { m_statement.copyColumn(index, context); }

private:
    const Emitted &m_emitted;
    SqliteStatement m_statement;
    bool m_hasRow = false;
};

} // namespace

std::unique_ptr<RowCursor> LateralQuery::open(SqliteConnection &connection) const
{
    return std::make_unique<LateralCursor>(connection, m_statement);
}

} // namespace SampleServer
