#pragma once

#include <QString>

/// The text of a literal in UTF-8.
inline QString q(const char *utf8)
{
    return QString::fromUtf8(utf8);
}
