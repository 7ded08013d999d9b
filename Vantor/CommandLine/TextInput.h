#pragma once

#include "Foundation/KNError.h"

#include <QString>

#include <optional>

/// The text of a file; "-" and null are standard input. UTF-8, or UTF-16 with or without a byte-order mark.
/// Never null; empty, with an error, when it cannot be read or is no text.
std::optional<QString> readTextInput(const QString &file, KNError *error);
