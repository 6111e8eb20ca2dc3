#include <uni_units/unit_table.h>

#include <uni_testing/assert_capture.h>

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>

using namespace units::simple;

namespace {

std::string thrownMessage(const std::function<void()>& f)
{
    try {
        f();
    } catch (const std::exception& e) {
        return e.what();
    }
    return "no exception";
}

} // namespace

TEST(UnitTable, StandardTableHasEveryBaseUnitUnderItsIdentifier)
{
    UnitTable table;
    table.addStandardUnits();
    const std::vector<std::pair<const char*, int>> names = {
        {"m", 0},   {"g", 1},      {"s", 2},   {"A", 3},   {"Hz", 5},     {"W", 6},
        {"V", 7},   {"\u03a9", 8}, {"Ohm", 8}, {"R", 8},   {"\u2126", 8}, {"va", 9},
        {"VA", 10}, {"Ws", 11},    {"J", 11},  {"Ah", 12}, {"Bd", 13},    {"Baud", 13}};
    for (const auto& [name, id] : names) {
        const FullUnitInfo* info = table.find(name);
        ASSERT_NE(info, nullptr) << name;
        EXPECT_EQ(info->id, id) << name;
        EXPECT_EQ(info->kind, KIND_BASE) << name;
    }
    EXPECT_EQ(table.find("4"), nullptr);
}

TEST(UnitTable, EveryPrefixSpellingWithEveryName)
{
    UnitTable table;
    table.addStandardUnits();
    for (const std::int32_t exponent : UnitTable::prefixExponents()) {
        for (const std::string& prefix : UnitTable::prefixSpellings(exponent)) {
            for (const char* name : {"V", "Ohm", "\u2126", "Baud", "J"}) {
                const FullUnitInfo* info = table.find(prefix + name);
                ASSERT_NE(info, nullptr) << prefix << name;
                EXPECT_EQ(info->kind, KIND_DECIMAL) << prefix << name;
                EXPECT_EQ(info->exponent, exponent) << prefix << name;
            }
        }
    }
    EXPECT_EQ(UnitTable::prefixExponents().size(), 20u);
    // No prefixed spelling of one unit may shadow another unit's entry.
    const std::vector<std::pair<const char*, int>> units = {
        {"m", 0},      {"g", 1},   {"s", 2},   {"A", 3},      {"Hz", 5}, {"W", 6},   {"V", 7},
        {"\u03a9", 8}, {"Ohm", 8}, {"R", 8},   {"\u2126", 8}, {"va", 9}, {"VA", 10}, {"Ws", 11},
        {"J", 11},     {"Ah", 12}, {"Bd", 13}, {"Baud", 13},  {"Wh", 11}};
    for (const auto& [name, id] : units)
        for (const std::int32_t exponent : UnitTable::prefixExponents())
            for (const std::string& prefix : UnitTable::prefixSpellings(exponent)) {
                const FullUnitInfo* info = table.find(prefix + name);
                ASSERT_NE(info, nullptr) << prefix << name;
                EXPECT_EQ(info->id, id) << prefix << name;
            }
    EXPECT_EQ(UnitTable::prefixSpellings(-6), (std::vector<std::string>{"micro", "\u03bc", "\u00b5", "u"}));
}

TEST(UnitTable, WattHoursFoldThePrefixIntoTheScale)
{
    UnitTable table;
    table.addStandardUnits();
    const FullUnitInfo* wh = table.find("Wh");
    ASSERT_NE(wh, nullptr);
    EXPECT_EQ(wh->id, 11);
    EXPECT_EQ(wh->kind, KIND_SCALED);
    EXPECT_EQ(wh->scale, 0.0002777777777777778);
    const FullUnitInfo* kwh = table.find("kWh");
    ASSERT_NE(kwh, nullptr);
    EXPECT_EQ(kwh->kind, KIND_SCALED);
    EXPECT_DOUBLE_EQ(kwh->scale, 0.0002777777777777778 / 1000);
    const FullUnitInfo* mwh = table.find("milliWh");
    ASSERT_NE(mwh, nullptr);
    EXPECT_DOUBLE_EQ(mwh->scale, 0.0002777777777777778 * 1000);
}

TEST(UnitTable, FirstSpellingWinsOnACollision)
{
    UnitTable table;
    table.addUnit(FullUnitInfo{{"X"}, 1, KIND_BASE, 0, 1.0, 0.0});
    table.addUnit(FullUnitInfo{{"X", "Y"}, 2, KIND_BASE, 0, 1.0, 0.0});
    EXPECT_EQ(table.size(), 2u);
    EXPECT_EQ(table.find("X")->id, 1);
    EXPECT_EQ(table.find("Y")->id, 2);
}

TEST(UnitTableFailures, AUnitWithoutNamesAssertsWithoutMessage)
{
    uni_testing::AssertCapture capture;
    UnitTable table;
    table.addUnit(FullUnitInfo{});
    EXPECT_TRUE(capture.fired("!info.names.empty()"));
    EXPECT_EQ(capture.records().at(0).message, "");
    EXPECT_EQ(table.size(), 0u);
}

TEST(UnitTableFailures, PrefixingErrorsNameTheirCause)
{
    UnitTable table;
    EXPECT_EQ(thrownMessage([] { UnitTable::prefixSpellings(4); }), "invalid map<K, T> key");
    EXPECT_EQ(thrownMessage([&] {
                  table.addPrefixedForms(FullUnitInfo{{"V"}, 7, KIND_BASE, 0, 1, 0}, {5});
              }),
              "invalid map<K, T> key");
    EXPECT_EQ(thrownMessage([&] {
                  table.addPrefixedForms(FullUnitInfo{{"F"}, 20, KIND_SCALED_OFFSET, 0, 1.8, 32}, {3});
              }),
              "not implemented");
    EXPECT_EQ(thrownMessage([&] {
                  table.addPrefixedForms(FullUnitInfo{{"kV"}, 7, KIND_DECIMAL, 3, 1, 0}, {3});
              }),
              "Unknown base unit");
    EXPECT_EQ(table.size(), 0u);
}
