#pragma once

#include "KNSharedExport.h"

#include <QString>

#include <optional>

/// A date, a time of day or both as files contain them. Pure; any thread.
struct KNSHARED_EXPORT KNImportDateText
{
    QString date;     ///< "2024-02-29"; empty without one
    QString time;     ///< "13:45:00"; empty without one
    QString fraction; ///< the digits of the seconds, at most 7, without trailing zeros
    QString offset;   ///< "+02:00" or "Z"; empty without one
    int year = 0;

    bool isMidnight() const;

    /// Reads ISO 8601: "2024-02-29", "2024-02-29 13:45", "2024-02-29T13:45:00.1234567+02:00" and "13:45:00".
    /// With a format, one of Qt such as "d.M.yyyy HH:mm", only what has that format. Empty if there is no
    /// such date or time.
    static std::optional<KNImportDateText> read(const QString &text, const QString &format);
};
