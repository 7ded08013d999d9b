#include "Wire/ResultWriter.h"

#include "MemoryTransport.h"

#include <functional>
#include <gtest/gtest.h>

using namespace SampleServer;

namespace {

std::string written(TdsVersion version, const std::function<void(ResultWriter &)> &calls)
{
    MemoryTransport transport;
    PacketWriter out(transport);
    ResultWriter results(out, version);
    calls(results);
    out.endMessage();
    return hex(payloadOf(transport.written));
}

/// A row of nullable ints, written after its columns.
std::string intRow(TdsVersion version, const std::vector<Value> &values)
{
    MemoryTransport transport;
    PacketWriter out(transport);
    ResultWriter results(out, version);
    results.columns(std::vector<ColumnInfo>(values.size(), ColumnInfo{"", {TypeId::Int}}));
    out.endMessage();
    transport.written.clear();
    results.row(values);
    out.endMessage();
    return hex(payloadOf(transport.written));
}

const Value One = std::int64_t{1};

} // namespace

TEST(ResultWriter, ColumnsCarryTheirFlagsAndNames)
{
    const auto columns = [](ResultWriter &results) {
        ColumnInfo plain{"é", {TypeId::Int}, false};
        ColumnInfo full{"", {TypeId::Int}, true, true, true, true};
        results.columns({plain, full});
    };
    EXPECT_EQ(written(TdsVersion::V72, columns),
              "81 02 00 00 00 00 00 00 00 38 01 E9 00 00 00 00 00 35 00 26 04 00");
    EXPECT_EQ(written(TdsVersion::V71, columns), "81 02 00 00 00 00 00 38 01 E9 00 00 00 35 00 26 04 00");
}

TEST(ResultWriter, RowsUseANullBitmapSince73BWhenShorter)
{
    const std::vector<Value> mostlyNull(9, Value());
    EXPECT_EQ(intRow(TdsVersion::V73B, mostlyNull), "D2 FF 01");
    EXPECT_EQ(intRow(TdsVersion::V74, mostlyNull), "D2 FF 01");
    EXPECT_EQ(intRow(TdsVersion::V73A, mostlyNull), "D1 00 00 00 00 00 00 00 00 00");
    EXPECT_EQ(intRow(TdsVersion::V74, {One, Value(), Value()}), "D2 06 04 01 00 00 00");
}

TEST(ResultWriter, RowsUseNoNullBitmapWhenItIsNotShorter)
{
    EXPECT_EQ(intRow(TdsVersion::V74, {One, Value()}), "D1 04 01 00 00 00 00");
    EXPECT_EQ(intRow(TdsVersion::V74, {One, One}), "D1 04 01 00 00 00 04 01 00 00 00");
}

TEST(ResultWriter, ARowOfAnotherLengthThanItsColumnsIsRefused)
{
    written(TdsVersion::V74, [](ResultWriter &results) {
        results.columns({ColumnInfo{"a", {TypeId::Int}}});
        EXPECT_THROW(results.row(std::vector<Value>{One, One}), std::logic_error);
    });
}

TEST(ResultWriter, AValueOfAnotherTypeThanItsColumnIsRefused)
{
    written(TdsVersion::V74, [](ResultWriter &results) {
        results.columns({ColumnInfo{"a", {TypeId::Int}}});
        EXPECT_THROW(results.row(std::vector<Value>{std::string("text")}), std::bad_variant_access);
    });
}

TEST(ResultWriter, ComputeRowsFollowTheirAnnouncement)
{
    using Function = ComputeColumn::Function;
    const auto compute = [](ResultWriter &results) {
        results.computeColumns(1,
                               {{Function::Sum, 2, {TypeId::Int}},
                                {Function::Count, 1, {TypeId::Int}},
                                {Function::Avg, 1, {TypeId::Int}},
                                {Function::Min, 1, {TypeId::Int}},
                                {Function::Max, 1, {TypeId::Int}}},
                               {3});
        results.computeRow(1, std::vector<Value>{One, One, Value(), Value(), One});
    };
    EXPECT_EQ(written(TdsVersion::V71, compute),
              "88 05 00 01 00 01 03 00 "
              "4D 02 00 00 00 01 00 26 04 00 4B 01 00 00 00 01 00 26 04 00 4F 01 00 00 00 01 00 26 04 00 "
              "51 01 00 00 00 01 00 26 04 00 52 01 00 00 00 01 00 26 04 00 "
              "D3 01 00 04 01 00 00 00 04 01 00 00 00 00 00 04 01 00 00 00");
}

TEST(ResultWriter, AComputeRowThatWasNotAnnouncedIsRefused)
{
    written(TdsVersion::V74, [](ResultWriter &results) {
        EXPECT_THROW(results.computeRow(1, std::vector<Value>{One}), std::logic_error);
    });
}

TEST(ResultWriter, ReturnValuesCarryOrdinalNameAndValue)
{
    EXPECT_EQ(written(TdsVersion::V72,
                      [](ResultWriter &results) { results.returnValue(2, "@a", {TypeId::Int}, One); }),
              "AC 02 00 02 40 00 61 00 01 00 00 00 00 01 00 26 04 04 01 00 00 00");
}
