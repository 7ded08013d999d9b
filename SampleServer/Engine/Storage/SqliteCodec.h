#pragma once

#include "Types/SqlType.h"
#include "Types/Value.h"

#include <sqlite3.h>

// How values live in SQLite: in a form that SQLite compares, groups and sorts as the server would.
//   bit to bigint, money: integers (money in ten-thousandths)
//   decimal: up to 18 digits the integer without its point, else 16 bytes that sort as numbers
//   date types: integers (days or 100 ns ticks); datetimeoffset: text that sorts by UTC and carries its
//   offset text and xml: text under the collation tsql_text; uniqueidentifier: its bytes in sorting order
//   sql_variant: bytes that start with the type
namespace SampleServer {

void bindValue(sqlite3_stmt *statement, int index, const Value &value, const SqlType &type);
/// Reads a column of the current row; reuses the memory of `value`.
void readColumn(sqlite3_stmt *statement, int index, const SqlType &type, Value &value);
void readArgument(sqlite3_value *argument, const SqlType &type, Value &value);
void returnValue(sqlite3_context *context, const Value &value, const SqlType &type);

/// Converts a 128-bit number to 16 bytes that sort as numbers do, and back.
__extension__ typedef __int128 Int128;
std::array<std::uint8_t, 16> sortableBytes(Int128 number);
Int128 numberFromSortableBytes(const std::uint8_t *bytes);
/// Whether decimals of this precision are stored as 64-bit integers.
constexpr bool isSmallDecimal(int precision)
{
    return precision <= 18;
}

} // namespace SampleServer
