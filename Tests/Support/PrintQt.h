#pragma once

#include <QString>

#include <ostream>

/// Lets a failed expectation show Qt texts as text.
inline void PrintTo(const QString &text, std::ostream *stream)
{
    if (text.isNull())
        *stream << "nil";
    else
        *stream << '"' << text.toStdString() << '"';
}
