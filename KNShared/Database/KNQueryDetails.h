#pragma once

#include <QMetaType>
#include <QString>

/// A range of a text: start and length in UTF-16 units.
struct KNRange
{
    static constexpr qsizetype NotFound = -1;

    qsizetype location = NotFound;
    qsizetype length = NotFound;

    bool isFound() const { return location != NotFound; }
    friend bool operator==(const KNRange &, const KNRange &) = default;
};
Q_DECLARE_METATYPE(KNRange)

/// One batch of an editor text.
struct KNQueryDetails
{
    QString targetQuery;          ///< the text sent to the server
    KNRange queryRange;           ///< the batch's range in the editor text
    quint64 lineNumberOffset = 0; ///< line feeds of the editor text before the batch
    quint32 repeatCount = 1;      ///< number of consecutive executions
};
