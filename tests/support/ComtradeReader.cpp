#include "support/ComtradeReader.hpp"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace TalTest {

namespace {

constexpr std::size_t kAnyLength = std::numeric_limits<std::size_t>::max();

/// Lines that end with CR LF, and fields that commas separate; knows where it is.
class FieldReader {
public:
    FieldReader(std::string_view file, std::string_view unit, std::string_view text)
        : file_(file), unit_(unit), rest_(text) {}

    [[noreturn]] void refuse(std::string const& what) const {
        throw ComtradeError(std::string(file_) + " " + std::string(unit_) + " " +
                            std::to_string(line_) + ": " + what);
    }
    void require(bool holds, std::string const& what) const {
        if (!holds) {
            refuse(what);
        }
    }

    [[nodiscard]] bool atEnd() const { return rest_.empty(); }
    [[nodiscard]] std::string_view rest() const { return rest_; }

    /// The next line, without its end.
    std::string_view nextLine() {
        ++line_;
        std::size_t const end = rest_.find("\r\n");
        require(end != std::string_view::npos, "no line, or one that does not end with CR LF");
        std::string_view const line = rest_.substr(0, end);
        rest_.remove_prefix(end + 2);
        return line;
    }

    /// The fields of the next line.
    std::vector<std::string_view> nextFields(std::size_t count) {
        std::string_view line = nextLine();
        for (char const letter : line) {
            require(letter >= ' ' && letter < 0x7F, "what is no printable ASCII");
        }
        std::vector<std::string_view> fields;
        for (std::size_t comma = 0; comma != std::string_view::npos;) {
            comma = line.find(',');
            fields.push_back(line.substr(0, comma));
            line.remove_prefix(comma == std::string_view::npos ? 0 : comma + 1);
        }
        require(fields.size() == count,
                std::to_string(fields.size()) + " fields instead of " + std::to_string(count));
        return fields;
    }

    [[nodiscard]] std::string text(std::string_view field, std::size_t least,
                                   std::size_t most) const {
        require(field.size() >= least && field.size() <= most, "a field's length");
        require(field.empty() || (field.front() != ' ' && field.back() != ' '),
                "a blank at an end of a field");
        return std::string(field);
    }

    template <typename Integer>
    [[nodiscard]] Integer integer(std::string_view field, Integer least, Integer most,
                                  std::size_t length = kAnyLength) const {
        Integer number{};
        char const* const end = field.data() + field.size();
        auto const [last, error] = std::from_chars(field.data(), end, number);
        require(error == std::errc() && last == end, "no integer: " + std::string(field));
        require(number >= least && number <= most && field.size() <= length,
                "an integer out of its range: " + std::string(field));
        return number;
    }

