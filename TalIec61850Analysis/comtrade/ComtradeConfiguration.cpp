#include <TalIec61850Analysis/comtrade/ComtradeClock.hpp>
#include <TalIec61850Analysis/comtrade/ComtradeConfiguration.hpp>
#include <TalIec61850Analysis/comtrade/ComtradeField.hpp>
#include <TalIec61850Analysis/comtrade/RequireWritable.hpp>
#include <chrono>
#include <cstddef>
#include <initializer_list>
#include <string_view>

namespace TalIec61850Analysis {

namespace {

using detail::comtradeField;

constexpr std::size_t kNameLimit = 64;
constexpr std::size_t kPhaseLimit = 2;
constexpr std::size_t kUnitLimit = 32;

void addLine(std::string& text, std::initializer_list<std::string_view> fields) {
    std::string_view separator;
    for (std::string_view const field : fields) {
        text += separator;
        text += field;
        separator = ",";
    }
    text += "\r\n";
}

void addAnalog(std::string& text, std::size_t number, ComtradeAnalog const& analog,
               ComtradeRange range) {
    std::string unit = comtradeField(analog.unit, kUnitLimit);
    if (unit.empty()) {
        unit = "raw";
    }
    addLine(
        text,
        {std::to_string(number), comtradeField(analog.id, kNameLimit),
         comtradeField(analog.phase, kPhaseLimit), comtradeField(analog.component, kNameLimit),
         unit, comtradeField(analog.scale * analog.step.size),
         comtradeField(analog.offset + analog.scale * analog.step.middle), "0",
         std::to_string(range.lowest), std::to_string(range.highest), comtradeField(analog.primary),
         comtradeField(analog.secondary), analog.side == ComtradeSide::primary ? "P" : "S"});
}

void addDigital(std::string& text, std::size_t number, ComtradeDigital const& digital) {
    addLine(text, {std::to_string(number), comtradeField(digital.id, kNameLimit),
                   comtradeField(digital.phase, kPhaseLimit),
                   comtradeField(digital.component, kNameLimit), digital.normal ? "1" : "0"});
}

/// A number with leading zeros.
std::string paddedNumber(std::int64_t number, std::size_t digits) {
    std::string text = std::to_string(number);
    text.insert(0, digits - text.size(), '0');
    return text;
}

void addTime(std::string& text, CaptureTime time, bool isInNanoseconds) {
    namespace chrono = std::chrono;
    // Whole seconds first: the first day that there is begins before the first nanosecond.
    auto seconds = chrono::time_point_cast<chrono::seconds>(time);
    std::int64_t below = nanosecondsOf(time) % 1'000'000'000;
    if (below < 0) {
        below += 1'000'000'000;
        seconds -= chrono::seconds(1);
    }
    auto const day = chrono::floor<chrono::days>(seconds);
    chrono::year_month_day const date(day);
    chrono::hh_mm_ss const clock(seconds - day);
    addLine(text, {paddedNumber(static_cast<unsigned>(date.day()), 2) + "/" +
                       paddedNumber(static_cast<unsigned>(date.month()), 2) + "/" +
                       paddedNumber(static_cast<int>(date.year()), 4),
                   paddedNumber(clock.hours().count(), 2) + ":" +
                       paddedNumber(clock.minutes().count(), 2) + ":" +
                       paddedNumber(clock.seconds().count(), 2) + "." +
                       (isInNanoseconds ? paddedNumber(below, 9) : paddedNumber(below / 1000, 6))});
}

}  // namespace

std::string comtradeConfiguration(ComtradeRecord const& record) {
    detail::requireWritable(record);
    bool const is2013 = record.format.edition == ComtradeEdition::of2013;
    std::size_t const analogs = record.analogs.size();
    std::size_t const digitals = record.digitals.size();
    std::string text;
    addLine(text, {comtradeField(record.station, kNameLimit),
                   comtradeField(record.device, kNameLimit), is2013 ? "2013" : "1999"});
    addLine(text, {std::to_string(analogs + digitals), std::to_string(analogs) + "A",
                   std::to_string(digitals) + "D"});
    ComtradeRange const range = comtradeRange(record.format);
    std::size_t number = 0;
    for (ComtradeAnalog const& analog : record.analogs) {
        addAnalog(text, ++number, analog, range);
    }
    number = 0;
    for (ComtradeDigital const& digital : record.digitals) {
        addDigital(text, ++number, digital);
    }
    addLine(text, {record.lineFrequency ? comtradeField(*record.lineFrequency) : std::string()});
    // One rate. With none, programs take times from the stamps, or refuse the record.
    addLine(text, {"1"});
    addLine(text, {comtradeField(static_cast<double>(record.rate.samples) / record.rate.seconds),
                   std::to_string(record.rows)});
    detail::ComtradeClock const clock(record);
    addTime(text, record.start, clock.isInNanoseconds());
    addTime(text, record.trigger, clock.isInNanoseconds());
    addLine(text, {comtradeName(record.format.data)});
    addLine(text, {std::to_string(clock.multiplier())});
    if (is2013) {
        constexpr std::string_view hexDigits = "0123456789ABCDEF";
        addLine(text, {"0", "0"});
        addLine(text, {hexDigits.substr(record.timeQuality, 1),
                       std::to_string(static_cast<unsigned>(record.leapSecond))});
    }
    return text;
}

}  // namespace TalIec61850Analysis
