#include "tools/render/DescriptionCells.hpp"

#include <fmt/format.h>

namespace TalIec61850Tools {

using TalIec61850Scl::SclPlace;
using TalIec61850Scl::StationDescription;

Cell sclFileCell(StationDescription const& station, SclPlace const& place) {
    return place.file < station.files.size() ? Cell(station.files[place.file]) : Cell();
}

Cell sclLineCell(SclPlace const& place) { return place.line != 0 ? Cell(place.line) : Cell(); }

Cell sclPlaceCell(StationDescription const& station, SclPlace const& place) {
    if (place.file >= station.files.size()) {
        return {};
    }
    std::string const& file = station.files[place.file];
    return place.line != 0 ? Cell(fmt::format("{}:{}", file, place.line)) : Cell(file);
}

Cell textIfAny(std::string const& text) { return text.empty() ? Cell() : Cell(text); }

Cell describedTimeCell(std::optional<std::int64_t> nanoseconds) {
    constexpr std::int64_t kNsOfMillisecond = 1'000'000;
    if (!nanoseconds) {
        return {};
    }
    if (*nanoseconds % kNsOfMillisecond == 0) {
        return *nanoseconds / kNsOfMillisecond;
    }
    return static_cast<double>(*nanoseconds) / kNsOfMillisecond;
}

}  // namespace TalIec61850Tools
