#include "Engine/Run/ParseOnlyOption.h"
#include "Types/Text.h"

#include <algorithm>

namespace SampleServer {

namespace {

class ParseOnlySearch
{
public:
    void visit(const std::vector<Ast::StatementPtr> &statements)
    {
        for (const Ast::StatementPtr &statement : statements)
            visit(statement);
    }

    std::optional<bool> found;

private:
    void visit(const Ast::StatementPtr &statement)
    {
        if (!statement)
            return;
        const auto &node = statement->node;
        if (const auto *option = std::get_if<Ast::SetOption>(&node)) {
            if (std::find(option->options.begin(), option->options.end(), "PARSEONLY") !=
                option->options.end())
                found = asciiUpper(option->value) == "ON";
        } else if (const auto *condition = std::get_if<Ast::If>(&node)) {
            visit(condition->then);
            visit(condition->otherwise);
        } else if (const auto *loop = std::get_if<Ast::While>(&node)) {
            visit(loop->body);
        } else if (const auto *block = std::get_if<Ast::Block>(&node)) {
            visit(block->statements);
        } else if (const auto *attempt = std::get_if<Ast::TryCatch>(&node)) {
            visit(attempt->body.statements);
            visit(attempt->handler.statements);
        }
    }
};

} // namespace

std::optional<bool> parseOnlyOption(const std::vector<Ast::StatementPtr> &statements)
{
    ParseOnlySearch search;
    search.visit(statements);
    return search.found;
}

} // namespace SampleServer
