#pragma once

#include "KNSharedExport.h"

#include <QHash>
#include <QList>
#include <QString>

class QIODevice;

/// The parts of a date that a workbook's cell formats show.
class KNSHARED_EXPORT KNExcelStyles
{
public:
    enum class Kind { Number, Date, Time, DateAndTime };

    /// Reads xl/styles.xml.
    void read(QIODevice *device);
    /// The kind of the cell format with this index, as text; Number for an unknown one.
    Kind kindOf(QStringView style) const;

    /// The kind of a number format such as "yyyy\-mm\-dd hh:mm".
    static Kind kindOfFormat(const QString &format);
    /// A date as files contain it, for a day number: "2024-02-29", "13:45:00" or both with a "T". Null if the
    /// number is no date.
    static QString dateText(double serial, Kind kind, bool since1904);

private:
    static Kind builtIn(int format);

    QHash<int, Kind> m_formats; ///< the workbook's own number formats
    QList<Kind> m_cells;
};
