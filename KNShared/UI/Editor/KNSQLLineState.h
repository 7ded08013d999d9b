#pragma once

#include <QString>

#include <algorithm>

/// The elements open at the end of a line, packed into the number that the editor stores per line.
struct KNSQLLineState
{
    enum Piece { Nothing, String, QuotedName, BracketedName, Comment };

    Piece piece = Nothing;
    int commentDepth = 0; ///< number of open block comments
    int blockDepth = 0;   ///< number of open BEGIN and CASE blocks

    static KNSQLLineState unpacked(int number)
    {
        return {static_cast<Piece>(number & 7), (number >> 3) & 0xfff, (number >> 15) & 0x7fff};
    }
    int packed() const
    {
        return piece | std::min(commentDepth, 0xfff) << 3 | std::min(blockDepth, 0x7fff) << 15;
    }
    /// Returns a prefix text that makes a tokenizer continue the open element.
    QString opening() const
    {
        switch (piece) {
        case String:
            return QStringLiteral("'");
        case QuotedName:
            return QStringLiteral("\"");
        case BracketedName:
            return QStringLiteral("[");
        case Comment:
            return QStringLiteral("/*").repeated(commentDepth);
        case Nothing:
            break;
        }
        return QString();
    }
    int foldDepth() const { return blockDepth + (piece == Comment ? 1 : 0); }
};
