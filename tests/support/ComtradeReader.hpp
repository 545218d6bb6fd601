#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "support/Bytes.hpp"

namespace TalTest {

/// What a COMTRADE record breaks, and where: "cfg line 3: ...", "dat row 7: ...", "cff line 2:
/// ...".
struct ComtradeError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// An analog channel as its line in the configuration has it.
struct ReadAnalog {
    std::string id, phase, component, unit;
    double a = 0;
    double b = 0;
    double skew = 0;
    double lowest = 0;
    double highest = 0;
    double primary = 0;
    double secondary = 0;
    char side = ' ';
};

/// A digital channel as its line in the configuration has it.
struct ReadDigital {
    std::string id, phase, component;
    bool normal = false;
};

/// A row of the data.
struct ReadComtradeRow {
    std::uint64_t number = 0;
    /// None where it is marked as missing.
    std::optional<std::uint64_t> stamp;
    /// What is stored; none where it is marked as missing.
    std::vector<std::optional<std::int64_t>> analogs;
    std::vector<bool> digitals;
};

/// A COMTRADE record.
struct ReadComtrade {
    std::string station, device;
    int edition = 0;
    std::vector<ReadAnalog> analogs;
    std::vector<ReadDigital> digitals;
    std::optional<double> lineFrequency;
    double rate = 0;
    std::uint64_t lastRow = 0;
    /// In nanoseconds since 1970.
    std::int64_t start = 0;
    std::int64_t trigger = 0;
    /// Stamps, and both times, are in nanoseconds; else in microseconds.
    bool isInNanoseconds = false;
    /// ASCII, BINARY or BINARY32.
    std::string data;
    double multiplier = 0;
    /// The lines that only the edition of 2013 has; empty in others.
    std::string timeCode, localCode, timeQuality, leapSecond;
    std::vector<ReadComtradeRow> rows;
    /// The sections of a single file.
    std::string information, header;

    /// a * stored + b, of a row counted from 0; none where the sample is missing.
    [[nodiscard]] std::optional<double> value(std::size_t row, std::size_t analog) const;
};

/// Reads COMTRADE of the editions of 1999 and 2013, data in ASCII, BINARY and BINARY32, and one
/// sampling rate. It refuses what the editions do not allow, and also what is allowed and makes
/// programs fail: stamps and samples in ASCII that are empty, or a sampling rate of none.
class ComtradeReader {
public:
    /// A configuration alone; it has no rows.
    /// @throws ComtradeError  what is broken first
    [[nodiscard]] static ReadComtrade readConfiguration(std::string_view cfg);

    /// A configuration and the data that belong to it.
    /// @throws ComtradeError  what is broken first
    [[nodiscard]] static ReadComtrade read(std::string_view cfg, Bytes const& dat);

    /// A record in one file.
    /// @throws ComtradeError  what is broken first
    [[nodiscard]] static ReadComtrade readFile(Bytes const& cff);
};

}  // namespace TalTest
