#pragma once

#include <TalIec61850Analysis/comtrade/ComtradeFormat.hpp>
#include <TalIec61850Analysis/comtrade/ComtradeStep.hpp>
#include <TalIec61850Analysis/time/CaptureTime.hpp>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace TalIec61850Analysis {

/// Which side of the instrument transformer values are on.
enum class ComtradeSide : std::uint8_t { primary, secondary };

/// What the time source told of leap seconds in the record.
enum class ComtradeLeapSecond : std::uint8_t { none = 0, added = 1, removed = 2, unknown = 3 };

/// An analog channel. Texts may be any: they are written without commas, control characters and
/// what is not ASCII, each of which becomes `_`, and cut at their limit. Micro, degree, square and
/// cube become `u`, `deg`, `2` and `3`. Two names that differ in these alone become the same.
struct ComtradeAnalog {
    /// Its name; up to 64 characters are written.
    std::string id;
    /// The phase; up to 2 characters are written.
    std::string phase;
    /// The component that is monitored; up to 64 characters are written.
    std::string component;
    /// The unit of `scale * sample + offset`; up to 32 characters. `raw` is written for an empty
    /// one, since the format asks for a unit.
    std::string unit;
    /// What a sample is multiplied by to be in the unit; a finite number.
    double scale = 1;
    /// What is added to that, in the unit; a finite number.
    double offset = 0;
    /// How samples are stored: see `stepForIntegers`, `stepForReals`.
    ComtradeStep step;
    /// The primary part of the transformer's ratio; a finite number.
    double primary = 1;
    /// The secondary part of the transformer's ratio; a finite number.
    double secondary = 1;
    /// Which side the values are on.
    ComtradeSide side = ComtradeSide::primary;
};

/// A digital channel; of its texts the same is true as of an analog channel's.
struct ComtradeDigital {
    /// Its name; up to 64 characters are written.
    std::string id;
    /// The phase; up to 2 characters are written.
    std::string phase;
    /// The component that is monitored; up to 64 characters are written.
    std::string component;
    /// Its state in normal operation.
    bool normal = false;
};

/// How often rows follow each other: `samples` of them in `seconds`.
struct ComtradeRate {
    /// Not 0.
    std::uint32_t samples = 4000;
    /// Not 0; more than 1 for rates below one in a second, and for fractions.
    std::uint32_t seconds = 1;

    /// Member by member.
    friend bool operator==(ComtradeRate const&, ComtradeRate const&) = default;
};

/// All of a COMTRADE record but its samples. There is one sampling rate; a row that was lost is
/// written too, and its samples are marked as missing.
struct ComtradeRecord {
    /// Edition and kind of data.
    ComtradeFormat format;
    /// The name of the station; up to 64 characters are written, see ComtradeAnalog.
    std::string station;
    /// The name of the recording device; up to 64 characters are written.
    std::string device;
    /// The analog channels, in the sequence of the columns.
    std::vector<ComtradeAnalog> analogs;
    /// The digital channels, in the sequence of the columns.
    std::vector<ComtradeDigital> digitals;
    /// The nominal frequency of the network in hertz, if it is known; a finite number.
    std::optional<double> lineFrequency;
    /// How often rows follow each other.
    ComtradeRate rate;
    /// How many rows there are, those without samples included; not 0.
    std::uint64_t rows = 0;
    /// The time of the first row. It is written in nanoseconds where it is no whole microsecond
    /// and the edition is that of 2013; else what is below a microsecond is cut.
    CaptureTime start;
    /// The time of the trigger, with as many decimals as the start; what is below is cut.
    CaptureTime trigger;
    /// The time quality code: 0 locked to UTC; 1 to 11 not locked, but within 1 ns to 10 s; 15 not
    /// reliable. The edition of 2013 has it.
    std::uint8_t timeQuality = 15;
    /// What is known of leap seconds: the edition of 2013 has it.
    ComtradeLeapSecond leapSecond = ComtradeLeapSecond::unknown;
};

}  // namespace TalIec61850Analysis
