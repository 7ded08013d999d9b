#pragma once

#include "Foundation/KNError.h"

#include <QString>

#include <optional>

/// Reads the text of a file; "-" and null mean standard input. UTF-8, or UTF-16 with or without a byte-order
/// mark. The text is never null; nullopt, with an error, if the file cannot be read or is not text.
std::optional<QString> readTextInput(const QString &file, KNError *error);
