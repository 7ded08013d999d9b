#pragma once

#include "Import/KNImportLines.h"
#include "Import/KNImportReader.h"

#include <QList>

/// The rows that a parser makes of the pieces of a text, to be read one by one. Used by one thread.
class KNImportRowQueue
{
public:
    void append(KNImportRow row) { m_rows.append(std::move(row)); }
    /// Puts a row that was read back.
    void prepend(const KNImportRow &row) { m_rows.prepend(row); }

    /// Takes the next row, and feeds the parser until there is one; false at the end, and with an error.
    /// `feed(piece, error)` parses a piece, which is empty at the end of the text, and returns false with an
    /// error.
    template <typename Feed>
    bool next(KNImportLines &lines, const Feed &feed, KNImportRow *row, KNError *error)
    {
        while (m_rows.isEmpty()) {
            if (m_isFinished)
                return false;
            const QByteArrayView piece = lines.next(error);
            if (*error)
                return false;
            m_isFinished = piece.isEmpty();
            if (!feed(piece, error))
                return false;
        }
        *row = m_rows.takeFirst();
        return true;
    }

private:
    QList<KNImportRow> m_rows;
    bool m_isFinished = false;
};
