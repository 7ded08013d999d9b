#include "Engine/SystemCatalog.h"
#include "Engine/Parser.h"
#include "Engine/TypeRules.h"
#include "Types/Collation.h"

#include <map>
#include <mutex>

namespace SampleServer {

namespace {

struct SystemViews
{
    SystemViews()
    {
        for (const std::string_view text :
             {objectViewsText(), serverViewsText(), informationSchemaText(), compatibilityViewsText()})
            for (std::size_t at = 0; at < text.size();) {
                const std::size_t end = std::min(text.find("\nGO\n", at), text.size());
                add(text.substr(at, end - at));
                at = end + 4;
            }
    }

    void add(std::string_view text)
    {
        auto statements = parseBatch(text, {});
        const auto &node = std::get<Ast::CreateModule>(statements.at(0)->node);
        auto view = std::make_shared<Module>(node.definition->kind);
        view->id = -static_cast<std::int64_t>(all.size()) - 1;
        view->schema = node.definition->name.qualifier(1);
        view->name = node.definition->name.object();
        view->text = node.text;
        view->definition = node.definition;
        for (const Ast::ParameterDefinition &parameter : node.definition->parameters)
            view->parameters.push_back({parameter.name, resolveType(parameter.type, TypePlace::Declaration),
                                        nullptr, nullptr, false, false});
        byName[foldedName(view->schema) + '.' + foldedName(view->name)] = view;
        all.push_back(std::move(view));
    }

    std::map<std::string, ModulePtr> byName;
    std::vector<ModulePtr> all;
};

const SystemViews &views()
{
    static const SystemViews instance;
    return instance;
}

} // namespace

ModulePtr findSystemView(std::string_view schema, std::string_view name)
{
    const auto found = views().byName.find(foldedName(schema) + '.' + foldedName(name));
    return found == views().byName.end() ? nullptr : found->second;
}

const std::vector<ModulePtr> &systemViews()
{
    return views().all;
}

} // namespace SampleServer
