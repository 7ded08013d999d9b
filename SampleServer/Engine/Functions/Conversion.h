#pragma once

#include "Types/DateTime.h"
#include "Types/SqlType.h"
#include "Types/Value.h"

#include <string>

namespace SampleServer {

/// Whether T-SQL converts one type to another, and whether implicitly.
enum class ConversionKind { NotAllowed, Explicit, Implicit };
ConversionKind conversionKind(TypeId from, TypeId to);

struct ConversionOptions
{
    int style = 0; ///< the third argument of CONVERT
    DateOrder dateOrder = DateOrder::MonthDayYear;
};

/// Converts a value like CAST and CONVERT: text and binary are truncated to the length of `to`, fixed lengths
/// are padded. NULL stays NULL. Throws EngineError 220, 232, 241, 242, 245, 529, 8114, 8115 and others.
Value convertValue(const Value &value, const SqlType &from, const SqlType &to,
                   const ConversionOptions &options = {});

// One function per family of target types, called by convertValue(). `value` is not NULL and `from` is not
// sql_variant.
Value convertToInteger(const Value &value, const SqlType &from, const SqlType &to);
Value convertToFloat(const Value &value, const SqlType &from, const SqlType &to);
Value convertToDecimal(const Value &value, const SqlType &from, const SqlType &to);
Value convertToMoney(const Value &value, const SqlType &from, const SqlType &to);
Value convertToDateTime(const Value &value, const SqlType &from, const SqlType &to,
                        const ConversionOptions &options);
Value convertToText(const Value &value, const SqlType &from, const SqlType &to, int style);
Value convertToBinary(const Value &value, const SqlType &from, const SqlType &to, int style);

/// The complete text of a value, before it is truncated to a column's length.
std::string textOf(const Value &value, const SqlType &from, int style);
/// The numeric value of a datetime or smalldatetime in arithmetic: days since 1900-01-01.
double toDayNumber(const DateTimeValue &value);
DateTimeValue fromDayNumber(double days);

} // namespace SampleServer
