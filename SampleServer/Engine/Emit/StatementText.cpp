#include "Engine/Emit/StatementText.h"

namespace SampleServer {

using namespace Bound;

void StatementText::parameter(EmittedParameter parameter)
{
    text("?");
    m_result.parameters.push_back(std::move(parameter));
}

void StatementText::argument(const Column &node, const Expression &expression)
{
    std::size_t place = 0;
    for (; place < m_arguments->size(); ++place) {
        const auto &known = std::get<Column>((*m_arguments)[place]->node);
        if (known.source == node.source && known.name == node.name)
            break;
    }
    if (place == m_arguments->size())
        m_arguments->push_back(std::make_shared<const Expression>(expression));
    EmittedParameter result;
    result.argument = static_cast<int>(place);
    parameter(std::move(result));
}

} // namespace SampleServer
