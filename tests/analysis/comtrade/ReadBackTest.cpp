// Any record that can be written reads back.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <TalIec61850Analysis/comtrade/ComtradeConfiguration.hpp>
#include <TalIec61850Analysis/comtrade/ComtradeFile.hpp>
#include <TalIec61850Analysis/comtrade/ComtradeLimit.hpp>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "analysis/comtrade/EncodedComtrade.hpp"
#include "support/Bytes.hpp"
#include "support/ComtradeReader.hpp"

namespace TalTest::ReadBackTest {
namespace {

using namespace TalIec61850Analysis;

double anyNumber() {
    return static_cast<double>(*rc::gen::arbitrary<int>()) / *rc::gen::inRange(1, 1000);
}

ComtradeRecord anyRecord() {
    ComtradeRecord record;
    record.format = *rc::gen::elementOf(everyFormat());
    record.station = *rc::gen::arbitrary<std::string>();
    record.device = *rc::gen::arbitrary<std::string>();
    record.analogs.resize(*rc::gen::inRange<std::size_t>(0, 5));
    for (ComtradeAnalog& analog : record.analogs) {
        analog.id = *rc::gen::arbitrary<std::string>();
        analog.phase = *rc::gen::arbitrary<std::string>();
        analog.component = *rc::gen::arbitrary<std::string>();
        analog.unit = *rc::gen::arbitrary<std::string>();
        analog.scale = anyNumber();
        analog.offset = anyNumber();
        analog.primary = anyNumber();
        analog.secondary = anyNumber();
        analog.side = *rc::gen::element(ComtradeSide::primary, ComtradeSide::secondary);
    }
    record.digitals.resize(*rc::gen::inRange<std::size_t>(record.analogs.empty() ? 1 : 0, 40));
    for (ComtradeDigital& digital : record.digitals) {
        digital.id = *rc::gen::arbitrary<std::string>();
        digital.normal = *rc::gen::arbitrary<bool>();
    }
    record.rate = {.samples = *rc::gen::inRange<std::uint32_t>(1, 20'000),
                   .seconds = *rc::gen::inRange<std::uint32_t>(1, 10)};
    record.rows = *rc::gen::inRange<std::uint64_t>(1, 50);
    record.start = captureTimeOf(*rc::gen::arbitrary<std::int64_t>() / 2);
    record.trigger = captureTimeOf(*rc::gen::arbitrary<std::int64_t>() / 2);
    record.timeQuality = *rc::gen::inRange<std::uint8_t>(0, 12);
    record.leapSecond = *rc::gen::element(ComtradeLeapSecond::none, ComtradeLeapSecond::unknown);
    return record;
}

struct AnyColumns {
    std::vector<std::vector<std::int32_t>> samples;
    std::vector<std::vector<std::uint8_t>> missing;
    std::vector<std::vector<std::uint8_t>> states;
    ComtradeColumns columns;
};

/// Samples that the record's steps are chosen for.
AnyColumns anyColumns(ComtradeRecord& record) {
    AnyColumns made;
    auto const rows = static_cast<std::size_t>(record.rows);
    for (ComtradeAnalog& analog : record.analogs) {
        auto const bits = *rc::gen::inRange(0, 32);
        std::vector<std::int32_t> column;
        for (std::size_t row = 0; row < rows; ++row) {
            // The lowest number is the missing mark of binary32.
            column.push_back(std::max(*rc::gen::arbitrary<std::int32_t>() >> bits, -2147483647));
        }
        auto const [smallest, largest] = std::minmax_element(column.begin(), column.end());
        analog.step = stepForIntegers(record.format, *smallest, *largest);
        made.samples.push_back(std::move(column));
        made.missing.push_back(*rc::gen::container<std::vector<std::uint8_t>>(
            rows, rc::gen::inRange<std::uint8_t>(0, 2)));
    }
    for (std::size_t i = 0; i < record.digitals.size(); ++i) {
        made.states.push_back(*rc::gen::container<std::vector<std::uint8_t>>(
            rows, rc::gen::inRange<std::uint8_t>(0, 2)));
    }
    for (std::size_t i = 0; i < made.samples.size(); ++i) {
        made.columns.analogs.push_back({.samples = std::span<std::int32_t const>(made.samples[i]),
                                        .missing = made.missing[i]});
    }
    for (std::vector<std::uint8_t> const& states : made.states) {
        made.columns.digitals.emplace_back(states);
    }
    return made;
}

void expectRows(ComtradeRecord const& record, AnyColumns const& made, ReadComtrade const& read) {
    RC_ASSERT(read.rows.size() == record.rows);
    for (std::size_t row = 0; row < read.rows.size(); ++row) {
        for (std::size_t i = 0; i < record.analogs.size(); ++i) {
            auto const stored = read.rows[row].analogs[i];
            RC_ASSERT(stored.has_value() == (made.missing[i][row] == 0));
            ComtradeStep const step = record.analogs[i].step;
            double const sample = static_cast<double>(stored.value_or(0)) * step.size + step.middle;
            double const error = std::abs(sample - made.samples[i][row]);
            RC_ASSERT(!stored || error <= (step.size == 1 ? 0 : step.size / 2 * 1.000001));
        }
        for (std::size_t i = 0; i < record.digitals.size(); ++i) {
            RC_ASSERT(read.rows[row].digitals[i] == (made.states[i][row] != 0));
        }
    }
}

RC_GTEST_PROP(ComtradeRecords, ReadBackWhateverTheyHold, ()) {
    ComtradeRecord record = anyRecord();
    AnyColumns const made = anyColumns(record);
    RC_ASSERT(brokenLimit(record) == std::nullopt);
    ReadComtrade const read = readBack(record, made.columns);
    expectRows(record, made, read);
    for (std::size_t i = 0; i < record.analogs.size(); ++i) {
        ComtradeAnalog const& analog = record.analogs[i];
        RC_ASSERT(read.analogs[i].a == analog.scale * analog.step.size);
        RC_ASSERT(read.analogs[i].b == analog.offset + analog.scale * analog.step.middle);
        RC_ASSERT(read.analogs[i].primary == analog.primary);
        RC_ASSERT(read.analogs[i].secondary == analog.secondary);
    }
    auto const start = record.start.time_since_epoch();
    RC_ASSERT(
        std::chrono::nanoseconds(read.start) ==
        (read.isInNanoseconds ? start : std::chrono::floor<std::chrono::microseconds>(start)));
    RC_ASSERT(read.rate == static_cast<double>(record.rate.samples) / record.rate.seconds);
}

RC_GTEST_PROP(ComtradeRecords, ReadBackFromOneFile, ()) {
    ComtradeRecord record = anyRecord();
    record.format.edition = ComtradeEdition::of2013;
    AnyColumns const made = anyColumns(record);
    std::string const head = comtradeFileHead(record, *rc::gen::arbitrary<std::string>(),
                                              *rc::gen::arbitrary<std::string>());
    Bytes const data = encoded(record, made.columns).octets;
    expectRows(record, made,
               ComtradeReader::readFile(concat({Bytes(head.begin(), head.end()), data})));
}

}  // namespace
}  // namespace TalTest::ReadBackTest
