#pragma once

#include "Foundation/KNUtf8.h"
#include "UI/Editor/KNScintilla.h"

#include <QString>

/// Converts between an editor's UTF-8 text, measured in bytes, and UTF-16 units.
namespace KNEditorText {

/// The number of UTF-8 bytes of one UTF-16 unit; each half of a surrogate pair counts as two.
inline int utf8Length(QChar unit)
{
    const char16_t code = unit.unicode();
    return code < 0x80 ? 1 : code < 0x800 || unit.isSurrogate() ? 2 : 3;
}

inline qsizetype utf8Length(QStringView text)
{
    qsizetype bytes = 0;
    for (const QChar unit : text)
        bytes += utf8Length(unit);
    return bytes;
}

/// The complete text between two byte positions, including byte order marks and NULs.
inline QString text(const QsciScintilla &editor, qsizetype start, qsizetype end)
{
    if (start >= end)
        return QStringLiteral("");
    const auto *const bytes = reinterpret_cast<const char *>(
        editor.SendScintilla(QsciScintillaBase::SCI_GETRANGEPOINTER, static_cast<unsigned long>(start),
                             static_cast<long>(end - start)));
    return KNTextFromUtf8(QByteArrayView(bytes, end - start));
}

} // namespace KNEditorText
