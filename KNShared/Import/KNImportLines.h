#pragma once

#include "Import/KNImportTextSource.h"

/// Cuts a text behind its line ends (LF, CR LF and CR), so that parsers that do not count lines know where
/// they are. Used by one thread at a time.
class KNImportLines
{
public:
    KNImportTextSource source;

    /// The next piece as UTF-8: up to the next line end, or the end of the buffer. Valid until the next call;
    /// empty at the end and with an error.
    QByteArrayView next(KNError *error);
    /// The line of the current piece, from 1, and the position of the piece in it, in bytes from 0.
    quint64 line() const { return m_line; }
    qsizetype offset() const { return m_offset; }

private:
    bool fill(KNError *error);

    QByteArray m_buffer;
    qsizetype m_position = 0;
    qsizetype m_pieceSize = 0;
    quint64 m_line = 1;
    qsizetype m_offset = 0;
    bool m_isLineOver = false;     ///< the current piece ends its line
    bool m_endsWithReturn = false; ///< with a CR whose LF may follow
};
