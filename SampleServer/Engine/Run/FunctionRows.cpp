#include "Engine/Run/FunctionRows.h"
#include "Engine/Storage/SqliteCodec.h"

namespace SampleServer {

namespace {

using TableFunction = std::function<std::vector<std::vector<Value>>(std::span<const Value>)>;

class FunctionCursor : public RowCursor
{
public:
    FunctionCursor(const Module &module, const TableFunction &function)
        : m_module(module)
        , m_function(function)
    {
    }

    void start(std::span<sqlite3_value *> arguments, const Equality *) override
    {
        std::vector<Value> values(arguments.size());
        for (std::size_t i = 0; i < values.size(); ++i)
            readArgument(arguments[i], m_module.parameters[i].type, values[i]);
        m_rows = m_function(values);
        m_at = 0;
    }
    void next() override { ++m_at; }
    bool atEnd() const override { return m_at >= m_rows.size(); }
    void column(sqlite3_context *context, int index) override
    {
        const auto place = static_cast<std::size_t>(index);
        if (place < m_module.columns.size())
            returnValue(context, m_rows[m_at][place], m_module.columns[place].type);
    }

private:
    const Module &m_module;
    const TableFunction &m_function;
    std::vector<std::vector<Value>> m_rows;
    std::size_t m_at = 0;
};

class FunctionRows : public RowProvider
{
public:
    FunctionRows(ModulePtr module, TableFunction function)
        : m_module(std::move(module))
        , m_function(std::move(function))
    {
    }
    std::unique_ptr<RowCursor> open(SqliteConnection &) const override
    {
        return std::make_unique<FunctionCursor>(*m_module, m_function);
    }

private:
    const ModulePtr m_module;
    const TableFunction m_function;
};

} // namespace

std::shared_ptr<const RowProvider> rowsOfFunction(const EvaluationContext &context, ModulePtr module)
{
    return std::make_shared<const FunctionRows>(module, [&context, module](std::span<const Value> arguments) {
        return context.callTableFunction(*module, arguments);
    });
}

} // namespace SampleServer
