#pragma once

#include "KNSharedExport.h"

#include <QString>

#include <optional>

/// Texts of GUIDs.
namespace KNGuidText {

/// The 36 characters of a GUID, in upper case, of a text that is one with or without braces; empty for every
/// other text. Pure; any thread.
KNSHARED_EXPORT std::optional<QString> read(const QString &text);

} // namespace KNGuidText
