#pragma once

#include "Foundation/KNError.h"

#include <QCommandLineParser>

/// The option --format, whose values are the formats that ResultFormat offers for a terminal.
namespace FormatOption {

QCommandLineOption option();
/// The format's name, "table" by default; null, with an error, for an unknown one.
QString from(const QCommandLineParser &parser, KNError *error);

} // namespace FormatOption
