#pragma once

#include <QLocale>
#include <QString>

/// A count with thousands separators: "1,234". Any thread.
inline QString KNCountText(qint64 count)
{
    return QLocale(QLocale::English, QLocale::UnitedStates).toString(count);
}