    [[nodiscard]] double real(std::string_view field) const {
        require(!field.empty() && field.size() <= 32, "a number's length");
        double number = 0;
        char const* const end = field.data() + field.size();
        auto const [last, error] = std::from_chars(field.data(), end, number);
        require(error == std::errc() && last == end && std::isfinite(number),
                "no number: " + std::string(field));
        return number;
    }

private:
    std::string_view file_;
    std::string_view unit_;
    std::string_view rest_;
    std::size_t line_ = 0;
};

struct Limits {
    double lowest;
    double highest;
    std::size_t length;
};

/// What min and max may be, and samples.
Limits limitsOf(int edition, std::string_view data) {
    if (data == "BINARY") {
        return {-32767, 32767, 6};
    }
    if (data == "BINARY32") {
        return {-2147483647, 2147483647, 11};
    }
    return edition == 1999 ? Limits{-99999, 99999, 6} : Limits{-3.4028235E38, 3.4028235E38, 13};
}

struct ReadTime {
    std::int64_t nanoseconds;
    std::size_t decimals;
};

/// dd/mm/yyyy,hh:mm:ss.ssssss
ReadTime readTime(FieldReader& lines) {
    namespace chrono = std::chrono;
    auto const fields = lines.nextFields(2);
    std::string_view const date = fields[0];
    std::string_view const clock = fields[1];
    lines.require(date.size() == 10 && date[2] == '/' && date[5] == '/', "no dd/mm/yyyy");
    lines.require((clock.size() == 15 || clock.size() == 18) && clock[2] == ':' &&
                      clock[5] == ':' && clock[8] == '.',
                  "no hh:mm:ss with six or nine decimals");
    auto const part = [&](std::string_view text, std::size_t at, std::size_t size, int most) {
        std::string_view const digits = text.substr(at, size);
        lines.require(digits.find_first_not_of("0123456789") == std::string_view::npos,
                      "a date or time with other than digits");
        return lines.integer(digits, 0, most);
    };
    chrono::year_month_day const day(chrono::year(part(date, 6, 4, 9999)),
                                     chrono::month(static_cast<unsigned>(part(date, 3, 2, 12))),
                                     chrono::day(static_cast<unsigned>(part(date, 0, 2, 31))));
    lines.require(day.ok(), "no such day");
    // All of these years is held by 64 bits of nanoseconds.
    lines.require(day.year() > chrono::year(1677) && day.year() < chrono::year(2262),
                  "a year that is not read here");
    std::size_t const decimals = clock.size() - 9;
    std::int64_t const fraction =
        part(clock, 9, decimals, 999'999'999) * std::int64_t{decimals == 9 ? 1 : 1000};
    std::int64_t const seconds = chrono::sys_days(day).time_since_epoch().count() * 86400LL +
                                 part(clock, 0, 2, 23) * 3600LL + part(clock, 3, 2, 59) * 60LL +
                                 part(clock, 6, 2, 59);
    return {seconds * 1'000'000'000 + fraction, decimals};
}

ReadAnalog readAnalog(FieldReader& lines, std::size_t number,
                      std::vector<std::string_view>& limits) {
    auto const fields = lines.nextFields(13);
    lines.require(lines.integer<std::size_t>(fields[0], 1, 999'999) == number,
                  "analog channels are not numbered from 1 on");
    limits.push_back(fields[8]);
    limits.push_back(fields[9]);
    ReadAnalog analog{.id = lines.text(fields[1], 0, 64),
                      .phase = lines.text(fields[2], 0, 2),
                      .component = lines.text(fields[3], 0, 64),
                      .unit = lines.text(fields[4], 1, 32),
                      .a = lines.real(fields[5]),
                      .b = lines.real(fields[6]),
                      .skew = lines.real(fields[7]),
                      .lowest = lines.real(fields[8]),
                      .highest = lines.real(fields[9]),
                      .primary = lines.real(fields[10]),
                      .secondary = lines.real(fields[11])};
    lines.require(analog.lowest < analog.highest, "min is not below max");
    lines.require(fields[12].size() == 1 &&
                      std::string_view("pPsS").find(fields[12]) != std::string_view::npos,
                  "neither P nor S");
    analog.side = fields[12].front();
    return analog;
}

ReadDigital readDigital(FieldReader& lines, std::size_t number) {
    auto const fields = lines.nextFields(5);
    lines.require(lines.integer<std::size_t>(fields[0], 1, 999'999) == number,
                  "digital channels are not numbered from 1 on");
    return {.id = lines.text(fields[1], 0, 64),
            .phase = lines.text(fields[2], 0, 2),
            .component = lines.text(fields[3], 0, 64),
            .normal = lines.integer(fields[4], 0, 1, 1) == 1};
}

std::size_t readCount(FieldReader& lines, std::string_view field, char letter) {
    lines.require(!field.empty() && field.back() == letter, "a count without its letter");
    return lines.integer<std::size_t>(field.substr(0, field.size() - 1), 0, 999'999);
}

void readChannels(FieldReader& lines, ReadComtrade& record, std::vector<std::string_view>& limits) {
    auto const counts = lines.nextFields(3);
    auto const analogs = readCount(lines, counts[1], 'A');
    auto const digitals = readCount(lines, counts[2], 'D');
    lines.require(lines.integer<std::size_t>(counts[0], 1, 999'999) == analogs + digitals,
                  "the counts of channels do not add up");
    for (std::size_t i = 1; i <= analogs; ++i) {
        record.analogs.push_back(readAnalog(lines, i, limits));
    }
    for (std::size_t i = 1; i <= digitals; ++i) {
        record.digitals.push_back(readDigital(lines, i));
    }
}

void readRate(FieldReader& lines, ReadComtrade& record) {
    auto const frequency = lines.nextFields(1)[0];
    if (!frequency.empty()) {
        record.lineFrequency = lines.real(frequency);
    }
    lines.require(lines.nextFields(1)[0] == "1", "not one sampling rate");
    auto const rate = lines.nextFields(2);
    record.rate = lines.real(rate[0]);
    lines.require(record.rate > 0, "a rate that is not above 0");
    record.lastRow = lines.integer<std::uint64_t>(rate[1], 1, 9'999'999'999);
}

void readTimes(FieldReader& lines, ReadComtrade& record) {
    auto const start = readTime(lines);
    auto const trigger = readTime(lines);
    lines.require(start.decimals == trigger.decimals, "times with different decimals");
    record.isInNanoseconds = start.decimals == 9;
    lines.require(!record.isInNanoseconds || record.edition == 2013,
                  "nanoseconds in an edition that has none");
    record.start = start.nanoseconds;
    record.trigger = trigger.nanoseconds;
}

/// The fields of min and max, now that it is known how data are stored.
void checkLimits(FieldReader const& lines, ReadComtrade const& record,
                 std::vector<std::string_view> const& fields) {
    Limits const limits = limitsOf(record.edition, record.data);
    for (std::string_view const field : fields) {
        double const number = lines.real(field);
        lines.require(
            number >= limits.lowest && number <= limits.highest && field.size() <= limits.length,
            "min or max out of what " + record.data + " holds");
        if (record.edition == 1999 || record.data != "ASCII") {
            static_cast<void>(
                lines.integer<std::int64_t>(field, std::numeric_limits<std::int64_t>::min(),
                                            std::numeric_limits<std::int64_t>::max()));
        }
    }
}

void readCodes(FieldReader& lines, ReadComtrade& record) {
    auto const zones = lines.nextFields(2);
    record.timeCode = lines.text(zones[0], 1, 6);
    record.localCode = lines.text(zones[1], 1, 6);
    auto const quality = lines.nextFields(2);
    record.timeQuality = lines.text(quality[0], 1, 1);
    lines.require(std::string_view("0123456789ABF").find(quality[0]) != std::string_view::npos,
                  "no time quality code");
    record.leapSecond = lines.text(quality[1], 1, 1);
    lines.require(std::string_view("0123").find(quality[1]) != std::string_view::npos,
                  "no code of leap seconds");
}

ReadComtrade readLines(std::string_view text) {
    FieldReader lines("cfg", "line", text);
    ReadComtrade record;
    auto const first = lines.nextFields(3);
    record.station = lines.text(first[0], 0, 64);
    record.device = lines.text(first[1], 0, 64);
    lines.require(first[2] == "1999" || first[2] == "2013", "an edition that is not known");
    record.edition = lines.integer(first[2], 1999, 2013);
    std::vector<std::string_view> limits;
    readChannels(lines, record, limits);
    readRate(lines, record);
    readTimes(lines, record);
    record.data = lines.nextFields(1)[0];
    lines.require(record.data == "ASCII" || record.data == "BINARY" ||
                      (record.data == "BINARY32" && record.edition == 2013),
                  "a kind of data that the edition has not");
    checkLimits(lines, record, limits);
    record.multiplier = lines.real(lines.nextFields(1)[0]);
    lines.require(record.multiplier > 0, "a multiplier that is not above 0");
    if (record.edition == 2013) {
        readCodes(lines, record);
    }
    lines.require(lines.atEnd(), "more lines than a configuration has");
    return record;
}

void checkRow(FieldReader const& place, ReadComtrade const& record, ReadComtradeRow const& row) {
    place.require(row.number == record.rows.size() + 1, "rows are not numbered from 1 on");
    for (std::size_t i = 0; i < row.analogs.size(); ++i) {
        auto const stored = row.analogs[i];
        place.require(!stored || (static_cast<double>(*stored) >= record.analogs[i].lowest &&
                                  static_cast<double>(*stored) <= record.analogs[i].highest),
                      "a sample that is not between min and max");
    }
    if (record.rows.empty()) {
        return;
    }
    auto const& before = record.rows.back().stamp;
    place.require(before.has_value() == row.stamp.has_value(), "stamps on some rows only");
    place.require(before.value_or(0) <= row.stamp.value_or(0),
                  "a stamp that is before the last one");
}

void readTextRows(ReadComtrade& record, std::string_view text) {
    FieldReader lines("dat", "row", text);
    bool const is1999 = record.edition == 1999;
    while (!lines.atEnd()) {
        auto const fields = lines.nextFields(2 + record.analogs.size() + record.digitals.size());
        ReadComtradeRow row;
        row.number = lines.integer<std::uint64_t>(fields[0], 1, 9'999'999'999, 10);
        row.stamp = lines.integer<std::uint64_t>(fields[1], 0, 9'999'999'999'999, is1999 ? 10 : 13);
        for (std::size_t i = 0; i < record.analogs.size(); ++i) {
            auto const stored =
                lines.integer<std::int64_t>(fields[2 + i], is1999 ? -99'999 : -999'999'999'999,
                                            9'999'999'999'999, is1999 ? 6 : 13);
            row.analogs.push_back(stored == 99'999 ? std::nullopt : std::optional(stored));
        }
        for (std::size_t i = 0; i < record.digitals.size(); ++i) {
            row.digitals.push_back(lines.integer(fields[2 + record.analogs.size() + i], 0, 1, 1) ==
                                   1);
        }
        checkRow(lines, record, row);
        record.rows.push_back(std::move(row));
    }
    lines.require(record.rows.size() == record.lastRow, "other rows than the rate tells");
}

std::uint64_t littleEndian(Bytes const& octets, std::size_t at, std::size_t size) {
    std::uint64_t number = 0;
    for (std::size_t i = size; i-- > 0;) {
        number = number << 8U | octets.at(at + i);
    }
    return number;
}

std::optional<std::int64_t> storedNumber(std::uint64_t number, std::size_t size) {
    std::uint64_t const sign = std::uint64_t{1} << (8 * size - 1);
    if (number == sign) {
        return std::nullopt;
    }
    return static_cast<std::int64_t>(number ^ sign) - static_cast<std::int64_t>(sign);
}

void readBinaryRows(ReadComtrade& record, Bytes const& octets) {
    FieldReader const place("dat", "row", {});
    std::size_t const width = record.data == "BINARY" ? 2 : 4;
    std::size_t const words = (record.digitals.size() + 15) / 16;
    std::size_t const size = 8 + width * record.analogs.size() + 2 * words;
    place.require(octets.size() == size * record.lastRow,
                  std::to_string(octets.size()) + " octets of data instead of " +
                      std::to_string(size * record.lastRow));
    for (std::size_t at = 0; at < octets.size();) {
        ReadComtradeRow row;
        row.number = littleEndian(octets, at, 4);
        std::uint64_t const stamp = littleEndian(octets, at + 4, 4);
        row.stamp = stamp == 0xFFFFFFFF ? std::nullopt : std::optional(stamp);
        at += 8;
        for (std::size_t i = 0; i < record.analogs.size(); ++i, at += width) {
            row.analogs.push_back(storedNumber(littleEndian(octets, at, width), width));
        }
        for (std::size_t i = 0; i < words * 16; ++i) {
            bool const isSet = (littleEndian(octets, at + i / 16 * 2, 2) >> i % 16 & 1U) != 0;
            if (i < record.digitals.size()) {
                row.digitals.push_back(isSet);
            } else {
                place.require(!isSet, "a bit that no channel has is set");
            }
        }
        at += 2 * words;
        checkRow(place, record, row);
        record.rows.push_back(std::move(row));
    }
}

void readRows(ReadComtrade& record, Bytes const& dat) {
    if (record.data == "ASCII") {
        readTextRows(record, std::string(dat.begin(), dat.end()));
    } else {
        readBinaryRows(record, dat);
    }
}

bool isSectionHeader(std::string_view line) { return line.substr(0, 3) == "---"; }

/// The lines up to the next section's header, which is read too.
std::string readSection(FieldReader& lines, std::string_view nextHeader, std::string& header) {
    std::string section;
    for (;;) {
        std::string_view const line = lines.nextLine();
        if (isSectionHeader(line)) {
            header = line;
            lines.require(header.rfind("--- file type: " + std::string(nextHeader), 0) == 0,
                          "not the header of the section " + std::string(nextHeader));
            return section;
        }
        section += std::string(line) + "\r\n";
    }
}

}  // namespace

std::optional<double> ReadComtrade::value(std::size_t row, std::size_t analog) const {
    auto const stored = rows.at(row).analogs.at(analog);
    if (!stored) {
        return std::nullopt;
    }
    return analogs.at(analog).a * static_cast<double>(*stored) + analogs.at(analog).b;
}

ReadComtrade ComtradeReader::readConfiguration(std::string_view cfg) { return readLines(cfg); }

ReadComtrade ComtradeReader::read(std::string_view cfg, Bytes const& dat) {
    ReadComtrade record = readLines(cfg);
    readRows(record, dat);
    return record;
}

ReadComtrade ComtradeReader::readFile(Bytes const& cff) {
    std::string const text(cff.begin(), cff.end());
    FieldReader lines("cff", "line", text);
    std::string header;
    lines.require(readSection(lines, "CFG ---", header).empty(), "text before the first section");
    std::string const cfg = readSection(lines, "INF ---", header);
    std::string const information = readSection(lines, "HDR ---", header);
    std::string const headerText = readSection(lines, "DAT ", header);
    std::string_view const data = lines.rest();
    ReadComtrade record = readLines(cfg);
    lines.require(record.edition == 2013, "an edition that has no single file");
    lines.require(header == "--- file type: DAT ASCII ---"
                      ? record.data == "ASCII"
                      : header == "--- file type: DAT " + record.data + ": " +
                                      std::to_string(data.size()) + " ---",
                  "a header that does not fit the data: " + header);
    readRows(record, Bytes(data.begin(), data.end()));
    record.information = information;
    record.header = headerText;
    return record;
}

}  // namespace TalTest
