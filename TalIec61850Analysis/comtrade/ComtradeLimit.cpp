#include <TalIec61850Analysis/comtrade/ComtradeClock.hpp>
#include <TalIec61850Analysis/comtrade/ComtradeLimit.hpp>
#include <algorithm>
#include <cmath>
#include <cstddef>

namespace TalIec61850Analysis {

namespace {

bool hasNumbers(ComtradeAnalog const& analog) {
    ComtradeStep const& step = analog.step;
    return std::isfinite(step.size) && step.size > 0 && std::isfinite(step.middle) &&
           std::isfinite(analog.scale * step.size) &&
           std::isfinite(analog.offset + analog.scale * step.middle) &&
           std::isfinite(analog.primary) && std::isfinite(analog.secondary);
}

}  // namespace

std::optional<ComtradeLimit> brokenLimit(ComtradeRecord const& record) noexcept {
    bool const isAscii = record.format.data == ComtradeData::ascii;
    std::size_t const channels = record.analogs.size() + record.digitals.size();
    if (channels == 0) {
        return ComtradeLimit::noChannel;
    }
    if (channels > 999'999) {
        return ComtradeLimit::tooManyChannels;
    }
    if (record.rows == 0) {
        return ComtradeLimit::noRow;
    }
    if (record.rows > (isAscii ? 9'999'999'999U : 4'294'967'295U)) {
        return ComtradeLimit::tooManyRows;
    }
    if (record.rate.samples == 0 || record.rate.seconds == 0) {
        return ComtradeLimit::noRate;
    }
    if (!detail::endsInTime(record)) {
        return ComtradeLimit::tooLong;
    }
    if (!std::all_of(record.analogs.begin(), record.analogs.end(), hasNumbers) ||
        !std::isfinite(record.lineFrequency.value_or(0))) {
        return ComtradeLimit::noNumber;
    }
    if (record.format == ComtradeFormat{ComtradeEdition::of1999, ComtradeData::binary32}) {
        return ComtradeLimit::dataOfOtherEdition;
    }
    if (record.timeQuality > 11 && record.timeQuality != 15) {
        return ComtradeLimit::timeQuality;
    }
    return std::nullopt;
}

}  // namespace TalIec61850Analysis
