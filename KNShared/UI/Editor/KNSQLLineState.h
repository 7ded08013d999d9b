#pragma once

#include <QString>

#include <algorithm>

/// What is open at the end of a line, small enough for the number that the editor keeps with each line.
struct KNSQLLineState
{
    enum Piece { Nothing, String, QuotedName, BracketedName, Comment };

    Piece piece = Nothing;
    int commentDepth = 0; ///< how many block comments are open
    int blockDepth = 0;   ///< how many BEGINs and CASEs are open

    static KNSQLLineState unpacked(int number)
    {
        return {static_cast<Piece>(number & 7), (number >> 3) & 0xfff, (number >> 15) & 0x7fff};
    }
    int packed() const
    {
        return piece | std::min(commentDepth, 0xfff) << 3 | std::min(blockDepth, 0x7fff) << 15;
    }
    /// A text that, put before what follows, makes a tokenizer go on with the open piece.
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
