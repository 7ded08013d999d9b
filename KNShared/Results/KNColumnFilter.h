#pragma once

#include "KNSharedExport.h"

#include <QSet>
#include <QString>

/// A condition on the values of one column. A row meets it if its value contains the text and is one of the
/// chosen values.
struct KNSHARED_EXPORT KNColumnFilter
{
    qsizetype column = 0;
    QString text = {};          ///< case-insensitive; empty for any text
    bool choosesValues = false; ///< whether only the following values are shown
    QSet<QString> values = {};  ///< displayed texts
    bool includesNull = false;

    bool isPlain() const { return text.isEmpty() && !choosesValues; }
    friend bool operator==(const KNColumnFilter &, const KNColumnFilter &) = default;
};
