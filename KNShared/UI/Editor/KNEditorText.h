#pragma once

#include "UI/Editor/KNScintilla.h"

#include <QString>

/// The text of an editor, which keeps it as UTF-8 and counts in bytes, in the house's UTF-16 units.
namespace KNEditorText {

/// Bytes that one unit takes as UTF-8; the halves of a surrogate pair take two each.
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

/// The text between two positions in bytes, with every character of it, byte order marks and NULs included.
inline QString text(const QsciScintilla &editor, qsizetype start, qsizetype end)
{
    if (start >= end)
        return QStringLiteral("");
    const auto *const bytes = reinterpret_cast<const char *>(
        editor.SendScintilla(QsciScintillaBase::SCI_GETRANGEPOINTER, static_cast<unsigned long>(start),
                             static_cast<long>(end - start)));
    const QByteArrayView piece(bytes, end - start);
    const QString decoded = QString::fromUtf8(piece);
    // Qt takes a mark at the beginning for the text's signature.
    return piece.startsWith("\xef\xbb\xbf") ? QChar(QChar::ByteOrderMark) + decoded : decoded;
}

} // namespace KNEditorText
