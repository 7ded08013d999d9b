#include "Scripts/MSSQLScriptLoaders.h"

#include <functional>
#include <map>

namespace {

using Generator = std::function<KNQueryLoaderPtr(const QString &name, const QString &inSchema)>;

/// The generators that there are.
const std::map<MSSQLScript, Generator> &generators()
{
    static const std::map<MSSQLScript, Generator> known;
    return known;
}

} // namespace

namespace MSSQLScriptLoaders {

KNQueryLoaderPtr loader(MSSQLScript script, const QString &name, const QString &inSchema)
{
    const auto generator = generators().find(script);
    return generator == generators().end() ? nullptr : generator->second(name, inSchema);
}

} // namespace MSSQLScriptLoaders
