#pragma once

#include "Foundation/KNValue.h"
#include "KNSharedExport.h"

#include <QCoreApplication>
#include <QString>

#include <optional>

/// Reads the values that users type into cells and forms. Pure; any thread.
class KNSHARED_EXPORT KNTypedValue
{
    Q_DECLARE_TR_FUNCTIONS(KNTypedValue)

public:
    /// The kinds of values that columns accept.
    enum class Input {
        Text,
        Integer,
        Number, ///< exact or floating-point
        Boolean,
        Date,
        DateAndTime, ///< with an optional offset from UTC
        Time,
        Guid,
        Binary, ///< 0x and hexadecimal digits
    };

    /// Returns the value of a text. Dates and times become text in ISO 8601 form ("2024-02-29T13:45:00.123"),
    /// which servers read in the same way in every language; exact numbers keep every digit. Empty, with a
    /// sentence for the user in `problem`, if the text is no such value.
    static std::optional<KNValue> read(const QString &text, Input input, QString *problem);
};
