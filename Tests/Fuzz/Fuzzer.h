#pragma once

#include <QString>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

/// One input, as libFuzzer calls it. Returns 0; aborts when something is wrong.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

inline void require(bool condition)
{
    if (!condition)
        std::abort();
}

/// Text with everything that a text can hold: UTF-8 where it is valid, and otherwise every byte a character.
inline QString fuzzText(const std::uint8_t *data, std::size_t size)
{
    const auto *bytes = reinterpret_cast<const char *>(data);
    const QString text = QString::fromUtf8(bytes, static_cast<qsizetype>(size));
    return text.contains(QChar(QChar::ReplacementCharacter))
               ? QString::fromLatin1(bytes, static_cast<qsizetype>(size))
               : text;
}
