#pragma once

#include "Database/KNScriptRun.h"
#include "Foundation/KNError.h"

#include <QCommandLineOption>

#include <optional>

class QCommandLineParser;

/// The option --on-error.
namespace OnErrorOption {

QCommandLineOption option();
/// "stop" by default; nullopt, with an error, for an unknown value.
std::optional<KNOnError> from(const QCommandLineParser &parser, KNError *error);

} // namespace OnErrorOption
