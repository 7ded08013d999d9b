#pragma once

#include "KNSharedExport.h"
#include "QueryLoader/KNQueryLoader.h"

#include <functional>

/// Loads the texts of query loaders for callers on the main thread.
namespace KNQueryLoading {

/// Receives a text, null if there is none, and the report on it.
using Use = std::function<void(const QString &text, const KNQueryReport &report)>;

/// Starts the loader and replaces its delegate. `use` is called once on the main thread: before this returns
/// if the loader delivers on the main thread at once, otherwise later. It must check whether the objects it
/// uses still exist. On the main thread.
KNSHARED_EXPORT void load(const KNQueryLoaderPtr &loader, const VantorDBC &details, Use use);

} // namespace KNQueryLoading
